#include "jsongrid/ui/addattributedialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace hollowmere {

TAddAttributeDialog::TAddAttributeDialog(TPrompt& prompt, TAdd add, QWidget* parent)
    : QDialog(parent), prompt_(prompt), add_(std::move(add)), name_(new QLineEdit(this)) {
  setObjectName(QStringLiteral("addAttributeDialog"));
  setWindowTitle(tr("Add Attribute"));
  name_->setObjectName(QStringLiteral("eAttribute"));
  name_->setAccessibleName(tr("Attribute name"));
  name_->setMinimumWidth(fontMetrics().averageCharWidth() * 40);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("bOk"));
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("bCancel"));
  auto* layout = new QFormLayout(this);
  layout->addRow(tr("Attribute &name"), name_);
  layout->addRow(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &TAddAttributeDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &TAddAttributeDialog::reject);
}

void TAddAttributeDialog::accept() {
  const std::string refusal = add_(name_->text().toStdString());
  if (refusal.empty()) return QDialog::accept();
  prompt_.error(refusal);
  name_->setFocus();
}

}  // namespace hollowmere
