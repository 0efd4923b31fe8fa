#include "jsondoc/ui/valuedialog.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/codeeditor.h"
#include "ui/placement.h"

namespace hollowmere {

namespace {

const QString& placementGroup() {
  static const QString group = QStringLiteral("viewJson/value");
  return group;
}

}  // namespace

TValueDialog::TValueDialog(QSettings& store, const QString& caption, const std::string& text, bool readOnly,
                           QWidget* parent)
    : QDialog(parent), store_(store), editor_(new TCodeEditor(TCodeLanguage::Plain, this)) {
  setObjectName(QStringLiteral("valueDialog"));
  setWindowTitle(caption);
  auto* layout = new QVBoxLayout(this);
  editor_->setNames("mValue", tr("Value"));
  editor_->setText(text);
  editor_->setReadOnly(readOnly);
  layout->addWidget(editor_, 1);
  auto* buttons = new QDialogButtonBox(this);
  if (!readOnly) buttons->addButton(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("bOK"));
  buttons->addButton(readOnly ? QDialogButtonBox::Close : QDialogButtonBox::Cancel)
      ->setObjectName(QStringLiteral("bCancel"));
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 24);
  restorePlacement(store_, placementGroup(), *this);
}

TValueDialog::~TValueDialog() { savePlacement(store_, placementGroup(), *this); }

std::string TValueDialog::text() const { return editor_->text(); }

}  // namespace hollowmere
