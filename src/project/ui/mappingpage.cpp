#include "project/ui/mappingpage.h"

#include <QComboBox>
#include <QDropEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "engine/targettype.h"
#include "json/json.h"
#include "jsondoc/ui/viewjson.h"
#include "project/edittexts.h"
#include "project/runcheck.h"
#include "ui/choicebox.h"
#include "ui/icons.h"
#include "ui/placement.h"

namespace hollowmere {

namespace {

enum TColumn { TargetColumn, SourceColumn, TypeColumn };

const QString& placementGroup() {
  static const QString group = QStringLiteral("project");
  return group;
}

QString shown(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Offers what a cell can hold; the source may also be typed.
class TMappingDelegate : public QStyledItemDelegate {
 public:
  explicit TMappingDelegate(TMappingPage& page) : QStyledItemDelegate(&page), page_(page) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override {
    if (index.column() == TargetColumn)
      return named(QStyledItemDelegate::createEditor(parent, option, index), index);
    auto* box = new TChoiceBox(parent);
    if (index.column() == SourceColumn) {
      box->setEditable(true);
      box->addItems(page_.sourceChoices(pathOf(index)));
    } else {
      for (const TTargetType type : allTargetTypes) box->addItem(shown(targetTypeText(type)));
    }
    auto* self = const_cast<TMappingDelegate*>(this);
    connect(box, &QComboBox::activated, this, [self, box] {
      if (!box->isFinal()) return;
      Q_EMIT self->commitData(box);
      Q_EMIT self->closeEditor(box);
    });
    return named(box, index);
  }

  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    auto* box = qobject_cast<QComboBox*>(editor);
    if (!box) return QStyledItemDelegate::setEditorData(editor, index);
    const QString value = index.data().toString();
    if (box->isEditable())
      box->setEditText(value);
    else
      box->setCurrentText(value);
  }

  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override {
    auto* box = qobject_cast<QComboBox*>(editor);
    if (!box) return QStyledItemDelegate::setModelData(editor, model, index);
    model->setData(index, box->currentText());
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() == TypeColumn) return;
    const TSide side = index.column() == TargetColumn ? TSide::Target : TSide::Source;
    if (page_.editor().isRowKey(pathOf(index), side)) option->text = text("Row Key");
  }

 private:
  static TNodePath pathOf(const QModelIndex& index) {
    TNodePath path;
    for (QModelIndex at = index; at.isValid(); at = at.parent())
      path.insert(path.begin(), static_cast<std::size_t>(at.row()));
    return path;
  }

  static QWidget* named(QWidget* editor, const QModelIndex& index) {
    editor->setAccessibleName(index.model()->headerData(index.column(), Qt::Horizontal).toString());
    return editor;
  }

  TMappingPage& page_;
};

QStringList cellsOf(const TMapNode& node) {
  return {QString::fromStdString(node.target), QString::fromStdString(node.source),
          QString::fromStdString(node.targetType)};
}

void insertBelow(QTreeWidgetItem* parent, const TMapNode& node) {
  auto* item = new QTreeWidgetItem(parent, cellsOf(node));
  item->setFlags(item->flags() | Qt::ItemIsEditable);
  for (const TMapNode& child : node.children) insertBelow(item, child);
}

void expand(QTreeWidgetItem* item) {
  if (item->childCount() == 0) return;
  item->setExpanded(true);
  for (int place = 0; place < item->childCount(); ++place) expand(item->child(place));
}

QPlainTextEdit* makeView(QWidget* parent, const char* name, const QString& caption) {
  auto* view = new QPlainTextEdit(parent);
  view->setObjectName(QLatin1String(name));
  view->setAccessibleName(caption);
  view->setReadOnly(true);
  view->setTabChangesFocus(true);
  view->setLineWrapMode(QPlainTextEdit::NoWrap);
  view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  return view;
}

/// A row's text as JSON that people can read; as it is when it is none.
QString readable(const std::string& text) {
  try {
    return QString::fromStdString(toPrettyJson(parseJson(text)));
  } catch (const TJsonError&) {
    return QString::fromStdString(text);
  }
}

}  // namespace

TMappingTree::TMappingTree(QWidget* parent) : QTreeWidget(parent) {
  setObjectName(QStringLiteral("tlMapping"));
  setAccessibleName(tr("Mapping"));
  setHeaderLabels({text("Target Object/Attribute"), text("Source Object/Attribute"), text("Target Type")});
  setDragDropMode(QAbstractItemView::InternalMove);
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
  setEditTriggers(DoubleClicked | SelectedClicked | EditKeyPressed);
  setAllColumnsShowFocus(false);
}

TNodePath TMappingTree::pathOf(const QTreeWidgetItem* item) {
  TNodePath path;
  for (; item; item = item->parent()) {
    const QTreeWidgetItem* parent = item->parent();
    const int place = parent ? parent->indexOfChild(const_cast<QTreeWidgetItem*>(item))
                             : item->treeWidget()->indexOfTopLevelItem(const_cast<QTreeWidgetItem*>(item));
    path.insert(path.begin(), static_cast<std::size_t>(place));
  }
  return path;
}

QTreeWidgetItem* TMappingTree::itemAt(const TNodePath& path) const {
  QTreeWidgetItem* item = nullptr;
  for (const std::size_t place : path) {
    item = item ? item->child(static_cast<int>(place)) : topLevelItem(static_cast<int>(place));
    if (!item) return nullptr;
  }
  return item;
}

/// Only tells what is wanted: the editor decides, and the tree is filled anew.
void TMappingTree::dropEvent(QDropEvent* event) {
  QTreeWidgetItem* onto = QTreeWidget::itemAt(event->position().toPoint());
  QTreeWidgetItem* dragged = currentItem();
  event->setDropAction(Qt::IgnoreAction);
  event->accept();
  if (!onto || !dragged || onto == dragged) return;
  TNodePath to = pathOf(onto);
  if (dropIndicatorPosition() == QAbstractItemView::OnItem)
    to.push_back(static_cast<std::size_t>(onto->childCount()));
  else if (dropIndicatorPosition() == QAbstractItemView::BelowItem)
    ++to.back();
  Q_EMIT moved(pathOf(dragged), to);
}

TMappingPage::TMappingPage(TWindowContext& context, TProjectEditor& editor, QWidget* parent)
    : QWidget(parent), context_(context), editor_(editor), preview_(context, this) {
  auto* layout = new QVBoxLayout(this);
  buttons_ = new QHBoxLayout;
  makeButtons();
  layout->addLayout(buttons_);
  splitter_ = new QSplitter(this);
  splitter_->setObjectName(QStringLiteral("mappingSplitter"));
  layout->addWidget(splitter_, 1);
  tree_ = new TMappingTree(splitter_);
  tree_->setItemDelegate(new TMappingDelegate(*this));
  connect(tree_, &QTreeWidget::itemChanged, this, &TMappingPage::onChanged);
  connect(tree_, &QTreeWidget::currentItemChanged, this, [this] {
    const TNodePath at = path();
    if (!filling_ && !at.empty() && at.front() != previewRoot_) requestPreview();
  });
  connect(tree_, &TMappingTree::moved, this,
          [this](const TNodePath& from, const TNodePath& to) { act(editor_.moveNode(from, to)); });
  makePreview();
  setFocusProxy(tree_);
  restoreState(context_.store, placementGroup(), *splitter_);
  restoreState(context_.store, placementGroup(), *tree_->header(), tree_->objectName());
  connect(&preview_, &TPreviewJob::finished, this, &TMappingPage::onPreview);
  connect(&preview_, &TPreviewJob::started, this,
          [this] { fault_->setText(tr("Reading the first rows...")); });
  rebuild();
}

TMappingPage::~TMappingPage() {
  saveState(context_.store, placementGroup(), *splitter_);
  saveState(context_.store, placementGroup(), *tree_->header(), tree_->objectName());
}

QPushButton* TMappingPage::addButton(const char* name, const QString& caption, const char* icon,
                                     void (TMappingPage::*click)()) {
  auto* button = new QPushButton(themeIcon(icon), caption, this);
  button->setObjectName(QLatin1String(name));
  button->setAutoDefault(false);
  buttons_->addWidget(button);
  connect(button, &QPushButton::clicked, this, click);
  return button;
}

void TMappingPage::makeButtons() {
  addButton("bAddMapTarget", tr("Add &Target"), "list-add", &TMappingPage::bAddMapTargetClick);
  addButton("bAddAttrMap", tr("Add &Attribute"), "list-add", &TMappingPage::bAddAttrMapClick);
  addButton("bAddAllFields", tr("Add All F&ields"), "view-list-text", &TMappingPage::bAddAllClick);
  addButton("bDelMap", tr("&Delete"), "list-remove", &TMappingPage::bDelMapClick);
  addButton("bUpMap", tr("&Up"), "go-up", &TMappingPage::bUpMapClick);
  addButton("bDownMap", tr("D&own"), "go-down", &TMappingPage::bDownMapClick);
  addButton("bClearMap", tr("C&lear"), "edit-clear", &TMappingPage::bClearMapClick);
  buttons_->addStretch();
  find_ = new QLineEdit(this);
  find_->setObjectName(QStringLiteral("eFindMap"));
  find_->setPlaceholderText(tr("Find"));
  find_->setAccessibleName(tr("Find in the mapping"));
  find_->setClearButtonEnabled(true);
  buttons_->addWidget(find_);
  connect(find_, &QLineEdit::returnPressed, this, &TMappingPage::onFind);
}

void TMappingPage::makePreview() {
  auto* panel = new QWidget(splitter_);
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* bar = new QHBoxLayout;
  layout->addLayout(bar);
  position_ = new QLabel(panel);
  position_->setObjectName(QStringLiteral("lPreviewRow"));
  bar->addWidget(position_, 1);
  previous_ = new QPushButton(themeIcon("go-previous"), tr("P&revious Row"), panel);
  previous_->setObjectName(QStringLiteral("bPreviousRow"));
  next_ = new QPushButton(themeIcon("go-next"), tr("&Next Row"), panel);
  next_->setObjectName(QStringLiteral("bNextRow"));
  viewRow_ = new QPushButton(themeIcon("edit-find"), tr("&View Source Row"), panel);
  viewRow_->setObjectName(QStringLiteral("bViewRow"));
  viewDocument_ = new QPushButton(themeIcon("edit-find"), tr("View Docu&ment"), panel);
  viewDocument_->setObjectName(QStringLiteral("bViewDocument"));
  for (QPushButton* button : {viewRow_, viewDocument_, previous_, next_}) {
    button->setEnabled(false);  // until there is a preview
    bar->addWidget(button);
  }
  connect(viewRow_, &QPushButton::clicked, this, &TMappingPage::bViewRowClick);
  connect(viewDocument_, &QPushButton::clicked, this, &TMappingPage::bViewDocumentClick);
  connect(previous_, &QPushButton::clicked, this, [this] { showRow(row_ - 1); });
  connect(next_, &QPushButton::clicked, this, [this] { showRow(row_ + 1); });
  auto* views = new QSplitter(panel);
  views->setObjectName(QStringLiteral("previewSplitter"));
  rowText_ = makeView(views, "mPreviewRow", tr("Source row"));
  document_ = makeView(views, "mPreviewDocument", tr("Resulting document"));
  // A double click reaches the viewport, Enter the view itself.
  for (QPlainTextEdit* view : {rowText_, document_}) {
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
  }
  layout->addWidget(views, 1);
  fault_ = new QLabel(panel);
  fault_->setObjectName(QStringLiteral("lPreviewFault"));
  fault_->setWordWrap(true);
  fault_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  layout->addWidget(fault_);
  // Half and half; the splitter brings them down to its width.
  splitter_->setSizes({10000, 10000});
}

const TPreviewRow* TMappingPage::shownRow() const {
  const auto at = static_cast<std::size_t>(row_);
  return at < result_.rows.size() ? &result_.rows[at] : nullptr;
}

void TMappingPage::bViewRowClick() {
  if (const TPreviewRow* row = shownRow())
    viewJsonText(context_, this, row->rowText, {true, tr("Source Row %1").arg(row_ + 1)});
}

void TMappingPage::bViewDocumentClick() {
  const TPreviewRow* row = shownRow();
  if (row && row->error.empty())
    viewJsonDocument(context_, this, row->document, {true, tr("Resulting Document of Row %1").arg(row_ + 1)});
}

bool TMappingPage::eventFilter(QObject* watched, QEvent* event) {
  const bool enter =
      event->type() == QEvent::KeyPress && (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Return ||
                                            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Enter);
  if (!enter && event->type() != QEvent::MouseButtonDblClick) return QWidget::eventFilter(watched, event);
  watched == rowText_ || watched == rowText_->viewport() ? bViewRowClick() : bViewDocumentClick();
  return true;
}

void TMappingPage::insert(QTreeWidgetItem* parent, int place, const TMapNode& node) {
  auto* item = new QTreeWidgetItem(cellsOf(node));
  item->setFlags(item->flags() | Qt::ItemIsEditable);
  // The children first: the view is told once.
  for (const TMapNode& child : node.children) insertBelow(item, child);
  parent->insertChild(place, item);
  expand(item);
}

/// Makes the items below a parent those of the nodes now; only what differs from before is touched, since a
/// large tree filled anew would be felt at every key.
void TMappingPage::sync(QTreeWidgetItem* parent, const std::vector<TMapNode>& before,
                        const std::vector<TMapNode>& now) {
  const auto same = [](const TMapNode& a, const TMapNode& b) { return a == b; };
  const auto from = std::mismatch(before.begin(), before.end(), now.begin(), now.end(), same);
  const auto first = static_cast<std::size_t>(from.first - before.begin());
  std::size_t behind = 0;
  while (behind < std::min(before.size(), now.size()) - first &&
         before[before.size() - 1 - behind] == now[now.size() - 1 - behind])
    ++behind;
  const std::size_t oldEnd = before.size() - behind;
  const std::size_t newEnd = now.size() - behind;
  for (std::size_t place = first; place < std::min(oldEnd, newEnd); ++place) {
    QTreeWidgetItem* item = parent->child(static_cast<int>(place));
    const QStringList cells = cellsOf(now[place]);
    for (int column = 0; column < cells.size(); ++column)
      if (item->text(column) != cells[column]) item->setText(column, cells[column]);
    sync(item, before[place].children, now[place].children);
  }
  for (std::size_t place = oldEnd; place > newEnd; --place)
    delete parent->takeChild(static_cast<int>(place - 1));
  for (std::size_t place = oldEnd; place < newEnd; ++place)
    insert(parent, static_cast<int>(place), now[place]);
  if (newEnd > oldEnd) parent->setExpanded(true);
}

void TMappingPage::rebuild() {
  filling_ = true;
  const bool first = tree_->topLevelItemCount() == 0 &&
                     !context_.store.contains(placementGroup() + QLatin1Char('/') + tree_->objectName());
  const std::vector<TMapNode>& nodes = editor_.project().mapping;
  sync(tree_->invisibleRootItem(), shown_, nodes);
  shown_ = nodes;
  if (first)
    for (int column : {TargetColumn, SourceColumn}) tree_->resizeColumnToContents(column);
  if (QTreeWidgetItem* item = tree_->itemAt(editor_.current())) tree_->setCurrentItem(item);
  filling_ = false;
}

/// What is wrong with the tree as it stands, and where the rows of the preview have failed.
std::map<TNodePath, QString> TMappingPage::faults() const {
  const TProject& project = editor_.project();
  std::map<TNodePath, QString> found;
  const auto add = [&found](const TNodePath& path, const QString& message) {
    found.emplace(path, message);  // the first of a node stands for all
  };
  for (const TMappingFault& fault : mappingFaults(project, context_.stores.find(project.source.dbType),
                                                  context_.stores.find(project.target.dbType)))
    add(fault.path, text(fault.message));
  // What was read for another tree says nothing about this one.
  if (previewIsOld_) return found;
  for (const TPreviewRow& row : result_.rows) {
    if (row.error.empty()) continue;
    TNodePath path{previewRoot_};
    path.insert(path.end(), row.errorPath.begin(), row.errorPath.end());
    add(path, tr("Row %1: %2").arg(row.number).arg(QString::fromStdString(row.error)));
  }
  if (!result_.error.empty()) add({previewRoot_}, QString::fromStdString(result_.error));
  return found;
}

void TMappingPage::markFaults() {
  const bool wasFilling = std::exchange(filling_, true);
  const auto mark = [this](const TNodePath& path, const QIcon& icon, const QString& message) {
    QTreeWidgetItem* item = tree_->itemAt(path);
    if (!item) return;
    item->setIcon(TargetColumn, icon);
    for (int column : {TargetColumn, SourceColumn, TypeColumn}) item->setToolTip(column, message);
    // Screen readers say it, too.
    item->setData(TargetColumn, Qt::AccessibleDescriptionRole, message);
  };
  auto found = faults();
  const QIcon warning = style()->standardIcon(QStyle::SP_MessageBoxWarning);
  for (const auto& [path, message] : marks_)
    if (!found.contains(path)) mark(path, {}, {});
  for (const auto& [path, message] : found) mark(path, warning, message);
  marks_ = std::move(found);
  filling_ = wasFilling;
}

void TMappingPage::refresh() {
  rebuild();
  previewIsOld_ = true;
  markFaults();
  requestPreview();
}

/// After a change: shows it, or says why it was not made.
void TMappingPage::act(const std::string& refusal) {
  refresh();
  if (refusal.empty())
    Q_EMIT edited();
  else
    Q_EMIT refused(text(refusal));
}

TNodePath TMappingPage::path() const {
  return tree_->currentItem() ? TMappingTree::pathOf(tree_->currentItem()) : TNodePath();
}

QStringList TMappingPage::sourceChoices(const TNodePath& path) const {
  QStringList choices;
  const TMapNode* node = nodeAt(editor_.project().mapping, path);
  const auto type = node ? targetTypeFromText(node->targetType) : std::nullopt;
  if (path.size() == 1 || (type && isDataSource(*type))) {
    for (const TDataSource& source : editor_.project().dataSources)
      choices << QString::fromStdString(source.name);
    return choices;
  }
  if (path.empty() || path.front() != previewRoot_) return choices;
  const auto found = result_.fields.find(TNodePath(path.begin() + 1, path.end() - 1));
  if (found == result_.fields.end()) return choices;
  for (const TSampledField& field : found->second) choices << QString::fromStdString(field.name);
  return choices;
}

void TMappingPage::bAddMapTargetClick() { act(editor_.addRoot()); }

void TMappingPage::bAddAttrMapClick() {
  // Beside an attribute, below a target or a data source.
  TNodePath parent = path();
  const TMapNode* node = nodeAt(editor_.project().mapping, parent);
  const auto type = node ? targetTypeFromText(node->targetType) : std::nullopt;
  if (parent.size() > 1 && !(type && isDataSource(*type))) parent.pop_back();
  act(editor_.addAttribute(parent));
  if (QTreeWidgetItem* item = tree_->currentItem()) tree_->editItem(item, SourceColumn);
}

void TMappingPage::bAddAllClick() {
  TNodePath parent = path();
  if (parent.empty() && !editor_.project().mapping.empty()) parent = {0};
  while (parent.size() > 1 && !result_.fields.contains(TNodePath(parent.begin() + 1, parent.end())))
    parent.pop_back();
  std::vector<TSampledField> fields;
  if (!parent.empty() && parent.front() == previewRoot_)
    for (const TSampledField& field : result_.fields[TNodePath(parent.begin() + 1, parent.end())])
      if (field.name.find('.') == std::string::npos) fields.push_back(field);
  if (!parent.empty() && fields.empty()) {
    Q_EMIT refused(tr("No fields of this data source are known yet: the preview beside the tree tells why."));
    return;
  }
  act(editor_.addFields(parent, fields));
}

void TMappingPage::bDelMapClick() { act(editor_.deleteNode(path())); }

void TMappingPage::bUpMapClick() {
  editor_.moveUp(path());
  act({});
}

void TMappingPage::bDownMapClick() {
  editor_.moveDown(path());
  act({});
}

void TMappingPage::bClearMapClick() {
  editor_.clearMapping();
  act({});
}

void TMappingPage::onChanged(QTreeWidgetItem* item, int column) {
  if (filling_) return;
  const TNodePath at = TMappingTree::pathOf(item);
  const std::string given = item->text(column).toStdString();
  std::string refusal;
  if (column == TargetColumn) refusal = editor_.setTarget(at, given);
  if (column == SourceColumn) refusal = editor_.setSource(at, given);
  if (column == TypeColumn) refusal = editor_.setType(at, given);
  // An attribute without a name of its own takes that of its field.
  if (column == SourceColumn && refusal.empty() && at.size() > 1) {
    const TMapNode* node = nodeAt(editor_.project().mapping, at);
    if (node && node->target == "Attribute" + std::to_string(at.back() + 1)) editor_.setTarget(at, given);
  }
  // The editor of the cell is still open: what the cell shows is settled after it.
  QMetaObject::invokeMethod(
      this,
      [this, at, refusal] {
        showCells(at);
        act(refusal);
      },
      Qt::QueuedConnection);
}

/// A cell may show what was typed and not taken.
void TMappingPage::showCells(const TNodePath& path) {
  const TMapNode* node = nodeAt(editor_.project().mapping, path);
  QTreeWidgetItem* item = tree_->itemAt(path);
  if (!node || !item) return;
  filling_ = true;
  const QStringList cells = cellsOf(*node);
  for (int column = 0; column < cells.size(); ++column)
    if (item->text(column) != cells[column]) item->setText(column, cells[column]);
  filling_ = false;
}

void TMappingPage::onFind() {
  const TNodePath found = findNode(editor_.project().mapping, find_->text().toStdString(), path());
  if (QTreeWidgetItem* item = found.empty() ? nullptr : tree_->itemAt(found)) tree_->setCurrentItem(item);
}

void TMappingPage::requestPreview() {
  const TNodePath at = path();
  preview_.request(editor_.project(), at.empty() ? 0 : at.front());
}

void TMappingPage::onPreview(std::size_t root, const TPreviewResult& result) {
  previewRoot_ = root;
  result_ = result;
  previewIsOld_ = false;
  markFaults();
  showRow(row_);
}

void TMappingPage::showRow(int row) {
  const int count = static_cast<int>(result_.rows.size());
  row_ = std::clamp(row, 0, std::max(0, count - 1));
  previous_->setEnabled(row_ > 0);
  next_->setEnabled(row_ + 1 < count);
  viewRow_->setEnabled(count > 0);
  viewDocument_->setEnabled(count > 0 && shownRow()->error.empty());
  fault_->setText(QString::fromStdString(result_.error));
  if (count == 0) {
    position_->setText(tr("No rows"));
    rowText_->clear();
    document_->clear();
    return;
  }
  const TPreviewRow& sample = *shownRow();
  position_->setText(tr("Row %1 of the first %2").arg(row_ + 1).arg(count));
  rowText_->setPlainText(readable(sample.rowText));
  document_->setPlainText(sample.error.empty() ? QString::fromStdString(toPrettyJson(sample.document))
                                               : QString());
  if (!sample.error.empty()) fault_->setText(QString::fromStdString(sample.error));
}

}  // namespace hollowmere
