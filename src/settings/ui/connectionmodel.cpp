#include "settings/ui/connectionmodel.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

#include "ui/windowcontext.h"

namespace hollowmere {

TConnectionModel::TConnectionModel(const TConnectionList& list, QObject* parent)
    : QAbstractTableModel(parent), list_(list) {
  refresh();
}

void TConnectionModel::refresh() {
  beginResetModel();
  rows_.clear();
  for (const ConnectionConfig& record : list_.records()) rows_.push_back(shownRow(record));
  endResetModel();
}

int TConnectionModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int TConnectionModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(connectionColumns.size());
}

QVariant TConnectionModel::data(const QModelIndex& index, int role) const {
  if (role == Qt::TextAlignmentRole && index.column() == 1) return int(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  if (index.column() == configureColumn) return tr("Configure...");
  return QString::fromStdString(row(index.row())[static_cast<std::size_t>(index.column())]);
}

QVariant TConnectionModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return text(std::string(connectionColumns[static_cast<std::size_t>(section)]));
}

void TConnectionFilter::seek(const QString& text) {
  sought_ = text.toStdString();
  invalidateFilter();
}

bool TConnectionFilter::filterAcceptsRow(int row, const QModelIndex&) const {
  return rowMatches(static_cast<const TConnectionModel*>(sourceModel())->row(row), sought_);
}

void TButtonDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
  QStyleOptionViewItem cell = option;
  initStyleOption(&cell, index);
  const QString caption = cell.text;
  cell.text.clear();
  QStyle* style = cell.widget ? cell.widget->style() : QApplication::style();
  style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
  QStyleOptionButton button;
  button.rect = option.rect.adjusted(1, 1, -1, -1);
  button.text = caption;
  button.palette = option.palette;
  button.fontMetrics = option.fontMetrics;
  button.state = QStyle::State_Enabled | QStyle::State_Raised;
  if (option.state & QStyle::State_MouseOver) button.state |= QStyle::State_MouseOver;
  style->drawControl(QStyle::CE_PushButton, &button, painter, cell.widget);
}

QSize TButtonDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QSize label = QStyledItemDelegate::sizeHint(option, index);
  QStyleOptionButton button;
  button.text = index.data().toString();
  button.fontMetrics = option.fontMetrics;
  return QApplication::style()->sizeFromContents(QStyle::CT_PushButton, &button, label, option.widget);
}

bool TButtonDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                  const QStyleOptionViewItem& option, const QModelIndex& index) {
  if (event->type() == QEvent::MouseButtonRelease) {
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() == Qt::LeftButton && option.rect.contains(mouse->position().toPoint())) {
      Q_EMIT clicked(index);
      return true;
    }
  }
  return QStyledItemDelegate::editorEvent(event, model, option, index);
}

}  // namespace hollowmere
