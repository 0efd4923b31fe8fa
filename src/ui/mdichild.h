#pragma once

#include <QWidget>

namespace hollowmere {

/// A window inside the main window. The main window knows no more of it than this.
class TMdiChild : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  /// Whether the window may close now; asks the user when it has to, and says why when not. Called once
  /// before each closing.
  virtual bool mayClose() { return true; }
  /// Why the whole program may not end while this window is open; empty when it may.
  [[nodiscard]] virtual QString exitRefusal() const { return {}; }
  /// For the status bar while the window is active.
  [[nodiscard]] virtual QString statusText() const { return {}; }

 Q_SIGNALS:
  void statusChanged();

 protected:
  void closeEvent(QCloseEvent* event) override;
};

}  // namespace hollowmere
