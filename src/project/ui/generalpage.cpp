#include "project/ui/generalpage.h"

#include <QVBoxLayout>

#include "settings/connectionrecord.h"
#include "ui/windowcontext.h"

namespace hollowmere {

namespace {

QString shown(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString valueOf(const TProject& project, const TProjectField& field) {
  if (const auto* member = std::get_if<std::string TProject::*>(&field.member))
    return QString::fromStdString(project.*(*member));
  if (const auto* flag = std::get_if<bool TProject::*>(&field.member))
    return project.*(*flag) ? QStringLiteral("True") : QStringLiteral("False");
  return QString::number(project.*std::get<std::int64_t TProject::*>(field.member));
}

TPropertyKind kindOf(const TProjectField& field) {
  if (field.key == "vgGeneralLogFile" || field.key == "vgGeneralDiscFile") return TPropertyKind::SaveFile;
  if (std::holds_alternative<bool TProject::*>(field.member)) return TPropertyKind::Boolean;
  if (std::holds_alternative<std::int64_t TProject::*>(field.member)) return TPropertyKind::Number;
  return TPropertyKind::Text;
}

QString connectionText(const TProjectSide& side) {
  if (!isConfigured(side.connection)) return text("Not Configured");
  return side.connection.is(TKind::Text) ? QString::fromStdString(side.connection.asText())
                                         : text("Configured");
}

}  // namespace

TGeneralPage::TGeneralPage(TProjectEditor& editor, QWidget* parent) : QWidget(parent), editor_(editor) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  grid_ = new TPropertyGrid(this);
  grid_->setObjectName(QStringLiteral("vgGeneral"));
  grid_->setAccessibleName(tr("Project settings"));
  layout->addWidget(grid_);
  setFocusProxy(grid_);
  connect(grid_, &TPropertyGrid::valueEdited, this, &TGeneralPage::onEdited);
  connect(grid_, &TPropertyGrid::valueRefused, this, &TGeneralPage::refused);
  connect(grid_, &TPropertyGrid::buttonClicked, this, [this](const QString& key) {
    Q_EMIT connectionWanted(key == shown(projectSides[0].connection) ? 0 : 1);
  });
  grid_->setCheck([this](const QString& key, const QString& value) {
    for (const TProjectField& field : projectFields())
      if (shown(field.key) == key) return text(editor_.setField(field, value.toStdString()));
    return QString();
  });
  refresh();
}

void TGeneralPage::refresh() {
  const TProject& project = editor_.project();
  std::vector<TProperty> rows;
  for (const TProjectField& field : projectFields())
    rows.push_back({shown(field.key),
                    tr("General"),
                    text(std::string(field.caption)),
                    kindOf(field),
                    valueOf(project, field),
                    {},
                    field.lowest,
                    field.highest});
  QStringList types;
  for (const std::string_view type : dbtype::all) types << shown(type);
  for (const TProjectSideField& field : projectSides) {
    const TProjectSide& side = project.*field.member;
    const QString category = text(std::string(field.categoryCaption));
    rows.push_back({shown(field.dbType), category, text(std::string(dbTypeCaption)), TPropertyKind::Choice,
                    QString::fromStdString(side.dbType), types});
    rows.push_back({shown(field.connection),
                    category,
                    text(std::string(connectionCaption)),
                    TPropertyKind::Button,
                    connectionText(side),
                    {}});
  }
  grid_->setProperties(std::move(rows));
}

void TGeneralPage::onEdited(const QString& key, const QString& text) {
  for (std::size_t side = 0; side < projectSides.size(); ++side)
    if (shown(projectSides[side].dbType) == key) Q_EMIT typeChosen(static_cast<int>(side), text);
  Q_EMIT edited();
}

}  // namespace hollowmere
