#pragma once

#include <QMainWindow>
#include <QTimer>
#include <map>
#include <string>

#include "ui/mdichild.h"
#include "ui/windowcontext.h"

class QMdiArea;
class QMdiSubWindow;
class QTabBar;

namespace hollowmere {

class TfrmProject;

/// The frame of the program: a multi-document area with a tab for each child, the main actions, recent
/// projects, and the rules for ending.
class TfrmMain : public QMainWindow {
  Q_OBJECT

 public:
  explicit TfrmMain(TWindowContext& context);
  ~TfrmMain() override;

  /// Opens a project file in a window of its own, or brings the one that has it to the front.
  TfrmProject* openProject(const QString& fileName);
  TfrmProject* newProject();
  /// Opens the browser of a connection's store; says so when there is none yet.
  void openDBWindow(const ConnectionConfig& connection);
  void openConnectionList();
  [[nodiscard]] QList<TMdiChild*> children() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void makeActions();
  void makeMenus();
  void makeEditActions();
  QAction* makeAction(const char* name, const QString& caption, const char* icon, const QKeySequence& shortcut);
  void addChild(TMdiChild* child);
  void fillRecent();
  void rememberRecent(const QString& fileName);
  void chooseProject();
  void showOptions();
  void showAbout();
  void onStartTimer();
  void onActivated(QMdiSubWindow* window);
  void onTab(int index);
  void updateTabs();
  void arrange();

  TWindowContext& context_;
  QMdiArea* area_;
  QTabBar* tabs_;
  QMenu* recent_ = nullptr;
  QMenu* editMenu_ = nullptr;
  QTimer startTimer_;
  int windowNumber_ = 0;
  bool shown_ = false;
};

}  // namespace hollowmere
