#include "app/ui/frmmain.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>

#include "app/ui/frmhelp.h"
#include "app/ui/startup.h"
#include "json/json.h"
#include "project/projectfile.h"
#include "project/runtexts.h"
#include "project/ui/frmproject.h"
#include "settings/ui/frmconnlist.h"
#include "support/dialogwalk.h"
#include "support/httppeer.h"
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

  static void dropOn(TfrmMain& window, const QMimeData& data) {
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &drop);
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

TEST_F(MainWindow, OneFileIsNeverSavedFromTwoWindows) {
  const QString one = savedProject("one");
  const QString other = savedProject("other");
  TfrmMain window(context);
  window.show();
  TfrmProject* first = window.openProject(one);
  TfrmProject* second = window.openProject(other);
  const std::string link = temp.file("link.hmp");
  ASSERT_TRUE(QFile::link(one, QString::fromStdString(link)));
  EXPECT_EQ(window.openProject(QString::fromStdString(link)), first) << "the same file by another name";
  for (const std::string& name : {one.toStdString(), link}) {
    prompt.expect(TPromptKind::Error, "The project file " + name +
                                          " is open in another window. Close that window first, or choose "
                                          "another name.");
    whenFileDialog(name);
    // The file dialog asks by itself whether a file is to be replaced.
    QTimer replace;
    QObject::connect(&replace, &QTimer::timeout, [] {
      if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
        box->button(QMessageBox::Yes)->click();
    });
    replace.start(5);
    second->actSaveAs();
  }
  EXPECT_EQ(second->project().fileName, other.toStdString());
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
  dropOn(window, data);
  EXPECT_TRUE(window.childWindows().isEmpty());
}

TEST_F(MainWindow, DroppedProjectsOpen) {
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(savedProject("one")), QUrl::fromLocalFile(savedProject("other")),
                QUrl(QStringLiteral("https://example.com/project.hmp"))});
  TfrmMain window(context);
  window.show();
  dropOn(window, data);
  EXPECT_EQ(window.childWindows().size(), 2) << "files of this machine only";
  EXPECT_TRUE(window.close());
}

TEST_F(MainWindow, ADroppedDocumentIsShownByItsForm) {
  const auto dropped = [&](const char* name, const char* text) {
    writeBytes(temp.file(name), text);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(temp.file(name)))});
    TfrmMain window(context);
    window.show();
    QString shown;
    whenDialog({}, [&](QDialog& dialog) {
      shown = dialog.objectName();
      dialog.reject();
    });
    dropOn(window, data);
    return shown;
  };
  EXPECT_EQ(dropped("one.json", "{\n \"a\": 1\n}"), "frmViewJSON");
  EXPECT_EQ(dropped("list.json", "\xEF\xBB\xBF [{\"a\": 1}, {\"a\": 2}]"), "frmJSON");
  EXPECT_EQ(dropped("lines.txt", "{\"a\": 1}\n{\"a\": 2}\n"), "frmJSON");
}

TEST_F(MainWindow, EndsAlsoWhenItsSettingsCannotBeWritten) {
  QSettings nowhere(QStringLiteral("/proc/none/settings.ini"), QSettings::IniFormat);
  TWindowContext lost{settings, nowhere, folder, stores, cipher, files, clock, dates, prompt, mainThread, {}};
  TfrmMain window(lost);
  window.show();
  prompt.expect(TPromptKind::Error,
                R"(Unable to write to the registry key \Software\TamsburySoftware\Hollowmere\)");
  EXPECT_TRUE(window.close());
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

/// A browser that tells what it was made with.
class TToyBrowser : public TBrowserWindow {
 public:
  TToyBrowser(TBrowserMode mode, QWidget* parent) : TBrowserWindow(parent), query_(new QLineEdit(this)) {
    query_->setObjectName(QStringLiteral("eQuery"));
    setProperty("designer", mode == TBrowserMode::Designer);
  }

  void setQueryObject(const TValue& definition) override {
    query_->setText(QString::fromStdString(toJson(definition)));
  }
  [[nodiscard]] TValue queryObject() const override {
    return TObject{{"query", query_->text().toStdString()}};
  }

 private:
  QLineEdit* query_;
};

TEST_F(MainWindow, ABrowserIsAChildOrTheDesignerOfAQuery) {
  context.browsers.add("Toy", [](const TBrowserRequest& request, QWidget* parent) {
    if (!request.connection.find("host")) throw std::runtime_error("Unable to reach the toy.");
    return new TToyBrowser(request.mode, parent);
  });
  const ConnectionConfig record{
      {"dbtype", "Toy"}, {"host", "h"}, {"port", 5}, {"database", "d"}, {"password", "x"}};
  TfrmMain window(context);
  window.show();
  TBrowserWindow* browser = window.openDBWindow(record);
  ASSERT_TRUE(browser);
  EXPECT_FALSE(browser->property("designer").toBool());
  EXPECT_EQ(child<QTabBar>(window, "windowTabs").tabText(0), "Toy :: h:5/d");
  prompt.expect(TPromptKind::Error, "Unable to reach the toy.");
  EXPECT_FALSE(window.openDBWindow(TObject{{"dbtype", "Toy"}}));
  EXPECT_EQ(browserCaption(TObject{{"dbtype", "Oracle"}, {"user", "scott"}, {"database", "db:1521:X"}}),
            "Oracle :: scott@db:1521:X");

  TProject project = newProject(settings, folder);
  project.source = {"Toy", record};
  project.dataSources.push_back({"rows", TObject{{"query", "old"}}, 0});
  TfrmProject projectWindow(context, project);
  for (const char* button : {"bCancel", "bOk"}) {
    whenDialog(QStringLiteral("queryDesigner"), [button](QDialog& dialog) {
      EXPECT_TRUE(child<QWidget>(dialog, "eQuery").parentWidget()->property("designer").toBool());
      auto& query = child<QLineEdit>(dialog, "eQuery");
      EXPECT_EQ(query.text(), "{\"query\":\"old\"}");
      query.setText("new");
      click(dialog, button);
    });
    click(projectWindow, "bEditDS");
  }
  EXPECT_EQ(projectWindow.project().dataSources[0].definition, (TValue(TObject{{"query", "new"}})));
  projectWindow.deleteLater();
}

TEST_F(MainWindow, HelpIsThereForWhatHasTheFocus) {
  TfrmMain window(context);
  window.show();
  const auto page = [](const QWidget& above) {
    return child<QTextBrowser>(child<TfrmHelp>(above, "frmHelp"), "mHelp").toPlainText().section('\n', 0, 0);
  };
  trigger(window, "actHelp");
  EXPECT_EQ(page(window), "Hollowmere");
  walkWindow(child<TfrmHelp>(window, "frmHelp"), "frmhelp");
  trigger(window, "actNewProject");
  auto& pages = child<QTabWidget>(window, "pages");
  trigger(window, "actHelp");
  EXPECT_EQ(page(window), "Projects");
  pages.setCurrentIndex(3);
  window.activateWindow();
  child<QWidget>(window, "tlMapping").setFocus();
  ASSERT_TRUE(QTest::qWaitFor([&] { return child<QWidget>(window, "tlMapping").hasFocus(); }));
  trigger(window, "actHelp");
  EXPECT_EQ(page(window), "Mapping");
  // A modal dialog shuts the menus out, but not its help.
  whenDialog(QStringLiteral("frmOption"), [&](QDialog& dialog) {
    QTest::keyClick(&child<QWidget>(dialog, "vgOptions"), Qt::Key_F1);
    ASSERT_TRUE(dialog.findChild<TfrmHelp*>());
    EXPECT_EQ(page(dialog), "Program Options");
    QTest::keyClick(dialog.findChild<TfrmHelp*>(), Qt::Key_Escape);
    dialog.reject();
  });
  trigger(window, "actOption");
  // Every link of every page leads to a page.
  const QDir folderOfPages(QStringLiteral(":/help"));
  for (const QString& name : folderOfPages.entryList()) {
    QFile file(folderOfPages.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    static const QRegularExpression link(QStringLiteral("\\]\\(([^)]*)\\)"));
    for (const auto& found : link.globalMatch(text))
      EXPECT_TRUE(folderOfPages.exists(found.captured(1)))
          << name.toStdString() << found.captured(1).toStdString();
  }
}

TEST_F(MainWindow, PagesOfTheMakerAreOpenedWhenTheyAreKnown) {
  {
    TfrmMain window(context);
    prompt.expect(TPromptKind::Information,
                  "No web address for technical support is configured. It stands in "
                  "the settings as Web/support.");
    trigger(window, "actTechSupport");
    prompt.expect(TPromptKind::Information,
                  "No web address for product information is configured. It stands in "
                  "the settings as Web/product.");
    trigger(window, "actProdInfo");
    prompt.expect(TPromptKind::Information,
                  "This build has no Oracle connector: a migration project cannot be "
                  "created from an Oracle schema.");
    trigger(window, "actOraToJSON");
    EXPECT_TRUE(opened.isEmpty());
  }
  store.setValue("Web/support", "https://example.com/support");
  TfrmMain window(context);
  trigger(window, "actTechSupport");
  EXPECT_EQ(opened, QStringList{"https://example.com/support"});
}

class UpdateCheck : public MainWindow {
 protected:
  /// Lets the notices of a main window come at once, and waits for them.
  void check() {
    TfrmMain window(context, 0);
    QSignalSpy checked(&window.startUp(), &TStartUp::checked);
    window.show();
    ASSERT_TRUE(checked.count() > 0 || checked.wait(10000));
  }

  const std::string question =
      "New Hollowmere version is available. Would you like to visit Tamsbury Software web site to download "
      "the "
      "latest software release?";
};

TEST_F(UpdateCheck, ANewVersionIsAnnouncedOnce) {
  check();
  EXPECT_EQ(settings.warnVersion, HOLLOWMERE_VERSION) << "no address, nothing to fetch";
  const THttpPeer peer(THttpPeer::ok("<a href='hollowmere.zip'>Download</a> version 9.1 released today"));
  store.setValue("Web/downloadPage", QString::fromStdString(peer.address()));
  store.setValue("Web/site", "https://example.com/");
  prompt.expect(TPromptKind::Confirmation, question, TAnswer::Yes);
  check();
  EXPECT_EQ(opened, QStringList{"https://example.com/"});
  EXPECT_EQ(settings.warnVersion, "9.1");
  check();
  EXPECT_EQ(peer.requests(), 2);
  EXPECT_EQ(opened.size(), 1);
}

TEST_F(UpdateCheck, ASilentServerHoldsNothingUp) {
  const THttpPeer silent("");
  store.setValue("Web/downloadPage", QString::fromStdString(silent.address()));
  settings.httpTimeout = 600;
  QElapsedTimer timer;
  timer.start();
  {
    TfrmMain window(context, 0);
    window.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return silent.requests() > 0; }));
    EXPECT_TRUE(window.close());
  }
  EXPECT_LT(timer.elapsed(), 30000);
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
