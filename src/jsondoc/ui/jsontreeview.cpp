#include "jsondoc/ui/jsontreeview.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QStyledItemDelegate>
#include <vector>

#include "jsondoc/ui/jsontreemodel.h"

namespace hollowmere {

namespace {

constexpr std::size_t expandedRows = 5000;

/// Null and the empty text have the same display text; the difference is drawn.
class TJsonDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override {
    QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
    editor->setAccessibleName(index.model()->headerData(index.column(), Qt::Horizontal).toString());
    return editor;
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const auto kind = static_cast<TKind>(index.data(TJsonTreeModel::ValueKindRole).toInt());
    const bool nested = kind == TKind::List || kind == TKind::Object;
    if (index.column() == TJsonTreeModel::NameColumn) return;
    if (kind == TKind::Null && index.column() == TJsonTreeModel::ValueColumn)
      option->text = QStringLiteral("null");
    if (kind == TKind::Null || nested)
      option->palette.setColor(QPalette::Text, option->palette.color(QPalette::PlaceholderText));
  }
};

/// How many levels there are to be open so that few enough rows are seen.
int shownDepth(const TJsonTree& tree) {
  std::vector<std::size_t> rows;
  std::size_t counted = 0;
  const std::function<void(const TValue&, std::size_t)> count = [&](const TValue& value, std::size_t depth) {
    const auto add = [&](const TValue& part) {
      if (rows.size() <= depth) rows.push_back(0);
      ++rows[depth];
      if (++counted <= expandedRows) count(part, depth + 1);
    };
    if (value.is(TKind::List))
      for (const TValue& each : value.asList()) add(each);
    if (value.is(TKind::Object))
      for (const TMember& member : value.asObject()) add(member.value);
  };
  for (const TJsonItem& item : tree.root().items) {
    if (++counted > expandedRows) return -1;
    if (!item.branch) count(item.value, 0);
  }
  if (counted <= expandedRows) return static_cast<int>(rows.size());
  std::size_t seen = tree.root().size();
  int depth = -1;
  for (const std::size_t each : rows) {
    if ((seen += each) > expandedRows) break;
    ++depth;
  }
  return depth;
}

}  // namespace

TJsonTreeView::TJsonTreeView(QWidget* parent) : QTreeView(parent) {
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
  setAllColumnsShowFocus(false);
  setSelectionBehavior(SelectItems);
  setEditTriggers(DoubleClicked | EditKeyPressed);
  setItemDelegate(new TJsonDelegate(this));
  setContextMenuPolicy(Qt::CustomContextMenu);
  header()->setResizeContentsPrecision(100);
}

void TJsonTreeView::setTreeModel(TJsonTreeModel* model) {
  model_ = model;
  setModel(model);
  // All three columns stay in view, also beside the panel.
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(TJsonTreeModel::ValueColumn, QHeaderView::Stretch);
  header()->setSectionResizeMode(TJsonTreeModel::KindColumn, QHeaderView::ResizeToContents);
}

TJsonPlace TJsonTreeView::current() const { return TJsonTreeModel::placeOf(currentIndex()); }

void TJsonTreeView::setCurrent(TJsonPlace at) {
  const int column = currentIndex().isValid() ? currentIndex().column() : TJsonTreeModel::NameColumn;
  const QModelIndex index = model_->indexOf(at, column);
  for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) expand(above);
  setCurrentIndex(index);
  if (index.isValid()) scrollTo(index);
}

void TJsonTreeView::editCell(TJsonPlace at, int column) {
  const QModelIndex index = model_->indexOf(at, column);
  if (!index.isValid()) return;
  setCurrentIndex(index);
  edit(index, AllEditTriggers, nullptr);
}

void TJsonTreeView::expandAsLoaded() {
  const int depth = shownDepth(model_->tree());
  if (depth < 0) return;
  expandToDepth(depth);
}

bool TJsonTreeView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
  const bool wanted = trigger == AllEditTriggers || (trigger & editTriggers());
  if (wanted && index.column() == TJsonTreeModel::ValueColumn &&
      index.data(TJsonTreeModel::LongRole).toBool()) {
    Q_EMIT longValueActivated(index);
    return true;
  }
  return QTreeView::edit(index, trigger, event);
}

void TJsonTreeView::keyPressEvent(QKeyEvent* event) {
  // The base class would copy what the cell shows, which may be shortened.
  if (event->matches(QKeySequence::Copy)) {
    Q_EMIT copyWanted();
    return event->accept();
  }
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!enter || event->modifiers() & Qt::ControlModifier || state() == EditingState)
    return QTreeView::keyPressEvent(event);
  const QModelIndex index = currentIndex();
  if (index.flags() & Qt::ItemIsEditable || index.data(TJsonTreeModel::LongRole).toBool())
    edit(index, AllEditTriggers, event);
  else if (index.isValid())
    setExpanded(index.siblingAtColumn(0), !isExpanded(index.siblingAtColumn(0)));
}

void TJsonTreeView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTreeView::currentChanged(current, previous);
  Q_EMIT currentPlaceChanged();
}

}  // namespace hollowmere
