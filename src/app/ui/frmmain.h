#pragma once

#include <QMainWindow>
#include <QTimer>

#include "settings/connectionrecord.h"
#include "ui/mdichild.h"
#include "ui/windowcontext.h"

class QMdiArea;
class QMdiSubWindow;
class QTabBar;

namespace hollowmere {

class TfrmConnList;
class TfrmProject;
struct TProject;

/// The frame of the program: a multi-document area with a tab for each child, the main actions, recent
/// projects, and the rules for ending.
class TfrmMain : public QMainWindow {
  Q_OBJECT

 public:
  explicit TfrmMain(TWindowContext& context);
  ~TfrmMain() override;

  /// Opens a project file in a window of its own, or brings the one that has it to the front. nullptr when
  /// it cannot be opened; the message has been shown.
  TfrmProject* openProject(const QString& fileName);
  TfrmProject* newProject();
  /// Opens the browser of a connection's store; says so when there is none yet.
  void openDBWindow(const ConnectionConfig& connection);
  void openConnectionList();
  [[nodiscard]] QList<TMdiChild*> childWindows() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  QAction* makeAction(const char* name, const QString& caption, const char* icon, const QKeySequence& keys);
  void makeFileMenu();
  void makeEditMenu();
  void makeWindowMenu();
  void makeHelpMenu();
  void showChild(TMdiChild* child);
  TfrmProject* showProject(TProject project);
  [[nodiscard]] TfrmProject* findProject(const QString& fileName) const;
  void fillRecent();
  void rememberRecent(const QString& fileName);
  void chooseProject();
  void showOptions();
  void showAbout();
  void onActivated(QMdiSubWindow* window);
  void updateTabs();
  void showStatus();
  [[nodiscard]] bool mayExit();
  [[nodiscard]] TfrmConnList* connectionWindow() const;
  void offerToKeep(const ConnectionConfig& record);
  [[nodiscard]] TConnectionList keptConnections() const;

  TWindowContext& context_;
  QMdiArea* area_;
  QTabBar* tabs_;
  QToolBar* toolBar_;
  QMenu* recent_ = nullptr;
  int windowNumber_ = 0;
  bool shown_ = false;
};

}  // namespace hollowmere
