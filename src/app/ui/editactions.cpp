#include "app/ui/editactions.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>

#include "ui/icons.h"
#include "ui/windowcontext.h"

namespace hollowmere {

namespace {

/// No slot of the editors: what the key does.
constexpr char deleteSelection[] = "delete";

/// The focused widget, when it has the slot: every text editor of the toolkit names them alike.
QWidget* editorWith(const char* slot) {
  QWidget* focused = QApplication::focusWidget();
  const bool isDelete = qstrcmp(slot, deleteSelection) == 0;
  const QByteArray signature = QByteArray(isDelete ? "cut" : slot) + "()";
  return focused && focused->metaObject()->indexOfSlot(signature) >= 0 ? focused : nullptr;
}

}  // namespace

TEditActions::TEditActions(QMenu* menu) : QObject(menu) {
  add(menu, "actUndo", text("Undo"), "undo");
  add(menu, "actRedo", text("Redo"), "redo");
  menu->addSeparator();
  add(menu, "actCut", text("Cut"), "cut");
  add(menu, "actCopy", text("Copy"), "copy");
  add(menu, "actPaste", text("Paste"), "paste");
  add(menu, "actDelete", text("Delete"), deleteSelection);
  menu->addSeparator();
  add(menu, "actSelectAll", text("Select All"), "selectAll");
  connect(menu, &QMenu::aboutToShow, this, &TEditActions::update);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    // The menu itself takes the focus while it is open.
    if (now && !qobject_cast<QMenu*>(now)) update();
  });
  update();
}

/// The editors have the usual keys themselves; a second owner of the keys would make them ambiguous.
void TEditActions::add(QMenu* menu, const char* name, const QString& caption, const char* slot) {
  QAction* action = menu->addAction(caption);
  action->setObjectName(QLatin1String(name));
  action->setData(QByteArray(slot));
  connect(action, &QAction::triggered, this, [slot] {
    QWidget* editor = editorWith(slot);
    if (!editor) return;
    if (qstrcmp(slot, deleteSelection) != 0) {
      QMetaObject::invokeMethod(editor, slot);
      return;
    }
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QApplication::sendEvent(editor, &press);
  });
  actions_ << action;
}

void TEditActions::update() {
  for (QAction* action : std::as_const(actions_))
    action->setEnabled(editorWith(action->data().toByteArray().constData()) != nullptr);
}

}  // namespace hollowmere
