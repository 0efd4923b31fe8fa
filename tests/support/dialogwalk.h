#pragma once

#include <QDialog>
#include <QString>
#include <functional>
#include <string>

namespace hollowmere {

/// Shows a window and expects of it what every window of the program owes its users: each control that can
/// have the focus has an object name and an accessible name, no two mnemonics clash, the Tab key reaches
/// every control, and the window fits a screen of 1366 x 768. Its structure is compared with
/// tests/cases/windows/NAME.txt; UPDATE_GOLDENS=1 writes that file instead.
void walkWindow(QWidget& window, const std::string& name);

/// The structure of a window: a line for each named widget with its class, texts, captions of columns and
/// rows, and whether it is disabled or hidden.
QString describeWindow(const QWidget& window);

/// Waits in the event loop until a dialog of that object name (empty: any) is open, and calls with it. To be
/// ordered before the call that opens the dialog. A test whose dialog never comes hangs and is ended by its
/// time limit.
void whenDialog(const QString& name, std::function<void(QDialog&)> call);
/// Answers the next file dialog.
void whenFileDialog(const std::string& path);

/// The child of that object name; fails the program when there is none.
template <typename Widget>
Widget& child(const QWidget& window, const char* name) {
  auto* found = window.findChild<Widget*>(QLatin1String(name));
  if (!found) qFatal("no control %s", name);
  return *found;
}

/// Clicks that button.
void click(const QWidget& window, const char* name);

}  // namespace hollowmere
