#include "settings/ui/frmconnlist.h"

#include <QAction>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

#include "settings/connectionexport.h"
#include "settings/ui/connectionmodel.h"
#include "settings/ui/exportdialogs.h"
#include "settings/ui/frmdbconfig.h"
#include "ui/helptopic.h"
#include "ui/icons.h"
#include "ui/placement.h"

namespace hollowmere {

namespace {

const QString placementGroup = QStringLiteral("connlist");
const QString columnsName = QStringLiteral("columns");

QString fileFilter() {
  return TfrmConnList::tr("Exported connections (*.json)") + QStringLiteral(";;") +
         TfrmConnList::tr("All files (*)");
}

}  // namespace

TfrmConnList::TfrmConnList(TWindowContext& context, QWidget* parent)
    : TMdiChild(parent),
      context_(context),
      edit_(context.connectionFile(), context.prompt),
      model_(new TConnectionModel(edit_.list(), this)),
      filter_(new TConnectionFilter(this)),
      table_(new QTableView(this)) {
  setObjectName(QStringLiteral("frmConnList"));
  setWindowTitle(tr("Database Connections"));
  setWindowIcon(themeIcon("network-server"));
  setHelpTopic(*this, "connections");
  filter_->setSourceModel(model_);
  makeTable();
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(makeButtons());
  layout->addLayout(makeFindRow());
  layout->addWidget(table_, 1);
  setTabOrder(bExport_, table_);
  setFocusProxy(table_);
  connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &TfrmConnList::updateActions);
  resize(fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 24);
  refresh(0);
}

void TfrmConnList::makeTable() {
  table_->setObjectName(QStringLiteral("gConnections"));
  table_->setAccessibleName(tr("Database connections"));
  table_->setModel(filter_);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setAlternatingRowColors(true);
  table_->setTabKeyNavigation(false);
  table_->setWordWrap(false);
  table_->verticalHeader()->hide();
  table_->horizontalHeader()->setObjectName(columnsName);
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->horizontalHeader()->setHighlightSections(false);
  table_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  auto* cells = new TButtonDelegate(table_);
  table_->setItemDelegateForColumn(configureColumn, cells);
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  // Queued: the table still handles the click, and the edit may make its rows anew.
  connect(cells, &TButtonDelegate::clicked, this, &TfrmConnList::bEditConnClick, Qt::QueuedConnection);
  connect(table_, &QTableView::doubleClicked, this, [this](const QModelIndex& cell) {
    if (cell.column() != configureColumn) bOpenConnClick();
  });
  table_->setContextMenuPolicy(Qt::ActionsContextMenu);
}

QAction* TfrmConnList::makeAction(const char* name, const QString& caption, const char* icon,
                                  const QList<QKeySequence>& keys, THandler handler) {
  auto* action = new QAction(themeIcon(icon), caption, table_);
  action->setObjectName(QLatin1String(name));
  action->setShortcuts(keys);
  action->setShortcutContext(Qt::WidgetShortcut);
  table_->addAction(action);
  connect(action, &QAction::triggered, this, handler);
  return action;
}

QPushButton* TfrmConnList::makeButton(const char* name, const QString& caption, const char* icon,
                                      THandler handler) {
  auto* button = new QPushButton(themeIcon(icon), caption, this);
  button->setObjectName(QLatin1String(name));
  connect(button, &QPushButton::clicked, this, handler);
  return button;
}

// The letters are those that the main window's menus leave free.
QBoxLayout* TfrmConnList::makeButtons() {
  using F = TfrmConnList;
  makeAction("actAddConn", tr("&Add New Connection"), "list-add", {Qt::Key_Insert}, &F::bAddConnClick);
  rowActions_ = {
      makeAction("actEditConn", tr("Edit &Connection"), "document-edit", {Qt::Key_F2}, &F::bEditConnClick),
      makeAction("actRemoveConn", tr("Re&move Connection"), "list-remove", {Qt::Key_Delete},
                 &F::bRemoveConnClick),
      makeAction("actOpenConn", tr("&Open Connection"), "network-server", {Qt::Key_Return, Qt::Key_Enter},
                 &F::bOpenConnClick)};
  auto* row = new QHBoxLayout;
  row->addWidget(makeButton("bAddConn", tr("&Add New Connection"), "list-add", &F::bAddConnClick));
  rowButtons_ = {makeButton("bEditConn", tr("Edit &Connection"), "document-edit", &F::bEditConnClick),
                 makeButton("bRemoveConn", tr("Re&move Connection"), "list-remove", &F::bRemoveConnClick),
                 makeButton("bOpenConn", tr("&Open Connection"), "network-server", &F::bOpenConnClick)};
  for (QPushButton* button : rowButtons_) row->addWidget(button);
  row->addStretch();
  return row;
}

QBoxLayout* TfrmConnList::makeFindRow() {
  find_ = new QLineEdit(this);
  find_->setObjectName(QStringLiteral("eFind"));
  find_->setPlaceholderText(tr("Any part of a row"));
  find_->setAccessibleName(tr("Find"));
  find_->setClearButtonEnabled(true);
  auto* label = new QLabel(tr("Fi&nd:"), this);
  label->setBuddy(find_);
  auto* row = new QHBoxLayout;
  row->addWidget(label);
  row->addWidget(find_, 1);
  row->addWidget(makeButton("bImport", tr("&Import..."), "document-open", &TfrmConnList::bImportClick));
  bExport_ = makeButton("bExport", tr("E&xport..."), "document-save-as", &TfrmConnList::bExportClick);
  row->addWidget(bExport_);
  connect(find_, &QLineEdit::textChanged, this, &TfrmConnList::onFind);
  connect(find_, &QLineEdit::returnPressed, table_, qOverload<>(&QWidget::setFocus));
  auto* shortcut = new QShortcut(QKeySequence::Find, this, find_, qOverload<>(&QWidget::setFocus));
  shortcut->setContext(Qt::WidgetWithChildrenShortcut);
  return row;
}

/// What has a place on the desktop: the window, or its frame inside the main window.
QWidget& TfrmConnList::frame() {
  auto* inside = qobject_cast<QMdiSubWindow*>(parentWidget());
  return inside ? static_cast<QWidget&>(*inside) : *this;
}

void TfrmConnList::showEvent(QShowEvent* event) {
  TMdiChild::showEvent(event);
  if (placed_) return;
  placed_ = true;
  restorePlacement(context_.store, placementGroup, frame());
  // The last column takes what is left; all of its text is in its tool tip.
  for (int column = 0; column <= configureColumn; ++column) table_->resizeColumnToContents(column);
  restoreState(context_.store, placementGroup, *table_->horizontalHeader(), columnsName);
}

bool TfrmConnList::mayClose() {
  if (!edit_.close()) return false;
  savePlacement(context_.store, placementGroup, frame());
  saveState(context_.store, placementGroup, *table_->horizontalHeader(), columnsName);
  return true;
}

QString TfrmConnList::statusText() const {
  return tr("Connections: %1").arg(static_cast<qulonglong>(connections().records().size()));
}

int TfrmConnList::currentPlace() const { return filter_->mapToSource(table_->currentIndex()).row(); }

void TfrmConnList::focusPlace(int place) {
  QModelIndex cell = filter_->mapFromSource(model_->index(place, 0));
  if (!cell.isValid()) cell = filter_->index(0, 0);
  table_->setCurrentIndex(cell);
  table_->scrollTo(cell);
  updateActions();
}

/// What a new record brings is seen, whatever the width was.
void TfrmConnList::widenColumns() {
  const QAbstractItemView& view = *table_;
  for (int column = 0; column < configureColumn; ++column)
    if (view.sizeHintForColumn(column) > table_->columnWidth(column)) table_->resizeColumnToContents(column);
}

void TfrmConnList::refresh(int place) {
  model_->refresh();
  if (placed_) widenColumns();
  focusPlace(place);
  bExport_->setEnabled(model_->rowCount() > 0);
  Q_EMIT statusChanged();
}

void TfrmConnList::updateActions() {
  const bool some = currentPlace() >= 0;
  for (QAction* action : rowActions_) action->setEnabled(some);
  for (QPushButton* button : rowButtons_) button->setEnabled(some);
}

void TfrmConnList::onFind(const QString& text) {
  const int place = currentPlace();
  filter_->seek(text);
  focusPlace(place);
}

bool TfrmConnList::offerToKeep(const ConnectionConfig& record) {
  if (!edit_.offerToKeep(record)) return false;
  find_->clear();
  refresh(model_->rowCount());
  return true;
}

void TfrmConnList::bAddConnClick() {
  TfrmDBConfig dialog(context_, this);
  if (dialog.exec() != QDialog::Accepted) return;
  edit_.list().add(*dialog.connection());
  find_->clear();
  refresh(model_->rowCount());
  table_->setFocus();
}

void TfrmConnList::bEditConnClick() {
  const int place = currentPlace();
  if (place < 0) return;
  TfrmDBConfig dialog(context_, this);
  dialog.setConnection(connections().records()[static_cast<std::size_t>(place)]);
  if (dialog.exec() != QDialog::Accepted) return;
  edit_.list().replace(static_cast<std::size_t>(place), *dialog.connection());
  refresh(place);
}

void TfrmConnList::bRemoveConnClick() {
  const int place = currentPlace();
  if (place < 0) return;
  edit_.list().remove(static_cast<std::size_t>(place));
  refresh(std::min(place, model_->rowCount() - 2));
}

void TfrmConnList::bOpenConnClick() {
  const int place = currentPlace();
  if (place >= 0) Q_EMIT openConnection(connections().records()[static_cast<std::size_t>(place)]);
}

void TfrmConnList::bImportClick() {
  const QString name = QFileDialog::getOpenFileName(this, tr("Import Connections"), {}, fileFilter());
  if (name.isEmpty()) return;
  try {
    importFile(name);
  } catch (const TFileError& error) {
    context_.prompt.error(error.what());
  } catch (const TConnectionExportError& error) {
    context_.prompt.error(error.what());
  }
}

void TfrmConnList::importFile(const QString& fileName) {
  const std::string bytes = readWholeFile(fileName.toStdString());
  TPassPhraseDialog dialog(this);
  if (isSealedExport(bytes) && dialog.exec() != QDialog::Accepted) return;
  const TConnectionList imported = importConnections(bytes, dialog.passPhrase());
  const std::size_t added = addMissing(edit_.list(), imported);
  find_->clear();
  refresh(added > 0 ? model_->rowCount() : currentPlace());
  context_.prompt.ask(TPromptKind::Information, importSummary(added, imported.records().size()),
                      TButtons::Ok);
}

void TfrmConnList::bExportClick() {
  TExportDialog dialog(context_.prompt, this);
  if (dialog.exec() != QDialog::Accepted) return;
  const QString name = QFileDialog::getSaveFileName(this, tr("Export Connections"),
                                                    QStringLiteral("connections.json"), fileFilter());
  if (!name.isEmpty()) exportFile(name, dialog.passPhrase());
}

void TfrmConnList::exportFile(const QString& fileName, const std::optional<std::string>& passPhrase) {
  try {
    writeWholeFile(
        context_.files, fileName.toStdString(),
        passPhrase ? exportConnections(connections(), *passPhrase) : exportConnections(connections()));
  } catch (const TFileError& error) {
    context_.prompt.error(error.what());
  }
}

}  // namespace hollowmere
