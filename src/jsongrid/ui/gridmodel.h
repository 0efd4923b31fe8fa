#pragma once

#include <QAbstractTableModel>

#include "jsongrid/gridview.h"

namespace hollowmere {

/// The page of a grid that is on view. It reads the documents where they are; who changes the grid or the
/// view elsewhere calls refresh(). Grid, view and dates outlive it.
class TGridModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  TGridModel(TJsonGrid& grid, TGridView& view, const TDateTimeText& dates, QObject* parent);

  void setReadOnly(bool readOnly) { readOnly_ = readOnly; }
  /// Lists and objects get an icon.
  void setMarksNested(bool marks) { marksNested_ = marks; }
  /// Rows, columns or the page are others now.
  void refresh();
  /// One row has other cells now.
  void refreshRow(std::size_t row);

  /// The cell of the grid, row counted there.
  [[nodiscard]] TCellPlace placeOf(const QModelIndex& index) const;
  /// Invalid when the row is on another page.
  [[nodiscard]] QModelIndex indexOf(TCellPlace place) const;

  /// The message of the last edit that was refused, once.
  std::string takeRefusal() { return std::exchange(refusal_, {}); }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 Q_SIGNALS:
  void edited();
  void refused();

 private:
  [[nodiscard]] QString rowCaption(int section) const;

  TJsonGrid& grid_;
  TGridView& view_;
  const TDateTimeText& dates_;
  bool readOnly_ = false;
  bool marksNested_ = false;
  std::string refusal_;
};

}  // namespace hollowmere
