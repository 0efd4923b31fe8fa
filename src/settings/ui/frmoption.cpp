#include "settings/ui/frmoption.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "settings/optionrows.h"
#include "ui/helptopic.h"

namespace hollowmere {

namespace {

QString fromView(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

TPropertyKind kindOf(TOptionKind kind) {
  switch (kind) {
    case TOptionKind::Text: return TPropertyKind::Text;
    case TOptionKind::Number: return TPropertyKind::Number;
    case TOptionKind::Boolean: return TPropertyKind::Boolean;
    case TOptionKind::SaveFile: return TPropertyKind::SaveFile;
  }
  return TPropertyKind::Text;
}

TProperty propertyOf(const TOptionRow& row) {
  TProperty property;
  property.key = fromView(row.name);
  property.category = text(std::string(row.group));
  property.caption = text(std::string(row.caption));
  property.kind = kindOf(row.kind);
  property.value = QString::fromStdString(row.text);
  property.lowest = row.lowest;
  property.highest = row.highest;
  return property;
}

}  // namespace

TfrmOption::TfrmOption(TWindowContext& context, QWidget* parent)
    : QDialog(parent), context_(context), grid_(new TPropertyGrid(this)) {
  setObjectName(QStringLiteral("frmOption"));
  setHelpTopic(*this, "options");
  setWindowTitle(tr("Program Options"));
  grid_->setObjectName(QStringLiteral("vgOptions"));
  grid_->setAccessibleName(tr("Program options"));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->setObjectName(QStringLiteral("buttonBox"));
  buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("bOK"));
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("bCancel"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(grid_);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &TfrmOption::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &TfrmOption::reject);
  fill();
  resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 30);
}

void TfrmOption::fill() {
  std::vector<TProperty> properties;
  for (const TOptionRow& row : optionRows(context_.settings)) properties.push_back(propertyOf(row));
  grid_->setProperties(std::move(properties));
  grid_->setCheck([this](const QString& key, const QString& value) {
    TSettings trial = context_.settings;
    return text(setOption(trial, key.toStdString(), value.toStdString()));
  });
  connect(grid_, &TPropertyGrid::valueRefused, this,
          [this](const QString& message) { context_.prompt.warning(message.toStdString()); });
}

void TfrmOption::accept() {
  TSettings changed = context_.settings;
  for (const TOptionRow& row : optionRows(context_.settings)) {
    const QString value = grid_->value(fromView(row.name));
    if (const std::string refusal = setOption(changed, row.name, value.toStdString()); !refusal.empty())
      return context_.prompt.warning(refusal);
  }
  context_.settings = changed;
  saveSettings(context_.settings, context_.store, context_.prompt);
  QDialog::accept();
}

}  // namespace hollowmere
