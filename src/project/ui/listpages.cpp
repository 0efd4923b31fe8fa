#include "project/ui/listpages.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QVBoxLayout>

#include "project/edittexts.h"
#include "project/querymembers.h"
#include "project/ui/datasourcedialog.h"
#include "ui/icons.h"

namespace hollowmere {

namespace {

QPushButton* addButton(QWidget* page, QHBoxLayout* row, const char* name, const QString& caption,
                       const char* icon) {
  auto* button = new QPushButton(themeIcon(icon), caption, page);
  button->setObjectName(QLatin1String(name));
  button->setAutoDefault(false);
  row->addWidget(button);
  return button;
}

QTableWidget* makeGrid(QWidget* page, const char* name, const QStringList& captions) {
  auto* grid = new QTableWidget(0, static_cast<int>(captions.size()), page);
  grid->setObjectName(QLatin1String(name));
  grid->setHorizontalHeaderLabels(captions);
  grid->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid->setSelectionMode(QAbstractItemView::SingleSelection);
  grid->setTabKeyNavigation(false);
  grid->horizontalHeader()->setStretchLastSection(true);
  grid->verticalHeader()->hide();
  return grid;
}

void setCell(QTableWidget* grid, int row, int column, const QString& text, bool editable = true) {
  auto* item = new QTableWidgetItem(text);
  if (!editable) item->setFlags(item->flags() & ~Qt::ItemIsEditable);
  grid->setItem(row, column, item);
}

void keepRow(QTableWidget* grid, int row) {
  if (grid->rowCount() > 0) grid->setCurrentCell(std::clamp(row, 0, grid->rowCount() - 1), 0);
}

}  // namespace

TDataSourcesPage::TDataSourcesPage(TWindowContext& context, TProjectEditor& editor, QWidget* parent)
    : QWidget(parent), context_(context), editor_(editor) {
  auto* layout = new QVBoxLayout(this);
  auto* buttons = new QHBoxLayout;
  connect(addButton(this, buttons, "bAddDS", tr("&Add"), "list-add"), &QPushButton::clicked, this,
          &TDataSourcesPage::bAddDSClick);
  connect(addButton(this, buttons, "bEditDS", tr("Confi&gure..."), "document-edit"), &QPushButton::clicked,
          this, &TDataSourcesPage::bEditDSClick);
  connect(addButton(this, buttons, "bDelDS", tr("&Delete"), "list-remove"), &QPushButton::clicked, this,
          &TDataSourcesPage::bDelDSClick);
  connect(addButton(this, buttons, "bClearDS", tr("C&lear"), "edit-clear"), &QPushButton::clicked, this,
          &TDataSourcesPage::bClearDSClick);
  buttons->addStretch();
  layout->addLayout(buttons);
  grid_ = makeGrid(this, "gDataSources", {tr("Data Source Name"), tr("Data Source")});
  grid_->setAccessibleName(tr("Data sources"));
  layout->addWidget(grid_);
  connect(grid_, &QTableWidget::itemChanged, this, &TDataSourcesPage::onChanged);
  connect(grid_, &QTableWidget::cellDoubleClicked, this, [this](int, int column) {
    if (column == 1) bEditDSClick();
  });
  refresh();
}

void TDataSourcesPage::refresh() {
  filling_ = true;
  const int row = grid_->currentRow();
  const auto& sources = editor_.project().dataSources;
  grid_->setRowCount(static_cast<int>(sources.size()));
  for (int i = 0; i < grid_->rowCount(); ++i) {
    const TDataSource& source = sources[static_cast<std::size_t>(i)];
    setCell(grid_, i, 0, QString::fromStdString(source.name));
    setCell(grid_, i, 1, QString::fromStdString(definitionSummary(source.definition)), false);
  }
  grid_->resizeColumnToContents(0);
  keepRow(grid_, row);
  filling_ = false;
}

void TDataSourcesPage::onChanged(QTableWidgetItem* item) {
  if (filling_) return;
  const std::string refusal =
      editor_.renameDataSource(static_cast<std::size_t>(item->row()), item->text().toStdString());
  // The cell goes back to what the project holds before the message: its dialog lets events run.
  QMetaObject::invokeMethod(
      this,
      [this, refusal] {
        refresh();
        if (refusal.empty())
          Q_EMIT edited();
        else
          Q_EMIT refused(text(refusal));
      },
      Qt::QueuedConnection);
}

void TDataSourcesPage::bAddDSClick() {
  if (const std::string refusal = editor_.addDataSource(); !refusal.empty()) {
    Q_EMIT refused(text(refusal));
    return;
  }
  refresh();
  keepRow(grid_, grid_->rowCount() - 1);
  grid_->setFocus();
  Q_EMIT edited();
}

void TDataSourcesPage::bEditDSClick() {
  const int row = grid_->currentRow();
  if (row < 0) return;
  const auto place = static_cast<std::size_t>(row);
  const TProject& project = editor_.project();
  TDataSourceDialog dialog(context_, project, project.dataSources[place], this);
  if (dialog.exec() != QDialog::Accepted) return;
  editor_.setDefinition(place, dialog.definition());
  refresh();
  Q_EMIT edited();
}

void TDataSourcesPage::bDelDSClick() {
  if (grid_->currentRow() < 0) return;
  editor_.deleteDataSource(static_cast<std::size_t>(grid_->currentRow()));
  refresh();
  Q_EMIT edited();
}

void TDataSourcesPage::bClearDSClick() {
  if (!editor_.asksToClearDataSources() || !context_.prompt.confirm(edittexts::clearSources)) return;
  editor_.clearDataSources();
  refresh();
  Q_EMIT edited();
}

TDataTargetsPage::TDataTargetsPage(TProjectEditor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor) {
  auto* layout = new QVBoxLayout(this);
  auto* buttons = new QHBoxLayout;
  connect(addButton(this, buttons, "bAddTarget", tr("&Add"), "list-add"), &QPushButton::clicked, this,
          &TDataTargetsPage::bAddTargetClick);
  connect(addButton(this, buttons, "bDelTarget", tr("&Delete"), "list-remove"), &QPushButton::clicked, this,
          &TDataTargetsPage::bDelTargetClick);
  connect(addButton(this, buttons, "bClearTarget", tr("C&lear"), "edit-clear"), &QPushButton::clicked, this,
          [this] {
            editor_.clearDataTargets();
            refresh();
            Q_EMIT edited();
          });
  buttons->addStretch();
  layout->addLayout(buttons);
  grid_ = makeGrid(this, "gDataTargets",
                   {text("Data Target Name"), text("Target Object"), text("Bucket SASL Password")});
  grid_->setAccessibleName(tr("Data targets"));
  layout->addWidget(grid_);
  connect(grid_, &QTableWidget::itemChanged, this, &TDataTargetsPage::onChanged);
  refresh();
}

void TDataTargetsPage::refresh() {
  filling_ = true;
  const int row = grid_->currentRow();
  const TProject& project = editor_.project();
  grid_->setColumnHidden(2, project.target.dbType != dbtype::couchbase);
  grid_->setRowCount(static_cast<int>(project.dataTargets.size()));
  for (int i = 0; i < grid_->rowCount(); ++i) {
    const TDataTarget& target = project.dataTargets[static_cast<std::size_t>(i)];
    setCell(grid_, i, 0, QString::fromStdString(target.name));
    setCell(grid_, i, 1, QString::fromStdString(target.target));
    setCell(grid_, i, 2, target.saslPwd.empty() ? QString() : QStringLiteral("********"));
  }
  grid_->resizeColumnToContents(0);
  keepRow(grid_, row);
  filling_ = false;
}

void TDataTargetsPage::onChanged(QTableWidgetItem* item) {
  if (filling_) return;
  const auto row = static_cast<std::size_t>(item->row());
  const std::string given = item->text().toStdString();
  std::string refusal;
  if (item->column() == 0) refusal = editor_.renameDataTarget(row, given);
  if (item->column() == 1) refusal = editor_.setTargetObject(row, given);
  if (item->column() == 2) editor_.setSaslPwd(row, given);
  QMetaObject::invokeMethod(
      this,
      [this, refusal] {
        refresh();
        if (refusal.empty())
          Q_EMIT edited();
        else
          Q_EMIT refused(text(refusal));
      },
      Qt::QueuedConnection);
}

void TDataTargetsPage::bAddTargetClick() {
  if (const std::string refusal = editor_.addDataTarget(); !refusal.empty()) {
    Q_EMIT refused(text(refusal));
    return;
  }
  refresh();
  keepRow(grid_, grid_->rowCount() - 1);
  grid_->setFocus();
  Q_EMIT edited();
}

void TDataTargetsPage::bDelTargetClick() {
  if (grid_->currentRow() < 0) return;
  editor_.deleteDataTarget(static_cast<std::size_t>(grid_->currentRow()));
  refresh();
  Q_EMIT edited();
}

}  // namespace hollowmere
