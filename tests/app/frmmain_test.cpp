#include "app/ui/frmmain.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenu>
#include <QMimeData>
#include <QTabBar>
#include <QTest>
#include <QUrl>

#include "project/projectfile.h"
#include "project/runtexts.h"
#include "project/ui/frmproject.h"
#include "settings/ui/frmconnlist.h"
#include "support/dialogwalk.h"
#include "support/windowworld.h"

namespace hollowmere {
namespace {

class MainWindow : public ::testing::Test, protected TWindowWorld {
 protected:
  QString savedProject(const char* name) {
    TProject project = newProject(settings, folder);
    project.projectName = name;
    const std::string file = temp.file(name + std::string(".hmp"));
    TProjectFile(cipher, files).save(project, file);
    return QString::fromStdString(file);
  }

  static void trigger(TfrmMain& window, const char* action) { child<QAction>(window, action).trigger(); }
};

TEST_F(MainWindow, OwesItsUsersWhatEveryWindowDoes) {
  TfrmMain window(context);
  walkWindow(window, "frmmain");
  // The same keys twice would make both useless.
  QStringList keys;
  for (const QAction* action : window.findChildren<QAction*>())
    if (!action->shortcut().isEmpty()) keys << action->shortcut().toString();
  EXPECT_EQ(QSet<QString>(keys.begin(), keys.end()).size(), keys.size()) << keys.join(' ').toStdString();
}

TEST_F(MainWindow, AProjectIsOpenedOnceAndFoundAgain) {
  const QString file = savedProject("one");
  TfrmMain window(context);
  window.show();
  TfrmProject* first = window.openProject(file);
  ASSERT_TRUE(first);
  trigger(window, "actNewProject");
  EXPECT_EQ(window.childWindows().size(), 2);
  auto& tabs = child<QTabBar>(window, "windowTabs");
  EXPECT_EQ(tabs.tabText(0), "one :: " + file);
  EXPECT_EQ(tabs.currentIndex(), 1);
  EXPECT_EQ(window.openProject(file.toUpper()), first) << "the same name in other letters";
  EXPECT_EQ(window.childWindows().size(), 2);
  EXPECT_EQ(tabs.currentIndex(), 0);
  auto& recent = child<QMenu>(window, "recentMenu");
  Q_EMIT recent.aboutToShow();
  ASSERT_EQ(recent.actions().size(), 1);
  EXPECT_EQ(recent.actions()[0]->text(), file);
  EXPECT_TRUE(window.close());
}

TEST_F(MainWindow, WhatIsNoProjectOpensNothing) {
  writeBytes(temp.file("bad.hmp"), "not a project");
  TfrmMain window(context);
  window.show();
  prompt.expect(TPromptKind::Error, "Unable to find file " + temp.file("none.hmp"));
  EXPECT_FALSE(window.openProject(QString::fromStdString(temp.file("none.hmp"))));
  prompt.expect(TPromptKind::Error, "Invalid project file.");
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(temp.file("bad.hmp")))});
  QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&window, &enter);
  QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&window, &drop);
  EXPECT_TRUE(window.childWindows().isEmpty());
}

TEST_F(MainWindow, ThirtyWindowsOpenAndClose) {
  TfrmMain window(context);
  window.show();
  for (int i = 0; i < 30; ++i) trigger(window, "actNewProject");
  EXPECT_EQ(child<QTabBar>(window, "windowTabs").count(), 30);
  trigger(window, "actCascade");
  trigger(window, "actArrange");
  EXPECT_TRUE(window.close());
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(window.childWindows().isEmpty());
}

TEST_F(MainWindow, EndsWithItsWindowsOpen) {
  // As when the session ends: nobody closes the windows first.
  TfrmMain window(context);
  window.show();
  trigger(window, "actNewProject");
  window.openConnectionList();
}

TEST_F(MainWindow, TheConnectionListIsOneAndOpensNoBrowserYet) {
  settings.showConnWindow = true;
  TfrmMain window(context);
  window.show();
  ASSERT_EQ(window.childWindows().size(), 1) << "opened at the start";
  trigger(window, "actConnList");
  EXPECT_EQ(window.childWindows().size(), 1);
  prompt.expect(
      TPromptKind::Information,
      "There is no browser window for MongoDB databases in this version yet. Connections of this type can "
      "be used in load projects where the store is supported.");
  window.openDBWindow(TObject{{"dbtype", "MongoDB"}});
  EXPECT_TRUE(window.close());
}

TEST_F(MainWindow, AKeptConnectionIsNotLostToTheOpenList) {
  const ConnectionConfig record{{"dbtype", "MongoDB"}, {"host", "h"}, {"port", 27017}, {"database", "d"}};
  const std::string question = "Would you like to save this database connection for future use?";
  TfrmMain window(context);
  window.show();
  window.openConnectionList();
  prompt.expect(TPromptKind::Confirmation, question, TAnswer::Yes);
  context.offerToKeep(record);
  context.offerToKeep(record);  // there already: no question
  EXPECT_TRUE(window.close()) << "the list is written when its window closes";
  EXPECT_EQ(context.connectionFile().load().records().size(), 1U);
}

TEST_F(MainWindow, EditActionsFollowTheFocus) {
  TfrmMain window(context);
  auto* line = new QLineEdit(QStringLiteral("abc"), &window);
  window.show();
  window.activateWindow();
  EXPECT_FALSE(child<QAction>(window, "actCopy").isEnabled());
  line->setFocus();
  ASSERT_TRUE(QTest::qWaitFor([&] { return child<QAction>(window, "actSelectAll").isEnabled(); }));
  trigger(window, "actSelectAll");
  trigger(window, "actDelete");
  EXPECT_EQ(line->text(), QString());
  trigger(window, "actUndo");
  EXPECT_EQ(line->text(), "abc");
}

}  // namespace
}  // namespace hollowmere
