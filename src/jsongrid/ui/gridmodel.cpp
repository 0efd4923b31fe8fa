#include "jsongrid/ui/gridmodel.h"

#include <QFont>

#include "json/json.h"
#include "jsongrid/celltext.h"
#include "ui/icons.h"

namespace hollowmere {

namespace {

constexpr std::size_t shownBytes = 300;
constexpr std::size_t toolTipBytes = 1000;
/// What an editor of one line can hold.
constexpr std::size_t lineBytes = 30'000;

QString toText(const std::string& text) { return QString::fromStdString(text); }

/// A cell of one line.
QString shownText(const TValue* value) {
  QString text = toText(cellText(value, shownBytes));
  for (QChar& c : text)
    if (c < QLatin1Char(' ') || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
      c = QLatin1Char(' ');
  return text;
}

/// Whether an editor of one line would give the text back as it was.
bool fitsLine(const std::string& text) {
  if (text.size() > lineBytes || !isUtf8(text)) return false;
  for (const char c : text)
    if (static_cast<unsigned char>(c) < ' ') return false;
  return true;
}

bool isNumber(const TValue* value) {
  return value && (value->is(TKind::Int) || value->is(TKind::Double) || value->is(TKind::Decimal));
}

}  // namespace

TGridModel::TGridModel(TJsonGrid& grid, TGridView& view, const TDateTimeText& dates, QObject* parent)
    : QAbstractTableModel(parent), grid_(grid), view_(view), dates_(dates) {}

void TGridModel::refresh() {
  beginResetModel();
  endResetModel();
}

void TGridModel::refreshRow(std::size_t row) {
  const QModelIndex first = indexOf({row, 0});
  if (!first.isValid()) return;
  Q_EMIT dataChanged(first, index(first.row(), columnCount() - 1));
  Q_EMIT headerDataChanged(Qt::Vertical, first.row(), first.row());
}

TCellPlace TGridModel::placeOf(const QModelIndex& index) const {
  return {view_.rowAt(view_.pageStart() + static_cast<std::size_t>(index.row())),
          static_cast<std::size_t>(index.column())};
}

QModelIndex TGridModel::indexOf(TCellPlace place) const {
  const std::size_t at = view_.placeOf(place.row);
  if (at < view_.pageStart() || at >= view_.pageStart() + view_.pageRows()) return {};
  return index(static_cast<int>(at - view_.pageStart()), static_cast<int>(place.column));
}

int TGridModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(view_.pageRows());
}

int TGridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(grid_.columns());
}

QVariant TGridModel::data(const QModelIndex& index, int role) const {
  const TCellPlace place = placeOf(index);
  const TValue* value = grid_.cell(place.row, place.column);
  switch (role) {
    case Qt::DisplayRole: return shownText(value);
    case Qt::EditRole: return toText(cellText(value, lineBytes));
    case Qt::ToolTipRole:
      if (!value) return tr("This document has no such attribute.");
      return value->isNull() ? tr("null") : toText(cellText(value, toolTipBytes));
    case Qt::TextAlignmentRole:
      return int((isNumber(value) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::DecorationRole:
      if (marksNested_ && value && value->isNested()) return themeIcon("view-list-text");
      return {};
    default: return {};
  }
}

/// The row's number in the view, and its edit state.
QString TGridModel::rowCaption(int section) const {
  const std::size_t place = view_.pageStart() + static_cast<std::size_t>(section);
  const QString number = QString::number(place + 1);
  switch (grid_.mark(view_.rowAt(place))) {
    case TRowMark::Inserted: return number + QLatin1String(" +");
    case TRowMark::Changed: return number + QLatin1String(" *");
    case TRowMark::Deleted: return number + QLatin1String(" -");
    case TRowMark::None: break;
  }
  return number;
}

QVariant TGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  if (orientation == Qt::Vertical) return role == Qt::DisplayRole ? rowCaption(section) : QVariant();
  return toText(grid_.columnName(static_cast<std::size_t>(section)));
}

Qt::ItemFlags TGridModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  if (readOnly_ || !index.isValid()) return flags;
  const TCellPlace place = placeOf(index);
  // One byte more than a line holds is enough to see that it does not fit.
  return fitsLine(cellText(grid_.cell(place.row, place.column), lineBytes + 1)) ? flags | Qt::ItemIsEditable
                                                                                : flags;
}

bool TGridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole) return false;
  const TCellPlace place = placeOf(index);
  refusal_ = grid_.setText(place, value.toString().toStdString(), dates_);
  if (!refusal_.empty()) {
    Q_EMIT refused();
    return false;
  }
  refreshRow(place.row);
  Q_EMIT edited();
  return true;
}

}  // namespace hollowmere
