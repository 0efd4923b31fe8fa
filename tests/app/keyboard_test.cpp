// The program worked by keys alone, from an empty data folder to a load and back.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include "app/ui/frmmain.h"
#include "project/projectfile.h"
#include "project/ui/frmproject.h"
#include "settings/ui/frmconnlist.h"
#include "support/dialogwalk.h"
#include "support/toystore.h"
#include "support/windowworld.h"
#include "ui/messageprompt.h"

namespace hollowmere {
namespace {

/// What a key goes to: an open menu, else what has the focus. When a dialog has closed, the window behind it
/// is the active one again; offscreen there is no window manager that sees to it.
QWidget& keyTarget() {
  if (QWidget* popup = QApplication::activePopupWidget()) return *popup;
  if (!QApplication::activeWindow()) {
    QWidget* front = QApplication::activeModalWidget();
    for (QWidget* window : QApplication::topLevelWidgets())
      if (!front && window->inherits("QMainWindow") && window->isVisible()) front = window;
    if (!front) qFatal("no window takes keys");
    front->activateWindow();
    QCoreApplication::processEvents();
  }
  QWidget* focused = QApplication::focusWidget();
  return focused ? *focused : *QApplication::activeWindow();
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QTest::keyClick(&keyTarget(), key, modifiers);
  QCoreApplication::processEvents();
}

void type(const QString& text) {
  QTest::keyClicks(&keyTarget(), text);
  QCoreApplication::processEvents();
}

/// Presses a key until something is so; a key that never leads there fails the test.
template <typename Reached>
void pressUntil(Qt::Key key, Reached reached, const char* what,
                Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  for (int times = 0; times < 100; ++times) {
    if (reached()) return;
    press(key, modifiers);
  }
  FAIL() << what << " is not reached";
}

void tabTo(const char* name) {
  pressUntil(
      Qt::Key_Tab,
      [name] {
        for (QWidget* at = QApplication::focusWidget(); at; at = at->parentWidget())
          if (at->objectName() == QLatin1String(name)) return true;
        return false;
      },
      name);
}

/// Fills the line that Tab reaches under that name.
void fill(const char* name, const QString& text) {
  tabTo(name);
  press(Qt::Key_A, Qt::ControlModifier);
  type(text);
}

/// Opens a menu by its letter and goes down to an entry.
void goToEntry(Qt::Key letter, const QString& caption) {
  press(letter, Qt::AltModifier);
  ASSERT_TRUE(QApplication::activePopupWidget()) << "no menu";
  pressUntil(
      Qt::Key_Down,
      [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        return menu && menu->activeAction() && menu->activeAction()->text() == caption;
      },
      "a menu entry");
}

void choose(Qt::Key letter, const QString& caption) {
  goToEntry(letter, caption);
  press(Qt::Key_Return);
}

/// In the grid of settings that has the focus, to the row of a caption; the second of that name when asked.
void goToRow(const QString& caption, int skip = 0) {
  auto* grid = qobject_cast<QTreeWidget*>(QApplication::focusWidget());
  ASSERT_TRUE(grid) << keyTarget().objectName().toStdString() << " has the focus";
  press(Qt::Key_Home);
  const QTreeWidgetItem* seen = nullptr;
  pressUntil(
      Qt::Key_Down,
      [&] {
        const QTreeWidgetItem* item = grid->currentItem();
        if (!item || item == seen || item->text(0) != caption) return false;
        seen = item;
        return skip-- == 0;
      },
      "a row");
}

class Keyboard : public ::testing::Test, protected TWindowWorld {
 protected:
  Keyboard() {
    toy->fillNumbered("people", 30);
    stores.add(makeToyConnector(toy, std::string(dbtype::mongodb)));
  }

  std::shared_ptr<TToyServer> toy = std::make_shared<TToyServer>();
  TMessagePrompt asked;  ///< real dialogs: they are answered by keys as well
  TWindowContext keyed{settings, store, folder, stores, cipher, files, clock, dates, asked, mainThread, {}};

  /// A connection, in the dialog that the list opens.
  void addConnection(const QString& host) {
    whenDialog(QStringLiteral("frmDBConfig"), [host](QDialog& dialog) {
      auto& types = child<QTabWidget>(dialog, "pcTypes");
      tabTo("tabTypes");
      pressUntil(
          Qt::Key_Right, [&] { return types.tabText(types.currentIndex()) == QLatin1String("MongoDB"); },
          "the page");
      fill("eMongoDB_host", host);
      fill("eMongoDB_database", QStringLiteral("shop"));
      tabTo("bOK");
      press(Qt::Key_Space);
    });
    press(Qt::Key_Insert);
  }

  /// One side of the project, from the kept connections.
  void chooseSide(int side) {
    goToRow(QStringLiteral("Database Type"), side);
    press(Qt::Key_F2);
    press(Qt::Key_M);
    QCoreApplication::processEvents();
    tabTo("vgGeneral");
    goToRow(QStringLiteral("Connection Properties"), side);
    whenDialog(QStringLiteral("frmDBConfig"), [side](QDialog&) {
      tabTo("cbKept");
      for (int down = 0; down <= side; ++down) press(Qt::Key_Down);
      tabTo("bOK");
      press(Qt::Key_Space);
    });
    press(Qt::Key_F2);
    press(Qt::Key_F4);
    ASSERT_TRUE(QTest::qWaitFor([] { return !QApplication::activeModalWidget(); }));
    tabTo("vgGeneral");
  }

  void nextPage() { press(Qt::Key_PageDown, Qt::ControlModifier); }
};

TEST_F(Keyboard, BuildsRunsAndSavesAProject) {
  TfrmMain window(keyed);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &window; }));

  choose(Qt::Key_F, QStringLiteral("Configure Database Connections"));
  tabTo("gConnections");
  addConnection(QStringLiteral("from.example.com"));
  addConnection(QStringLiteral("to.example.com"));
  press(Qt::Key_F4, Qt::ControlModifier);
  EXPECT_EQ(keyed.connectionFile().load().records().size(), 2U);

  press(Qt::Key_N, Qt::ControlModifier);
  ASSERT_EQ(window.childWindows().size(), 1);
  auto* project = qobject_cast<TfrmProject*>(window.childWindows()[0]);
  tabTo("vgGeneral");
  goToRow(QStringLiteral("Project Name"));
  press(Qt::Key_F2);
  type(QStringLiteral("keys"));
  press(Qt::Key_Return);
  EXPECT_EQ(project->project().projectName, "keys");
  chooseSide(0);
  chooseSide(1);
  EXPECT_EQ(project->project().target.connection.asObject().find("host")->asText(), "to.example.com");

  nextPage();
  press(Qt::Key_A, Qt::AltModifier);
  press(Qt::Key_F2);
  type(QStringLiteral("People"));
  press(Qt::Key_Return);
  whenDialog(QStringLiteral("dataSourceDialog"), [](QDialog&) {
    fill("e_database", QStringLiteral("shop"));
    fill("e_collection", QStringLiteral("people"));
    tabTo("bOk");
    press(Qt::Key_Space);
  });
  press(Qt::Key_G, Qt::AltModifier);
  ASSERT_EQ(project->project().dataSources.size(), 1U);
  EXPECT_EQ(project->project().dataSources[0].name, "People");

  nextPage();
  press(Qt::Key_A, Qt::AltModifier);
  press(Qt::Key_F2);
  type(QStringLiteral("copies"));
  press(Qt::Key_Return);
  press(Qt::Key_Right);
  press(Qt::Key_F2);
  type(QStringLiteral("copy"));
  press(Qt::Key_Return);
  EXPECT_EQ(project->project().dataTargets.at(0), (TDataTarget{"copies", "copy", ""}));

  nextPage();
  press(Qt::Key_T, Qt::AltModifier);
  ASSERT_EQ(project->project().mapping.size(), 1U);
  ASSERT_TRUE(QTest::qWaitFor([&] { return child<QAbstractButton>(*project, "bNextRow").isEnabled(); }));
  press(Qt::Key_I, Qt::AltModifier);
  ASSERT_EQ(project->project().mapping[0].children.size(), 2U);
  pressUntil(
      Qt::Key_Down,
      [&] {
        return child<QTreeWidget>(*project, "tlMapping").currentItem()->text(0) == QLatin1String("name");
      },
      "the attribute");
  press(Qt::Key_F2);
  type(QStringLiteral("label"));
  press(Qt::Key_Return);
  QCoreApplication::processEvents();
  EXPECT_EQ(project->project().mapping[0].children[1].target, "label");

  whenDialog(QStringLiteral("messageBox"), [](QDialog&) { press(Qt::Key_Y, Qt::AltModifier); });
  press(Qt::Key_F9);
  ASSERT_TRUE(project->run());
  ASSERT_TRUE(QTest::qWaitFor([&] { return !project->run()->busy(); }));
  EXPECT_EQ(toy->documents("copy").size(), 30U);

  const std::string file = temp.file("keys.hmp");
  whenDialog(QStringLiteral("QFileDialog"), [&](QDialog&) {
    press(Qt::Key_A, Qt::ControlModifier);
    type(QString::fromStdString(file));
    press(Qt::Key_Return);
  });
  press(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(TProjectFile(cipher, files).open(file).projectName, "keys");

  press(Qt::Key_F4, Qt::ControlModifier);
  EXPECT_TRUE(window.childWindows().isEmpty()) << "a saved project closes without a question";
  goToEntry(Qt::Key_F, QStringLiteral("&Recent Projects"));
  press(Qt::Key_Right);
  press(Qt::Key_Return);
  ASSERT_EQ(window.childWindows().size(), 1) << "opened again";
  EXPECT_EQ(qobject_cast<TfrmProject*>(window.childWindows()[0])->project().fileName, file);
  press(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_FALSE(window.isVisible());
}

/// A letter that a menu and a button share goes to neither.
TEST_F(Keyboard, MenusAndPagesShareNoLetter) {
  TfrmMain window(keyed);
  window.show();
  TfrmProject* project = window.newProject();
  QSet<QString> menus;
  for (const QAction* menu : window.menuBar()->actions())
    menus.insert(QKeySequence::mnemonic(menu->text()).toString());
  EXPECT_EQ(menus.size(), 4);
  for (const QAbstractButton* button : project->findChildren<QAbstractButton*>()) {
    const QString letter = QKeySequence::mnemonic(button->text()).toString();
    EXPECT_FALSE(!letter.isEmpty() && menus.contains(letter))
        << letter.toStdString() << " of " << button->objectName().toStdString();
  }
}

}  // namespace
}  // namespace hollowmere
