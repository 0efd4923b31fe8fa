#include "jsondoc/ui/jsontreemodel.h"

#include <algorithm>

#include "jsondoc/binaryvalue.h"
#include "jsondoc/scalartext.h"

namespace hollowmere {

namespace {

/// What a cell shows of a long value, and from where on it is edited in a window of its own.
constexpr std::size_t shownBytes = 200;
/// How far other members are looked through for the same name when a row is drawn.
constexpr std::size_t comparedRows = 1000;

bool isLong(const TValue& value) {
  if (value.is(TKind::Binary)) return value.asText().size() > shownBytes;
  if (!value.is(TKind::Text)) return false;
  return value.asText().size() > shownBytes || value.asText().find_first_of("\r\n") != std::string::npos;
}

bool isShadowed(TJsonPlace at) {
  if (at.branch->kind() != TKind::Object || at.row > comparedRows) return false;
  const auto end = at.branch->items.begin() + static_cast<std::ptrdiff_t>(at.row);
  return std::any_of(at.branch->items.begin(), end,
                     [&end](const TJsonItem& item) { return item.name == end->name; });
}

}  // namespace

TJsonTreeModel::TJsonTreeModel(TJsonTree& tree, QObject* parent) : QAbstractItemModel(parent), tree_(tree) {
  tree_.setWatcher(this);
}

TJsonTreeModel::~TJsonTreeModel() { tree_.setWatcher(nullptr); }

TJsonPlace TJsonTreeModel::placeOf(const QModelIndex& index) {
  if (!index.isValid()) return {};
  return {static_cast<TJsonBranch*>(index.internalPointer()), static_cast<std::size_t>(index.row())};
}

QModelIndex TJsonTreeModel::indexOf(TJsonPlace at, int column) const {
  if (!at || at.row >= at.branch->size()) return {};
  return createIndex(static_cast<int>(at.row), column, at.branch);
}

QModelIndex TJsonTreeModel::indexOfBranch(const TJsonBranch& branch) const {
  return indexOf(TJsonTree::placeOf(branch));
}

QModelIndex TJsonTreeModel::index(int row, int column, const QModelIndex& parent) const {
  if (row < 0 || column < 0 || column >= ColumnCount) return {};
  const TJsonPlace above = placeOf(parent);
  TJsonBranch* branch = above ? TJsonTree::open(above) : &tree_.root();
  if (!branch || static_cast<std::size_t>(row) >= branch->size()) return {};
  return createIndex(row, column, branch);
}

QModelIndex TJsonTreeModel::parent(const QModelIndex& index) const {
  return index.isValid() ? indexOfBranch(*placeOf(index).branch) : QModelIndex();
}

int TJsonTreeModel::rowCount(const QModelIndex& parent) const {
  if (parent.column() > 0) return 0;
  const TJsonPlace at = placeOf(parent);
  return static_cast<int>(at ? TJsonTree::childCount(at) : tree_.root().size());
}

int TJsonTreeModel::columnCount(const QModelIndex&) const { return ColumnCount; }

QString TJsonTreeModel::shown(TJsonPlace at, int column) const {
  if (column == NameColumn) return QString::fromStdString(TJsonTree::nameAt(at));
  if (column == KindColumn || TJsonTree::isContainer(at))
    return QString::fromStdString(TJsonTree::kindTextAt(at));
  return QString::fromStdString(shortScalarText(TJsonTree::item(at).value, shownBytes));
}

QString TJsonTreeModel::toolTip(TJsonPlace at) const {
  if (isShadowed(at)) return tr("A member above has this name; only the first of them is kept.");
  return {};
}

QVariant TJsonTreeModel::data(const QModelIndex& index, int role) const {
  const TJsonPlace at = placeOf(index);
  if (!at) return {};
  switch (role) {
    case Qt::DisplayRole: return shown(at, index.column());
    case Qt::EditRole:
      return index.column() == ValueColumn ? QString::fromStdString(TJsonTree::valueTextAt(at))
                                           : shown(at, index.column());
    case Qt::ToolTipRole: return toolTip(at);
    case ValueKindRole: return static_cast<int>(TJsonTree::kindAt(at));
    case LongRole: return isLong(TJsonTree::item(at).value);
    default: return {};
  }
}

QVariant TJsonTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  const QString captions[ColumnCount] = {tr("Name"), tr("Value"), tr("Kind")};
  return section >= 0 && section < ColumnCount ? captions[section] : QString();
}

Qt::ItemFlags TJsonTreeModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = QAbstractItemModel::flags(index);
  const TJsonPlace at = placeOf(index);
  if (!at || readOnly_ || index.column() == KindColumn) return flags;
  // A container with rows keeps its marker.
  if (index.column() == NameColumn || TJsonTree::childCount(at) == 0) flags |= Qt::ItemIsEditable;
  return flags;
}

bool TJsonTreeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const TJsonPlace at = placeOf(index);
  if (!at || role != Qt::EditRole) return false;
  const std::string text = value.toString().toStdString();
  if (index.column() == ValueColumn) return tree_.setValueText(at, text);
  tree_.rename(at, text);
  return true;
}

void TJsonTreeModel::beforeChange(const TJsonChange& change) {
  const int row = static_cast<int>(change.row), to = static_cast<int>(change.to);
  switch (change.what) {
    case TJsonChange::TWhat::Insert: return beginInsertRows(indexOfBranch(*change.branch), row, row);
    case TJsonChange::TWhat::Remove: return beginRemoveRows(indexOfBranch(*change.branch), row, row);
    case TJsonChange::TWhat::Move: {
      const QModelIndex parent = indexOfBranch(*change.branch);
      // Qt names the row in front of which the moved one is to stand, as they stand now.
      beginMoveRows(parent, row, row, parent, to > row ? to + 1 : to);
      return;
    }
    case TJsonChange::TWhat::All: return beginResetModel();
    case TJsonChange::TWhat::Item: return;
  }
}

void TJsonTreeModel::afterChange(const TJsonChange& change) {
  switch (change.what) {
    case TJsonChange::TWhat::Insert: endInsertRows(); break;
    case TJsonChange::TWhat::Remove: endRemoveRows(); break;
    case TJsonChange::TWhat::Move: endMoveRows(); break;
    case TJsonChange::TWhat::All: return endResetModel();
    case TJsonChange::TWhat::Item: break;
  }
  // Elements behind a changed row have other numbers now, members perhaps the first of a name.
  const bool moved = change.what == TJsonChange::TWhat::Move;
  const std::size_t first = moved ? std::min(change.row, change.to) : change.row;
  if (change.branch->size() == 0) return;
  const std::size_t row = std::min(first, change.branch->size() - 1);
  Q_EMIT dataChanged(indexOf({change.branch, row}),
                     indexOf({change.branch, change.branch->size() - 1}, KindColumn));
}

}  // namespace hollowmere
