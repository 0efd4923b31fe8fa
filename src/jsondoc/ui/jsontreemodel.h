#pragma once

#include <QAbstractItemModel>

#include "jsondoc/jsontree.h"

namespace hollowmere {

/// Shows a tree's three columns to a view; rows below a container are made when the view asks for them.
class TJsonTreeModel : public QAbstractItemModel, private TJsonTreeWatcher {
  Q_OBJECT

 public:
  enum TColumn { NameColumn, ValueColumn, KindColumn, ColumnCount };
  enum TRole {
    ValueKindRole = Qt::UserRole,  ///< TKind as int
    LongRole,                      ///< whether the value is too long to be edited in its cell
  };

  /// Watches the tree as long as it lives.
  explicit TJsonTreeModel(TJsonTree& tree, QObject* parent = nullptr);
  ~TJsonTreeModel() override;

  void setReadOnly(bool readOnly) { readOnly_ = readOnly; }
  [[nodiscard]] TJsonTree& tree() const { return tree_; }
  [[nodiscard]] static TJsonPlace placeOf(const QModelIndex& index);
  [[nodiscard]] QModelIndex indexOf(TJsonPlace at, int column = NameColumn) const;

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  void beforeChange(const TJsonChange& change) override;
  void afterChange(const TJsonChange& change) override;
  [[nodiscard]] QModelIndex indexOfBranch(const TJsonBranch& branch) const;
  [[nodiscard]] QString shown(TJsonPlace at, int column) const;
  [[nodiscard]] QString toolTip(TJsonPlace at) const;

  TJsonTree& tree_;
  bool readOnly_ = false;
};

}  // namespace hollowmere
