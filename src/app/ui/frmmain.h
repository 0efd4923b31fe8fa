#pragma once

#include <QMainWindow>
#include <QPointer>

#include "app/startnotices.h"
#include "app/webaddresses.h"
#include "settings/connectionrecord.h"
#include "ui/mdichild.h"
#include "ui/windowcontext.h"

class QMdiArea;
class QMdiSubWindow;
class QTabBar;

namespace hollowmere {

class TStartUp;
class TfrmConnList;
class TfrmHelp;
class TfrmProject;
struct TProject;

/// The frame of the program: a multi-document area with a tab for each child, the main actions, recent
/// projects, and the rules for ending.
class TfrmMain : public QMainWindow {
  Q_OBJECT

 public:
  /// The start-up notices come that many milliseconds after it is shown first.
  explicit TfrmMain(TWindowContext& context, int noticesAfter = noticeDelay);
  ~TfrmMain() override;

  /// Opens a project file in a window of its own, or brings the one that has it to the front. nullptr when
  /// it cannot be opened; the message has been shown.
  TfrmProject* openProject(const QString& fileName);
  TfrmProject* newProject();
  /// Opens the browser of a connection's store as a child window. nullptr when there is none yet, or the
  /// database cannot be reached; the message has been shown.
  TBrowserWindow* openDBWindow(const ConnectionConfig& connection);
  /// Opens the help at a topic, above the window that has the focus.
  void showHelp(const QString& topic);
  /// Opens the maker's support page in the browser, or says that none is configured.
  void openSupport();
  [[nodiscard]] TStartUp& startUp() { return *startUp_; }
  void openConnectionList();
  [[nodiscard]] QList<TMdiChild*> childWindows() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QAction* makeAction(const char* name, const QString& caption, const char* icon, const QKeySequence& keys);
  void makeFileMenu();
  void makeEditMenu();
  void makeWindowMenu();
  void makeHelpMenu();
  void showChild(TMdiChild* child);
  TfrmProject* showProject(TProject project);
  [[nodiscard]] TfrmProject* findProject(const QString& fileName, const QWidget* except = nullptr) const;
  void fillRecent();
  void rememberRecent(const QString& fileName);
  void chooseProject();
  void chooseDocument();
  void openDocument(const QString& fileName);
  void openFile(const QString& fileName);
  void showOptions();
  void showAbout();
  void openMigration();
  void inform(const QString& message);
  void openAddress(const std::string& address, const char* subject, const char* key);
  [[nodiscard]] QString currentTopic() const;
  void onActivated(QMdiSubWindow* window);
  void updateTabs();
  void showStatus();
  [[nodiscard]] bool mayExit();
  [[nodiscard]] TfrmConnList* connectionWindow() const;
  void offerToKeep(const ConnectionConfig& record);
  [[nodiscard]] TConnectionList keptConnections() const;

  TWindowContext& context_;
  TWebAddresses addresses_;
  TStartUp* startUp_;
  int noticesAfter_;
  QPointer<TfrmHelp> help_;
  QMdiArea* area_;
  QTabBar* tabs_;
  QToolBar* toolBar_;
  QMenu* recent_ = nullptr;
  int windowNumber_ = 0;
  bool shown_ = false;
};

}  // namespace hollowmere
