#pragma once

#include <QObject>

class QAction;
class QMenu;

namespace hollowmere {

/// Cut, Copy, Paste, Delete, Undo, Redo and Select All of a menu. They act on the text editor that has the
/// focus and are enabled only while there is one. Child of its menu.
class TEditActions : public QObject {
  Q_OBJECT

 public:
  explicit TEditActions(QMenu* menu);

 private:
  void add(QMenu* menu, const char* name, const QString& caption, const char* slot);
  void update();

  QList<QAction*> actions_;
};

}  // namespace hollowmere
