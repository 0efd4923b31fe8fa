#include "jsongrid/ui/frmjson.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <numeric>
#include <set>

#include "json/json.h"
#include "jsondoc/ui/blobpanel.h"
#include "jsondoc/ui/viewjson.h"
#include "jsongrid/celltext.h"
#include "jsongrid/gridtexts.h"
#include "jsongrid/ui/addattributedialog.h"
#include "jsongrid/ui/gridactions.h"
#include "jsongrid/ui/gridmodel.h"
#include "ui/codeeditor.h"
#include "ui/icons.h"
#include "ui/placement.h"
#include "ui/printing.h"
#include "ui/qtmainthread.h"

namespace hollowmere {

namespace {

const QString placementGroup = QStringLiteral("editJson");
enum TPanePage { ValuePage, BinaryPage };

std::size_t pageSize(const TSettings& settings) {
  return static_cast<std::size_t>(std::clamp<std::int64_t>(settings.fetchSize, 1, settings.maxfetchSize));
}

}  // namespace

TfrmJSON::TfrmJSON(TWindowContext& context, TList documents, const TJsonWindowOptions& options,
                   QWidget* parent)
    : QDialog(parent),
      context_(context),
      options_(options),
      view_(grid_, pageSize(context.settings)),
      model_(new TGridModel(grid_, view_, context.dates, this)),
      splitter_(new QSplitter(Qt::Vertical, this)),
      table_(new QTableView(splitter_)) {
  setObjectName(QStringLiteral("frmJSON"));
  setWindowTitle(options_.title.isEmpty() ? tr("JSON Documents") : options_.title);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  grid_.load(std::move(documents));
  view_.refresh();
  model_->setReadOnly(options_.readOnly);
  model_->setMarksNested(context.settings.showJsonIcon == "Y");
  splitter_->setObjectName(QStringLiteral("split"));
  splitter_->setChildrenCollapsible(true);
  makeTable();
  makePane();
  makeActions();
  auto* menus = new QMenuBar(this);
  menus->setObjectName(QStringLiteral("menus"));
  makeMenus(*menus);
  auto* layout = new QVBoxLayout(this);
  layout->setMenuBar(menus);
  layout->addWidget(makeToolBar());
  layout->addLayout(makeFindRow());
  layout->addWidget(splitter_, 1);
  layout->addLayout(makePageRow());
  splitter_->setStretchFactor(0, 3);
  splitter_->setStretchFactor(1, 1);
  resize(fontMetrics().averageCharWidth() * 170, fontMetrics().height() * 42);
  afterRowsChanged(TCellPlace{0, 0});
}

TfrmJSON::~TfrmJSON() {
  // The table is gone later than the grid that it shows.
  const QSignalBlocker quiet(table_->selectionModel());
  hide();
  table_->setModel(nullptr);
}

TList TfrmJSON::takeDocuments() {
  valuePlace_.reset();
  TList documents = grid_.take();
  afterRowsChanged({});
  return documents;
}

void TfrmJSON::makeTable() {
  table_->setObjectName(QStringLiteral("gDocuments"));
  table_->setAccessibleName(tr("Documents"));
  table_->setModel(model_);
  table_->setAlternatingRowColors(true);
  table_->setTabKeyNavigation(false);
  table_->setWordWrap(context_.settings.rowAutoHeight);
  table_->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed |
                          QAbstractItemView::DoubleClicked);
  table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  table_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  table_->horizontalHeader()->setHighlightSections(false);
  table_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  table_->horizontalHeader()->setSectionsClickable(true);
  table_->horizontalHeader()->setSortIndicatorShown(false);
  if (context_.settings.rowAutoHeight)
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  table_->setContextMenuPolicy(Qt::ActionsContextMenu);
  connect(table_->horizontalHeader(), &QHeaderView::sectionClicked, this, &TfrmJSON::onHeaderClicked);
  connect(table_, &QTableView::doubleClicked, this, &TfrmJSON::onDoubleClicked);
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this, &TfrmJSON::onCurrentChanged);
  connect(model_, &TGridModel::edited, this, [this] {
    showValue();
    updateActions();
  });
  // Queued: the cell's editor is still closing.
  connect(
      model_, &TGridModel::refused, this, [this] { showRefusal(); }, Qt::QueuedConnection);
}

void TfrmJSON::makePane() {
  pane_ = new QTabWidget(splitter_);
  pane_->setObjectName(QStringLiteral("pcCell"));
  pane_->tabBar()->setObjectName(QStringLiteral("tabCell"));
  pane_->tabBar()->setAccessibleName(tr("Form of the cell"));
  value_ = new TCodeEditor(TCodeLanguage::Json, pane_);
  value_->setNames("mValue", tr("Value of the cell"));
  blob_ = new TBlobPanel(context_, pane_);
  blob_->setReadOnly(options_.readOnly);
  pane_->addTab(value_, tr("Val&ue"));
  pane_->addTab(blob_, tr("&Binary Value"));
  connect(blob_, &TBlobPanel::edited, this, &TfrmJSON::onBlobEdited);
}

QAction* TfrmJSON::makeAction(const char* name, const QString& caption, const char* icon,
                              const QKeySequence& keys, THandler handler) {
  auto* action = new QAction(*icon ? themeIcon(icon) : QIcon(), caption, this);
  action->setObjectName(QLatin1String(name));
  action->setShortcut(keys);
  connect(action, &QAction::triggered, this, handler);
  return action;
}

void TfrmJSON::makeActions() {
  makeEditActions();
  makeGridActions();
  // Keys of the grid must not reach into the editors beside it.
  for (QAction* action : {undo_, deleteRow_, addRow_, actions_->copySelected()}) {
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    table_->addAction(action);
  }
  for (QAction* action :
       {clear_, viewRow_, actions_->exportMenu()->menuAction(), actions_->copyMenu()->menuAction(),
        actions_->copyAll(), actions_->print(), actions_->preview()})
    table_->addAction(action);
}

void TfrmJSON::makeEditActions() {
  using F = TfrmJSON;
  open_ = makeAction("actOpenFile", tr("&Open JSON File..."), "document-open", QKeySequence::Open,
                     &F::openFileClick);
  addRow_ = makeAction("actAddRow", tr("&Add Row"), "list-add", Qt::Key_Insert, &F::addRow);
  deleteRow_ = makeAction("actDeleteRow", tr("&Delete Row"), "list-remove", QKeySequence(tr("Ctrl+Del")),
                          &F::deleteRow);
  clear_ = makeAction("actClearData", tr("&Clear Data"), "edit-clear", {}, &F::clearData);
  addAttribute_ =
      makeAction("actAddAttribute", tr("Add A&ttribute..."), "list-add-nested", {}, &F::addAttribute);
  undo_ = makeAction("actUndo", tr("&Undo"), "edit-undo", QKeySequence::Undo, &F::undo);
  format_ = makeAction("actFormat", tr("&Format"), "view-list-text", {}, &F::format);
  viewRow_ = makeAction("actViewRow", tr("&View as JSON Document"), "document-edit",
                        QKeySequence(tr("Ctrl+J")), &F::viewRow);
  newCollection_ = makeAction("actNewCollection", tr("As &New Collection"), "document-save-as", {},
                              &F::saveAsNewCollection);
  // What the tool bar shows.
  const std::pair<QAction*, QString> shortCaptions[] = {
      {open_, tr("Open")}, {clear_, tr("Clear")}, {addAttribute_, tr("Attribute")}, {viewRow_, tr("View")}};
  for (const auto& [action, caption] : shortCaptions) action->setIconText(caption);
  newCollection_->setVisible(static_cast<bool>(options_.saveAsNewCollection));
  editActions_ = {open_, addRow_, deleteRow_, clear_, addAttribute_, undo_, format_};
}

void TfrmJSON::makeGridActions() {
  actions_ = new TGridActions(
      context_, *this,
      {[this] { return allRows(); }, [this] { return selectedPart(); }, [this] { return windowTitle(); }});
  actions_->copySelected()->setShortcut(QKeySequence::Copy);
  actions_->print()->setShortcut(QKeySequence::Print);
}

void TfrmJSON::makeMenus(QMenuBar& menus) {
  QMenu* file = menus.addMenu(tr("&File"));
  file->addAction(open_);
  file->addMenu(actions_->exportMenu());
  file->addAction(newCollection_);
  file->addSeparator();
  QAction* setup = file->addAction(tr("Page &Setup..."));
  connect(setup, &QAction::triggered, this, [this] { pageSetup(context_, this); });
  file->addAction(actions_->print());
  file->addAction(actions_->preview());
  QMenu* edit = menus.addMenu(tr("&Edit"));
  for (QAction* action : {undo_, addRow_, deleteRow_, clear_, addAttribute_}) edit->addAction(action);
  edit->addSeparator();
  edit->addAction(actions_->copySelected());
  edit->addAction(actions_->copyAll());
  edit->addMenu(actions_->copyMenu());
  edit->addSeparator();
  edit->addAction(viewRow_);
  edit->addAction(format_);
}

QToolBar* TfrmJSON::makeToolBar() {
  auto* bar = new QToolBar(this);
  bar->setObjectName(QStringLiteral("toolBar"));
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  for (QAction* action : {open_, addRow_, deleteRow_, clear_, addAttribute_, undo_, viewRow_, format_})
    bar->addAction(action);
  actions_->exportMenu()->menuAction()->setIconText(tr("Export"));
  bar->addAction(actions_->exportMenu()->menuAction());
  if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(actions_->exportMenu()->menuAction())))
    button->setPopupMode(QToolButton::InstantPopup);
  return bar;
}

QLayout* TfrmJSON::makeFindRow() {
  find_ = new QLineEdit(this);
  find_->setObjectName(QStringLiteral("eFind"));
  find_->setAccessibleName(tr("Find"));
  find_->setPlaceholderText(tr("Any part of a cell"));
  find_->setClearButtonEnabled(true);
  auto* label = new QLabel(tr("F&ind:"), this);
  label->setBuddy(find_);
  auto* row = new QHBoxLayout;
  row->addWidget(label);
  row->addWidget(find_, 1);
  const auto add = [&](const char* name, const QString& caption, const char* icon, const QKeySequence& keys,
                       THandler handler) {
    QAction* action = makeAction(name, caption, icon, keys, handler);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    table_->addAction(action);
    find_->addAction(action);
    auto* button = new QPushButton(themeIcon(icon), caption, this);
    button->setObjectName(QLatin1Char('b') + QLatin1String(name).mid(3));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    row->addWidget(button);
  };
  add("actGridFindNext", tr("Ne&xt"), "go-down", QKeySequence::FindNext, &TfrmJSON::findNext);
  add("actGridFindPrevious", tr("P&revious"), "go-up", QKeySequence::FindPrevious, &TfrmJSON::findPrevious);
  connect(find_, &QLineEdit::returnPressed, this, &TfrmJSON::findNext);
  QAction* show = makeAction("actFind", tr("Find"), "edit-find", QKeySequence::Find, &TfrmJSON::showFind);
  show->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  table_->addAction(show);
  return row;
}

QLayout* TfrmJSON::makePageRow() {
  auto* row = new QHBoxLayout;
  const auto add = [&](const char* name, const QString& caption, const char* icon, void (TGridView::*turn)(),
                       std::vector<QAction*>& kind) {
    auto* action = new QAction(themeIcon(icon), caption, this);
    auto* button = new QToolButton(this);
    button->setDefaultAction(action);
    button->setObjectName(QLatin1String(name));
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    row->addWidget(button);
    kind.push_back(action);
    connect(action, &QAction::triggered, this, [this, turn] { turnPage(turn); });
  };
  add("bFirst", tr("First Page"), "go-first", &TGridView::first, backActions_);
  add("bPrevious", tr("Previous Page"), "go-previous", &TGridView::previous, backActions_);
  pageText_ = new QLabel(this);
  pageText_->setObjectName(QStringLiteral("lPage"));
  row->addWidget(pageText_);
  add("bNext", tr("Next Page"), "go-next", &TGridView::next, forwardActions_);
  add("bLast", tr("Last Page"), "go-last", &TGridView::last, forwardActions_);
  row->addStretch();
  auto* buttons =
      new QDialogButtonBox(options_.readOnly ? QDialogButtonBox::StandardButtons(QDialogButtonBox::Close)
                                             : QDialogButtonBox::Ok | QDialogButtonBox::Cancel,
                           this);
  for (QAbstractButton* button : buttons->buttons()) {
    button->setObjectName(buttons->buttonRole(button) == QDialogButtonBox::AcceptRole
                              ? QStringLiteral("bOk")
                              : QStringLiteral("bCancel"));
    static_cast<QPushButton*>(button)->setAutoDefault(false);
  }
  connect(buttons, &QDialogButtonBox::accepted, this, &TfrmJSON::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &TfrmJSON::reject);
  row->addWidget(buttons);
  return row;
}

void TfrmJSON::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (placed_) return;
  placed_ = true;
  restorePlacement(context_.store, placementGroup, *this);
  restoreState(context_.store, placementGroup, *splitter_);
  table_->setFocus();
}

void TfrmJSON::done(int result) {
  savePlacement(context_.store, placementGroup, *this);
  saveState(context_.store, placementGroup, *splitter_);
  QDialog::done(result);
}

void TfrmJSON::accept() {
  // An editor that is still open gives its text when it loses the focus.
  table_->setFocus();
  if (showRefusal() || !commitValue()) return;
  QDialog::accept();
}

void TfrmJSON::reject() {
  const bool edited = changed() || (value_->isModified() && !options_.readOnly);
  if (edited && !context_.prompt.confirm(tr("Are you sure to discard all changes?").toStdString())) return;
  QDialog::reject();
}

// --- places and selections

std::optional<TCellPlace> TfrmJSON::currentPlace() const {
  const QModelIndex current = table_->currentIndex();
  return current.isValid() ? std::optional(model_->placeOf(current)) : std::nullopt;
}

std::vector<TCellPlace> TfrmJSON::selectedCells() const {
  std::vector<TCellPlace> cells;
  const QModelIndexList selected = table_->selectionModel()->selectedIndexes();
  for (const QModelIndex& index : selected) cells.push_back(model_->placeOf(index));
  if (cells.empty())
    if (const auto current = currentPlace()) cells.push_back(*current);
  return cells;
}

std::vector<std::size_t> TfrmJSON::selectedRows() const {
  std::set<std::size_t> rows;
  for (const TCellPlace& cell : selectedCells()) rows.insert(cell.row);
  return {rows.begin(), rows.end()};
}

/// In the order on view, all pages.
std::unique_ptr<TGridTable> TfrmJSON::allRows() const {
  std::vector<std::size_t> rows(grid_.rows()), columns(grid_.columns());
  for (std::size_t place = 0; place < rows.size(); ++place) rows[place] = view_.rowAt(place);
  std::iota(columns.begin(), columns.end(), std::size_t{0});
  return std::make_unique<TGridPart>(grid_, std::move(rows), std::move(columns));
}

/// The rows and columns in which something is selected.
std::unique_ptr<TGridTable> TfrmJSON::selectedPart() const {
  std::set<std::size_t> places, columns;
  for (const TCellPlace& cell : selectedCells()) {
    places.insert(view_.placeOf(cell.row));
    columns.insert(cell.column);
  }
  if (places.empty()) return nullptr;
  std::vector<std::size_t> rows;
  for (const std::size_t place : places) rows.push_back(view_.rowAt(place));
  return std::make_unique<TGridPart>(grid_, std::move(rows), std::vector(columns.begin(), columns.end()));
}

void TfrmJSON::showCell(TCellPlace place) {
  if (grid_.rows() == 0 || grid_.columns() == 0) return onCurrentChanged();
  const std::size_t page = view_.placeOf(std::min(place.row, grid_.rows() - 1)) / view_.pageSize();
  if (page != view_.page()) {
    view_.showPage(page);
    model_->refresh();
  }
  const QModelIndex index =
      model_->indexOf({std::min(place.row, grid_.rows() - 1), std::min(place.column, grid_.columns() - 1)});
  table_->setCurrentIndex(index);
  table_->scrollTo(index);
  updatePages();
}

/// Rows, columns or their order are others now.
void TfrmJSON::afterRowsChanged(std::optional<TCellPlace> place) {
  valuePlace_.reset();
  value_->setModified(false);
  view_.refresh();
  model_->refresh();
  fitColumns();
  showCell(place.value_or(TCellPlace{view_.rowAt(view_.pageStart()), 0}));
  showValue();
  updatePages();
  updateActions();
}

void TfrmJSON::turnPage(void (TGridView::*turn)()) {
  if (!commitValue()) return;
  valuePlace_.reset();
  (view_.*turn)();
  model_->refresh();
  if (view_.pageRows() > 0) showCell({view_.rowAt(view_.pageStart()), 0});
  showValue();
  updatePages();
}

void TfrmJSON::fitColumns() {
  if (!context_.settings.colAutoWidth) return;
  const int widest = fontMetrics().averageCharWidth() * 50;
  table_->resizeColumnsToContents();
  for (int column = 0; column < model_->columnCount(); ++column)
    if (table_->columnWidth(column) > widest) table_->setColumnWidth(column, widest);
}

void TfrmJSON::updateActions() {
  const bool some = currentPlace().has_value();
  for (QAction* action : editActions_) action->setEnabled(!options_.readOnly);
  undo_->setEnabled(!options_.readOnly && grid_.canUndo());
  addAttribute_->setEnabled(!options_.readOnly);
  for (QAction* action : {deleteRow_, clear_, format_}) action->setEnabled(some && !options_.readOnly);
  actions_->copySelected()->setEnabled(some);
  const auto place = currentPlace();
  viewRow_->setEnabled(place && grid_.document(place->row).isNested());
  value_->setReadOnly(options_.readOnly || !some);
}

void TfrmJSON::updatePages() {
  for (QAction* action : backActions_) action->setEnabled(!view_.isFirst());
  for (QAction* action : forwardActions_) action->setEnabled(!view_.isLast());
  const auto number = [](std::size_t count) { return QLocale().toString(static_cast<qulonglong>(count)); };
  pageText_->setText(grid_.rows() == 0
                         ? tr("No rows")
                         : tr("Rows %1 to %2 of %3")
                               .arg(number(view_.pageStart() + 1),
                                    number(view_.pageStart() + view_.pageRows()), number(grid_.rows())));
}

void TfrmJSON::refuse(const std::string& message) { context_.prompt.error(message); }

/// Whether a cell's editor was refused; it is told once.
bool TfrmJSON::showRefusal() {
  const std::string refusal = model_->takeRefusal();
  if (!refusal.empty()) refuse(refusal);
  return !refusal.empty();
}

// --- the pane below the grid

void TfrmJSON::onCurrentChanged() {
  commitValue();
  showValue();
  updateActions();
}

void TfrmJSON::showValue() {
  valuePlace_ = currentPlace();
  const TValue* value = valuePlace_ ? grid_.cell(valuePlace_->row, valuePlace_->column) : nullptr;
  const bool nested = value && value->isNested();
  if (auto bytes = cellBytes(value)) {
    pane_->setCurrentIndex(BinaryPage);
    blob_->showBytes(std::move(*bytes));
  } else {
    pane_->setCurrentIndex(ValuePage);
    blob_->showNothing(valuePlace_.has_value());
  }
  value_->setLanguage(nested ? TCodeLanguage::Json : TCodeLanguage::Plain);
  value_->setText(nested ? toPrettyJson(*value) : cleanCellText(value));
  value_->setModified(false);
}

/// Puts what was typed below the grid into its cell. False when it was refused; then it is told, and the text
/// stays as long as the cell has the focus.
bool TfrmJSON::commitValue() {
  if (!valuePlace_ || !value_->isModified() || options_.readOnly) return true;
  const TCellPlace place = *valuePlace_;
  const std::string refusal = grid_.setText(place, value_->text(), context_.dates);
  value_->setModified(!refusal.empty() && currentPlace() == valuePlace_);
  if (!refusal.empty()) {
    refuse(refusal);
    return false;
  }
  model_->refreshRow(place.row);
  updateActions();
  return true;
}

void TfrmJSON::onBlobEdited() {
  if (!valuePlace_) return;
  const TCellPlace place = *valuePlace_;
  const TValue* before = grid_.cell(place.row, place.column);
  const bool isText = !before || before->is(TKind::Text);
  const bool cleared = blob_->bytes().empty();
  const std::string refusal = grid_.setValue(
      place,
      cleared && isText ? TValue("") : binaryCell(before, grid_.columnKind(place.column), blob_->bytes()));
  if (!refusal.empty()) return refuse(refusal);
  value_->setText(cellText(grid_.cell(place.row, place.column)));
  value_->setModified(false);
  model_->refreshRow(place.row);
  updateActions();
}

void TfrmJSON::format() {
  try {
    const TValue value = parseJson(value_->text());
    if (!value.isNested()) return refuse(gridtexts::invalidDocument);
    pane_->setCurrentIndex(ValuePage);
    value_->replaceText(toPrettyJson(value));
  } catch (const TJsonError&) {
    refuse(gridtexts::invalidDocument);
  }
}

// --- actions

std::optional<TFileDocuments> readJsonFile(TWindowContext& context, const QString& fileName) {
  TFileDocuments read;
  TStopFlag stop;
  try {
    runWithWaitDialog(
        TfrmJSON::tr("Opening %1...").arg(QFileInfo(fileName).fileName()),
        [&] { read.documents = readDocuments(fileName.toStdString(), &stop, &read.form); }, stop);
    if (!stop.isSet()) return read;
  } catch (const TDocumentTextError& error) {
    context.prompt.error(std::string(error.what()) + "\n\n" + fileName.toStdString() + ": " + error.detail());
  } catch (const std::exception& error) {
    context.prompt.error(error.what());
  }
  return std::nullopt;
}

bool TfrmJSON::openFile(const QString& fileName) {
  auto read = readJsonFile(context_, fileName);
  if (!read) return false;
  valuePlace_.reset();
  grid_.load(std::move(read->documents));
  replaced_ = true;
  onHeaderClicked(-1);
  afterRowsChanged(TCellPlace{0, 0});
  return true;
}

void TfrmJSON::openFileClick() {
  if (changed() && !context_.prompt.confirm(tr("Are you sure to discard all changes?").toStdString())) return;
  const QString name = QFileDialog::getOpenFileName(this, tr("Open JSON File"), {},
                                                    tr("JSON files (*.json *.jsonl);;All files (*)"));
  if (!name.isEmpty()) openFile(name);
}

void TfrmJSON::addRow() {
  if (!commitValue()) return;
  const std::size_t row = grid_.addRow();
  afterRowsChanged(TCellPlace{row, 0});
}

void TfrmJSON::deleteRow() {
  const std::vector<std::size_t> rows = selectedRows();
  if (rows.empty() || !commitValue()) return;
  grid_.deleteRows(rows);
  const auto current = currentPlace();
  afterRowsChanged(TCellPlace{rows.front(), current ? current->column : 0});
}

void TfrmJSON::clearData() {
  if (!commitValue()) return;
  grid_.clearCells(selectedCells());
  for (const std::size_t row : selectedRows()) model_->refreshRow(row);
  showValue();
  updateActions();
}

void TfrmJSON::addAttribute() {
  if (!commitValue()) return;
  const auto place = currentPlace();
  TAddAttributeDialog dialog(
      context_.prompt, [this](const std::string& name) { return grid_.addAttribute(name); }, this);
  if (dialog.exec() != QDialog::Accepted) return;
  afterRowsChanged(TCellPlace{place ? place->row : 0, grid_.columns() - 1});
}

void TfrmJSON::undo() {
  if (!commitValue()) return;
  const auto place = currentPlace();
  grid_.undo();
  afterRowsChanged(place);
}

void TfrmJSON::viewRow() {
  const auto place = currentPlace();
  if (!place || !commitValue() || !grid_.document(place->row).isNested()) return;
  TViewJsonOptions options;
  options.readOnly = options_.readOnly;
  auto edited = viewJsonDocument(context_, this, grid_.document(place->row), options);
  if (!edited) return;
  grid_.replaceDocument(place->row, std::move(*edited));
  afterRowsChanged(place);
}

void TfrmJSON::viewCell(TCellPlace place) {
  if (!commitValue()) return;
  TViewJsonOptions options;
  options.readOnly = options_.readOnly;
  auto edited = viewJsonDocument(context_, this, *grid_.cell(place.row, place.column), options);
  if (!edited) return;
  grid_.setValue(place, std::move(*edited));
  model_->refreshRow(place.row);
  showValue();
  updateActions();
}

/// Nested values are too much for a line: they open in the viewer.
void TfrmJSON::onDoubleClicked(const QModelIndex& index) {
  const TCellPlace place = model_->placeOf(index);
  const TValue* value = grid_.cell(place.row, place.column);
  if (!value || !value->isNested()) return;
  table_->closePersistentEditor(index);
  viewCell(place);
}

/// Up, down, and the documents' own order again.
void TfrmJSON::onHeaderClicked(int column) {
  if (!commitValue()) return;
  const bool same = column == sortedColumn_;
  const bool ends = column < 0 || (same && sortOrder_ == Qt::DescendingOrder);
  sortOrder_ = same && !ends ? Qt::DescendingOrder : Qt::AscendingOrder;
  sortedColumn_ = ends ? -1 : column;
  table_->horizontalHeader()->setSortIndicatorShown(!ends);
  table_->horizontalHeader()->setSortIndicator(sortedColumn_, sortOrder_);
  const auto place = currentPlace();
  view_.sortBy(ends ? std::nullopt : std::optional(static_cast<std::size_t>(column)),
               sortOrder_ == Qt::DescendingOrder);
  afterRowsChanged(place);
}

void TfrmJSON::saveAsNewCollection() {
  if (commitValue() && options_.saveAsNewCollection) options_.saveAsNewCollection(this, grid_.documents());
}

void TfrmJSON::showFind() {
  find_->setFocus();
  find_->selectAll();
}

void TfrmJSON::find(bool backwards) {
  if (find_->text().isEmpty()) return showFind();
  if (!commitValue()) return;
  const auto current = currentPlace();
  const TCellPlace from =
      current ? TCellPlace{view_.placeOf(current->row), current->column} : TCellPlace{0, 0};
  const auto found = view_.find(find_->text().toStdString(), from, backwards);
  if (!found)
    return void(context_.prompt.ask(TPromptKind::Information, tr("The text was not found.").toStdString(),
                                    TButtons::Ok));
  showCell({view_.rowAt(found->row), found->column});
}

}  // namespace hollowmere
