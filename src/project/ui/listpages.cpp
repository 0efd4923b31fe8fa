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

TListPage::TListPage(const char* gridName, const QString& caption, const QStringList& columns,
                     QWidget* parent)
    : QWidget(parent) {
  auto* layout = new QVBoxLayout(this);
  buttons_ = new QHBoxLayout;
  buttons_->addStretch();
  layout->addLayout(buttons_);
  grid_ = new QTableWidget(0, static_cast<int>(columns.size()), this);
  grid_->setObjectName(QLatin1String(gridName));
  grid_->setAccessibleName(caption);
  grid_->setHorizontalHeaderLabels(columns);
  grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grid_->setSelectionMode(QAbstractItemView::SingleSelection);
  grid_->setTabKeyNavigation(false);
  grid_->horizontalHeader()->setStretchLastSection(true);
  grid_->verticalHeader()->hide();
  layout->addWidget(grid_);
  setFocusProxy(grid_);
  connect(grid_, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
    if (!filling_) onChanged(item);
  });
}

QPushButton* TListPage::addButton(const char* name, const QString& caption, const char* icon) {
  auto* button = new QPushButton(themeIcon(icon), caption, this);
  button->setObjectName(QLatin1String(name));
  button->setAutoDefault(false);
  buttons_->insertWidget(buttons_->count() - 1, button);
  // The buttons come before the grid, which was made first.
  setTabOrder(button, grid_);
  return button;
}

void TListPage::finish(const std::string& refusal) {
  refresh();
  if (refusal.empty())
    Q_EMIT edited();
  else
    Q_EMIT refused(text(refusal));
}

void TListPage::finishLater(const std::string& refusal) {
  QMetaObject::invokeMethod(
      this, [this, refusal] { finish(refusal); }, Qt::QueuedConnection);
}

void TListPage::finishAdding(const std::string& refusal) {
  finish(refusal);
  if (!refusal.empty() || grid_->rowCount() == 0) return;
  grid_->setCurrentCell(grid_->rowCount() - 1, 0);
  grid_->setFocus();
}

void TListPage::beginFill(std::size_t rows) {
  filling_ = true;
  rowBefore_ = grid_->currentRow();
  grid_->setRowCount(static_cast<int>(rows));
}

void TListPage::setCell(int row, int column, const QString& text, bool editable) {
  auto* item = new QTableWidgetItem(text);
  if (!editable) item->setFlags(item->flags() & ~Qt::ItemIsEditable);
  grid_->setItem(row, column, item);
}

void TListPage::endFill() {
  grid_->resizeColumnToContents(0);
  if (grid_->rowCount() > 0) grid_->setCurrentCell(std::clamp(rowBefore_, 0, grid_->rowCount() - 1), 0);
  filling_ = false;
}

std::optional<std::size_t> TListPage::currentRow() const {
  if (grid_->currentRow() < 0) return std::nullopt;
  return static_cast<std::size_t>(grid_->currentRow());
}

TDataSourcesPage::TDataSourcesPage(TWindowContext& context, TProjectEditor& editor, QWidget* parent)
    : TListPage("gDataSources", tr("Data sources"), {tr("Data Source Name"), tr("Data Source")}, parent),
      context_(context),
      editor_(editor) {
  connect(addButton("bAddDS", tr("&Add"), "list-add"), &QPushButton::clicked, this,
          [this] { finishAdding(editor_.addDataSource()); });
  connect(addButton("bEditDS", tr("Confi&gure..."), "document-edit"), &QPushButton::clicked, this,
          &TDataSourcesPage::bEditDSClick);
  connect(addButton("bDelDS", tr("&Delete"), "list-remove"), &QPushButton::clicked, this, [this] {
    if (const auto row = currentRow()) editor_.deleteDataSource(*row);
    finish({});
  });
  connect(addButton("bClearDS", tr("C&lear"), "edit-clear"), &QPushButton::clicked, this,
          &TDataSourcesPage::bClearDSClick);
  connect(grid_, &QTableWidget::cellDoubleClicked, this, [this](int, int column) {
    if (column == 1) bEditDSClick();
  });
  refresh();
}

void TDataSourcesPage::refresh() {
  const auto& sources = editor_.project().dataSources;
  beginFill(sources.size());
  for (int row = 0; row < grid_->rowCount(); ++row) {
    const TDataSource& source = sources[static_cast<std::size_t>(row)];
    setCell(row, 0, QString::fromStdString(source.name));
    setCell(row, 1, QString::fromStdString(definitionSummary(source.definition)), false);
  }
  endFill();
}

void TDataSourcesPage::onChanged(QTableWidgetItem* item) {
  finishLater(editor_.renameDataSource(static_cast<std::size_t>(item->row()), item->text().toStdString()));
}

void TDataSourcesPage::bEditDSClick() {
  const auto row = currentRow();
  if (!row) return;
  const auto definition = askForDefinition(*row);
  if (!definition) return;
  editor_.setDefinition(*row, *definition);
  finish({});
}

/// In the store's browser as a designer; a store without one has a plain dialog.
std::optional<TValue> TDataSourcesPage::askForDefinition(std::size_t row) {
  const TProject& project = editor_.project();
  const TValue& connection = project.source.connection;
  const TBrowserFactory* browser = context_.browsers.find(project.source.dbType);
  if (browser && connection.is(TKind::Object))
    return designQuery(*browser, context_, connection.asObject(), project.dataSources[row].definition, this);
  TDataSourceDialog dialog(context_, project, project.dataSources[row], this);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.definition();
}

void TDataSourcesPage::bClearDSClick() {
  if (!editor_.asksToClearDataSources() || !context_.prompt.confirm(edittexts::clearSources)) return;
  editor_.clearDataSources();
  finish({});
}

TDataTargetsPage::TDataTargetsPage(TProjectEditor& editor, QWidget* parent)
    : TListPage("gDataTargets", tr("Data targets"),
                {text("Data Target Name"), text("Target Object"), text("Bucket SASL Password")}, parent),
      editor_(editor) {
  connect(addButton("bAddTarget", tr("&Add"), "list-add"), &QPushButton::clicked, this,
          [this] { finishAdding(editor_.addDataTarget()); });
  connect(addButton("bDelTarget", tr("&Delete"), "list-remove"), &QPushButton::clicked, this, [this] {
    if (const auto row = currentRow()) editor_.deleteDataTarget(*row);
    finish({});
  });
  connect(addButton("bClearTarget", tr("C&lear"), "edit-clear"), &QPushButton::clicked, this, [this] {
    editor_.clearDataTargets();
    finish({});
  });
  refresh();
}

void TDataTargetsPage::refresh() {
  const TProject& project = editor_.project();
  grid_->setColumnHidden(2, project.target.dbType != dbtype::couchbase);
  beginFill(project.dataTargets.size());
  for (int row = 0; row < grid_->rowCount(); ++row) {
    const TDataTarget& target = project.dataTargets[static_cast<std::size_t>(row)];
    setCell(row, 0, QString::fromStdString(target.name));
    setCell(row, 1, QString::fromStdString(target.target));
    setCell(row, 2, target.saslPwd.empty() ? QString() : QStringLiteral("********"));
  }
  endFill();
}

void TDataTargetsPage::onChanged(QTableWidgetItem* item) {
  const auto row = static_cast<std::size_t>(item->row());
  const std::string given = item->text().toStdString();
  std::string refusal;
  if (item->column() == 0) refusal = editor_.renameDataTarget(row, given);
  if (item->column() == 1) refusal = editor_.setTargetObject(row, given);
  if (item->column() == 2) editor_.setSaslPwd(row, given);
  finishLater(refusal);
}

}  // namespace hollowmere
