#pragma once

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <QStyledItemDelegate>
#include <vector>

#include "settings/connectionedit.h"

namespace hollowmere {

inline constexpr int configureColumn = 3;

/// The rows of a connection list, passwords masked. The list outlives it; it looks again in refresh().
class TConnectionModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit TConnectionModel(const TConnectionList& list, QObject* parent = nullptr);

  void refresh();
  [[nodiscard]] const TConnectionRow& row(int place) const { return rows_[static_cast<std::size_t>(place)]; }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  const TConnectionList& list_;
  std::vector<TConnectionRow> rows_;
};

/// Those rows of a TConnectionModel that hold a sought text.
class TConnectionFilter : public QSortFilterProxyModel {
  Q_OBJECT

 public:
  using QSortFilterProxyModel::QSortFilterProxyModel;

  void seek(const QString& text);

 protected:
  [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

 private:
  std::string sought_;
};

/// Draws cells as buttons and tells when one is clicked.
class TButtonDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 Q_SIGNALS:
  void clicked(const QModelIndex& index);

 protected:
  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};

}  // namespace hollowmere
