#pragma once

#include <QTreeView>

#include "jsondoc/jsontree.h"

namespace hollowmere {

class TJsonTreeModel;

/// A tree of a document with its rows edited in place; Enter, F2 or a double click begins.
class TJsonTreeView : public QTreeView {
  Q_OBJECT

 public:
  explicit TJsonTreeView(QWidget* parent = nullptr);

  void setTreeModel(TJsonTreeModel* model);
  [[nodiscard]] TJsonPlace current() const;
  /// Opens what is above the row and brings it into view.
  void setCurrent(TJsonPlace at);
  void editCell(TJsonPlace at, int column);
  /// Opens a small document wholly, of a larger one as many levels as make no more than some thousand rows.
  void expandAsLoaded();

 Q_SIGNALS:
  void currentPlaceChanged();
  /// The keys for copying were pressed.
  void copyWanted();
  /// A value is to be edited that is too long for its cell.
  void longValueActivated(const QModelIndex& index);

 protected:
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

 private:
  TJsonTreeModel* model_ = nullptr;
};

}  // namespace hollowmere
