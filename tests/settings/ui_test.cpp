#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>
#include <atomic>
#include <thread>

#include "connectors/storeerror.h"
#include "json/json.h"
#include "settings/connectionexport.h"
#include "settings/connectionhelp.h"
#include "settings/ui/exportdialogs.h"
#include "settings/ui/frmconnlist.h"
#include "settings/ui/frmdbconfig.h"
#include "settings/ui/frmoption.h"
#include "support/dialogwalk.h"
#include "support/failingfiles.h"
#include "support/windowworld.h"
#include "ui/propertygrid.h"

namespace hollowmere {
namespace {

using namespace std::chrono_literals;

ConnectionConfig recordOf(const char* json) { return parseJson(json).asObject(); }

/// Types a text over what stands in a line.
void type(const QWidget& window, const char* name, const char* text) {
  auto& line = child<QLineEdit>(window, name);
  line.selectAll();
  QTest::keyClick(&line, Qt::Key_Delete);
  QTest::keyClicks(&line, QString::fromUtf8(text));
}

void showPage(const TfrmDBConfig& dialog, const char* caption) {
  auto& pages = child<QTabWidget>(dialog, "pcTypes");
  for (int i = 0; i < pages.count(); ++i)
    if (pages.tabText(i) == QLatin1String(caption)) pages.setCurrentIndex(i);
  ASSERT_EQ(pages.tabText(pages.currentIndex()), QLatin1String(caption));
}

// Options

class TOptionTest : public testing::Test {
 protected:
  /// Shows the dialog and does that with it.
  int run(const std::function<void(TfrmOption&, TPropertyGrid&)>& call) {
    TfrmOption dialog(world_.context);
    whenDialog(QStringLiteral("frmOption"),
               [&](QDialog&) { call(dialog, child<TPropertyGrid>(dialog, "vgOptions")); });
    return dialog.exec();
  }

  TWindowWorld world_;
};

TEST_F(TOptionTest, OwesUsersNothing) {
  TfrmOption dialog(world_.context);
  walkWindow(dialog, "frmoption");
}

TEST_F(TOptionTest, OkTakesWhatWasTypedAndSavesIt) {
  const std::string log = world_.temp.file("my.log");
  const int result = run([&log](TfrmOption& dialog, TPropertyGrid& grid) {
    grid.editProperty(QStringLiteral("fetchSize"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("250"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_TRUE(dialog.isVisible()) << "Enter ends the edit, not the dialog";
    grid.editProperty(QStringLiteral("logFile"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QTest::keyClick(&grid, Qt::Key_Slash);
    EXPECT_EQ(qobject_cast<QLineEdit*>(QApplication::focusWidget())->text(), QStringLiteral("/"))
        << "typing begins the edit of this row again";
    whenFileDialog(log);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F4);
    QCoreApplication::processEvents();
    click(dialog, "bOK");
  });
  EXPECT_EQ(result, QDialog::Accepted);
  EXPECT_EQ(world_.settings.fetchSize, 250);
  EXPECT_EQ(world_.settings.logFile, log);
  TSettings stored;
  loadSettings(stored, world_.store, world_.prompt);
  EXPECT_EQ(stored, world_.settings);
}

TEST_F(TOptionTest, CancelChangesNothing) {
  const TSettings before = world_.settings;
  const int result = run([](TfrmOption& dialog, TPropertyGrid& grid) {
    grid.setValue(QStringLiteral("loadDegree"), QStringLiteral("7"));
    click(dialog, "bCancel");
  });
  EXPECT_EQ(result, QDialog::Rejected);
  EXPECT_EQ(world_.settings, before);
  EXPECT_TRUE(world_.store.allKeys().isEmpty());
}

TEST_F(TOptionTest, RefusalsKeepItOpenAndAStoreThatFailsIsReported) {
  const std::string refusal = "Parallel Degree must be a whole number from 1 to 1024.";
  run([&](TfrmOption& dialog, TPropertyGrid& grid) {
    grid.setValue(QStringLiteral("loadDegree"), QStringLiteral("0"));
    world_.prompt.expect(TPromptKind::Warning, refusal);
    click(dialog, "bOK");
    EXPECT_TRUE(dialog.isVisible());
    dialog.reject();
  });
  writeBytes(world_.temp.file("wall"), "");
  QSettings closed(QString::fromStdString(world_.temp.file("wall/settings.ini")), QSettings::IniFormat);
  TWindowContext context = {world_.settings,
                            closed,
                            world_.folder,
                            world_.stores,
                            world_.cipher,
                            world_.files,
                            world_.clock,
                            world_.dates,
                            world_.prompt,
                            world_.mainThread,
                            {}};
  TfrmOption dialog(context);
  child<TPropertyGrid>(dialog, "vgOptions").setValue(QStringLiteral("loadDegree"), QStringLiteral("2"));
  world_.prompt.expect(TPromptKind::Error,
                       R"(Unable to write to the registry key \Software\TamsburySoftware\Hollowmere\)");
  dialog.accept();
  EXPECT_EQ(world_.settings.loadDegree, 2) << "the program goes on with what it has in memory";
}

// Connection dialog

class TDBConfigTest : public testing::Test {
 protected:
  TDBConfigTest() {
    dialog_.show();
    dialog_.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog_));
  }

  void expectRefusal(const char* message) {
    world_.prompt.expect(TPromptKind::Warning, message);
    click(dialog_, "bOK");
    EXPECT_TRUE(world_.prompt.done());
    EXPECT_TRUE(dialog_.isVisible());
    EXPECT_FALSE(dialog_.connection());
  }

  /// What is said when a test is over.
  std::string tested(bool wait = true) {
    click(dialog_, "bTestConnection");
    EXPECT_TRUE(!wait || QTest::qWaitFor([this] { return !dialog_.tester().isRunning(); }));
    return child<QLabel>(dialog_, "lTestResult").text().toStdString();
  }

  void fillMongo() {
    showPage(dialog_, "MongoDB");
    type(dialog_, "eMongoDB_host", "db");
    type(dialog_, "eMongoDB_database", "d");
  }

  TWindowWorld world_;
  TfrmDBConfig dialog_{world_.context};
};

TEST_F(TDBConfigTest, OwesUsersNothingOnAnyPage) {
  for (const TConnectionType& type : connectionTypes()) {
    const std::string name(type.dbType);
    showPage(dialog_, name.c_str());
    walkWindow(dialog_, "frmdbconfig_" + name);
    EXPECT_EQ(child<QTextEdit>(dialog_, "memHelp").toPlainText().toStdString(),
              connectionHelp(type, QCoreApplication::applicationDirPath().toStdString()));
  }
}

TEST_F(TDBConfigTest, EveryPageRefusesInOrder) {
  showPage(dialog_, "Oracle");
  expectRefusal("Please specify Oracle database user.");
  EXPECT_EQ(QApplication::focusWidget()->objectName(), QLatin1String("eOracle_user"));
  type(dialog_, "eOracle_user", "u");
  expectRefusal("Please specify Oracle database user password.");
  type(dialog_, "eOracle_password", "p");
  expectRefusal("Please specify Oracle database service name.");
  showPage(dialog_, "MongoDB");
  expectRefusal("Please specify MongoDB instance host.");
  type(dialog_, "eMongoDB_host", "HTTPS://db");
  expectRefusal("Please specify MongoDB database name.");
  type(dialog_, "eMongoDB_database", "d");
  expectRefusal("Do not use http: or https: protocol prefixes in the host name.");
  type(dialog_, "eMongoDB_host", "db");
  type(dialog_, "eMongoDB_port", "70000");
  expectRefusal("Port must be a whole number from 0 to 65535.");
  EXPECT_EQ(QApplication::focusWidget()->objectName(), QLatin1String("eMongoDB_port"));
  showPage(dialog_, "Cassandra");
  expectRefusal("Please specify Cassandra database host.");
  showPage(dialog_, "HBase");
  expectRefusal("Please specify HBase database host.");
  showPage(dialog_, "CouchDB");
  expectRefusal("Please specify CouchDB database host.");
  showPage(dialog_, "Couchbase");
  expectRefusal("Please specify Couchbase database host.");
  for (const char* bare : {R"({"dbtype":"CouchDB","host":"h","protocol":""})",
                           R"({"dbtype":"Couchbase","host":"h","protocol":""})"}) {
    EXPECT_TRUE(dialog_.setConnection(recordOf(bare)));
    expectRefusal("Please specify protocol.");
  }
}

TEST_F(TDBConfigTest, BeginsWithAKeptConnection) {
  dialog_.loadAllowedDataSourceTypes({"MongoDB"});
  dialog_.offerKept({recordOf(R"({"dbtype":"HBase","host":"region"})")});
  auto& box = child<QComboBox>(dialog_, "cbKept");
  EXPECT_FALSE(box.isVisible()) << "none of the type";
  dialog_.offerKept({recordOf(R"({"dbtype":"HBase","host":"region"})"),
                     recordOf(R"({"dbtype":"MongoDB","host":"db","port":27018,"database":"d","user":"u"})")});
  ASSERT_TRUE(box.isVisible());
  ASSERT_EQ(box.count(), 2);
  EXPECT_EQ(box.itemText(1), QLatin1String("MongoDB  db@d/u :27018"));
  walkWindow(dialog_, "frmdbconfig_kept");
  box.setFocus();
  QTest::keyClick(&box, Qt::Key_Down);
  click(dialog_, "bOK");
  EXPECT_EQ(*dialog_.connection()->find("port"), TValue(27018));
}

TEST_F(TDBConfigTest, OkGivesTheRecordAndCancelGivesNone) {
  showPage(dialog_, "Cassandra");
  type(dialog_, "eCassandra_host", "node");
  type(dialog_, "eCassandra_password", "hidden");
  EXPECT_EQ(child<QLineEdit>(dialog_, "eCassandra_password").displayText(), QLatin1String("******"));
  child<QComboBox>(dialog_, "eCassandra_readlevel").setCurrentText(QStringLiteral("TWO"));
  click(dialog_, "bOK");
  EXPECT_FALSE(dialog_.isVisible());
  EXPECT_EQ(toJson(dialog_.connection().value()),
            R"({"dbtype":"Cassandra","host":"node","port":9160,"user":"","password":"hidden",)"
            R"("encoding":"Default","readlevel":"TWO","writelevel":"ANY"})");
  TfrmDBConfig other(world_.context);
  other.setConnection(*dialog_.connection());
  other.show();
  click(other, "bCancel");
  EXPECT_FALSE(other.connection());
}

TEST_F(TDBConfigTest, AnExistingRecordComesBackAsItWas) {
  for (
      const char* json :
      {R"({"dbtype":"MongoDB","host":"h","port":1,"database":"d","user":"","password":"p","mechanism":"PLAIN","authdb":""})",
       R"({"dbtype":"CouchDB","host":"h","port":2,"protocol":"https","proxyauthtype":"Ntlm","proxyhost":"x",)"
       R"("proxyport":3,"proxyuser":"y","proxypwd":"z","user":"u","password":"p"})"}) {
    TfrmDBConfig dialog(world_.context);
    EXPECT_TRUE(dialog.setConnection(recordOf(json)));
    dialog.accept();
    EXPECT_EQ(toJson(dialog.connection().value()), json);
  }
  EXPECT_FALSE(dialog_.setConnection(recordOf(R"({"dbtype":"JSON File"})")));
}

TEST_F(TDBConfigTest, OnlyAllowedTypesHaveAPage) {
  dialog_.loadAllowedDataSourceTypes({dbtype::hbase, dbtype::couchdb});
  const auto& pages = child<QTabWidget>(dialog_, "pcTypes");
  QStringList shown;
  for (int i = 0; i < pages.count(); ++i)
    if (pages.isTabVisible(i)) shown.append(pages.tabText(i));
  EXPECT_EQ(shown, QStringList({QStringLiteral("HBase"), QStringLiteral("CouchDB")}));
  expectRefusal("Please specify HBase database host.");
}

TEST_F(TDBConfigTest, ATestTellsWhatTheStoreSaid) {
  std::string fault;
  world_.addStore("MongoDB", [&fault](const TStoreOptions& options) {
    EXPECT_EQ(options.connection.asObject().find("host")->asText(), "db");
    if (!fault.empty())
      throw TStoreError(TStoreErrorKind::Connect, "Unable to connect to source MongoDB.", fault);
  });
  world_.prompt.expect(TPromptKind::Warning, "Please specify Oracle database user.");
  EXPECT_EQ(tested(), "") << "a record that is not whole is not tried";
  fillMongo();
  EXPECT_EQ(tested(), "Connected to MongoDB.");
  fault = "Authentication failed.";
  EXPECT_EQ(tested(), "Unable to connect to MongoDB: Authentication failed.");
  EXPECT_EQ(child<QPushButton>(dialog_, "bTestConnection").text(), QLatin1String("&Test Connection"));
  type(dialog_, "eMongoDB_host", "other");
  EXPECT_EQ(child<QLabel>(dialog_, "lTestResult").text(), QString()) << "that was another connection";
  showPage(dialog_, "HBase");
  type(dialog_, "eHBase_host", "h");
  EXPECT_EQ(
      tested(),
      "This version of Hollowmere cannot connect to HBase yet. The connection can be saved, but not tested.");
}

/// A store that never answers, but heeds the stop flag.
class TSilentStoreTest : public TDBConfigTest {
 protected:
  TSilentStoreTest() {
    world_.addStore("MongoDB", [this](const TStoreOptions& options) {
      while (!options.stop->isSet()) std::this_thread::sleep_for(1ms);
      std::this_thread::sleep_for(50ms);
      ++left_;
    });
    fillMongo();
  }
  // The threads use the store, and end before it does.
  ~TSilentStoreTest() override {
    EXPECT_TRUE(QTest::qWaitFor([this] { return left_ == started_; }));
    QTest::qWait(10);
  }

  std::atomic<int> left_ = 0;
  int started_ = 1;
};

TEST_F(TSilentStoreTest, ATestCanBeStopped) {
  EXPECT_EQ(tested(false), "Connecting to MongoDB...");
  EXPECT_EQ(child<QPushButton>(dialog_, "bTestConnection").text(), QLatin1String("&Stop Test"));
  EXPECT_EQ(tested(false), "The test was cancelled.");
  EXPECT_EQ(left_, 0) << "the window does not wait for the store";
}

TEST_F(TSilentStoreTest, ATestEndsWhenItTakesTooLong) {
  dialog_.tester().setTimeout(20ms);
  EXPECT_EQ(tested(), "MongoDB did not answer within 15 seconds.");
}

TEST_F(TSilentStoreTest, ClosingInTheMiddleIsSafe) {
  tested(false);
  click(dialog_, "bCancel");
  EXPECT_FALSE(dialog_.tester().isRunning());
  {
    TfrmDBConfig other(world_.context);
    other.setConnection(recordOf(R"({"dbtype":"MongoDB","host":"h","database":"d"})"));
    other.show();
    click(other, "bTestConnection");
    started_ = 2;
  }
  EXPECT_EQ(left_, 0) << "nor does closing wait";
}

// Connection list

class TConnListTest : public testing::Test {
 protected:
  TConnListTest() { path_ = world_.folder.connectionListFile(); }

  void keep(std::initializer_list<const char*> records) {
    TConnectionList list;
    for (const char* record : records) list.add(recordOf(record));
    world_.context.connectionFile().save(list);
  }

  std::unique_ptr<TfrmConnList> open() {
    auto window = std::make_unique<TfrmConnList>(world_.context);
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    table_ = &child<QTableView>(*window, "gConnections");
    table_->setFocus();
    return window;
  }

  void press(Qt::Key key) {
    table_->window()->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(table_->window()));
    QTest::keyClick(table_, key);
  }

  std::string cell(int row, int column) {
    return table_->model()->index(row, column).data().toString().toStdString();
  }

  TWindowWorld world_;
  std::string path_;
  QTableView* table_ = nullptr;
};

constexpr const char* oracle = R"({"dbtype":"Oracle","user":"scott","password":"tiger","database":"orcl"})";
constexpr const char* hbase =
    R"({"dbtype":"HBase","host":"hb","port":9090,"infoport":60010,"encoding":"Default"})";

TEST_F(TConnListTest, OwesUsersNothing) {
  keep({oracle, hbase});
  const auto window = open();
  walkWindow(*window, "frmconnlist");
}

TEST_F(TConnListTest, IsWorkedByKeysAlone) {
  const auto window = open();
  EXPECT_FALSE(child<QPushButton>(*window, "bOpenConn").isEnabled());
  whenDialog(QStringLiteral("frmDBConfig"), [](QDialog& dialog) {
    ASSERT_TRUE(static_cast<TfrmDBConfig&>(dialog).setConnection(recordOf(oracle)));
    dialog.accept();
  });
  press(Qt::Key_Insert);
  ASSERT_EQ(table_->model()->rowCount(), 1);
  EXPECT_EQ(cell(0, 0), "scott@orcl");
  EXPECT_EQ(cell(0, 1), "");
  EXPECT_EQ(cell(0, 2), "Oracle");
  EXPECT_EQ(cell(0, 4), R"({"dbtype":"Oracle","user":"scott","password":"********","database":"orcl"})");
  whenDialog(QStringLiteral("frmDBConfig"), [](QDialog& dialog) {
    EXPECT_EQ(child<QLineEdit>(dialog, "eOracle_password").text(), QLatin1String("tiger"));
    type(dialog, "eOracle_user", "adam");
    click(dialog, "bOK");
  });
  press(Qt::Key_F2);
  EXPECT_EQ(cell(0, 0), "adam@orcl");
  std::string opened;
  QObject::connect(window.get(), &TfrmConnList::openConnection,
                   [&opened](const ConnectionConfig& connection) { opened = toJson(connection); });
  press(Qt::Key_Return);
  EXPECT_EQ(opened, R"({"dbtype":"Oracle","user":"adam","password":"tiger","database":"orcl"})");
  EXPECT_FALSE(fileExists(path_)) << "until the window closes";
  EXPECT_TRUE(window->close());
  EXPECT_EQ(world_.context.connectionFile().load(), window->connections());
  EXPECT_TRUE(world_.store.contains(QStringLiteral("connlist/geometry")));
  EXPECT_TRUE(world_.store.contains(QStringLiteral("dbConfig/geometry")));
}

TEST_F(TConnListTest, RemovesWithoutAskingAndKeepsANeighbour) {
  keep({oracle, hbase});
  const auto window = open();
  table_->setCurrentIndex(table_->model()->index(1, 0));
  press(Qt::Key_Delete);
  EXPECT_EQ(table_->currentIndex().row(), 0);
  press(Qt::Key_Delete);
  EXPECT_EQ(table_->model()->rowCount(), 0);
  press(Qt::Key_Delete);
  EXPECT_EQ(world_.context.connectionFile().load().records().size(), 2U);
  EXPECT_TRUE(window->close());
  EXPECT_TRUE(world_.context.connectionFile().load().records().empty());
}

TEST_F(TConnListTest, TheConfigureCellOpensItsRow) {
  keep({oracle, hbase});
  const auto window = open();
  bool came = false;
  whenDialog(QStringLiteral("frmDBConfig"), [&came](QDialog& dialog) {
    came = child<QLineEdit>(dialog, "eHBase_host").text() == QLatin1String("hb");
    type(dialog, "eHBase_host", "other");
    click(dialog, "bOK");
  });
  const QRect place = table_->visualRect(table_->model()->index(1, 3));
  QTest::mouseClick(table_->viewport(), Qt::LeftButton, {}, place.center());
  EXPECT_TRUE(QTest::qWaitFor([&came] { return came; }));
  EXPECT_EQ(cell(1, 0), "other");
  EXPECT_EQ(cell(0, 0), "scott@orcl");
}

TEST_F(TConnListTest, FindsWhileOneTypesAndActsOnTheRowThatIsSeen) {
  keep({oracle, hbase});
  const auto window = open();
  type(*window, "eFind", "HBAS");
  ASSERT_EQ(table_->model()->rowCount(), 1);
  EXPECT_EQ(cell(0, 0), "hb");
  type(*window, "eFind", "tiger");
  EXPECT_EQ(table_->model()->rowCount(), 0) << "passwords are not searched";
  EXPECT_FALSE(child<QPushButton>(*window, "bRemoveConn").isEnabled());
  type(*window, "eFind", "hb");
  click(*window, "bRemoveConn");
  EXPECT_EQ(window->connections().records(), std::vector{recordOf(oracle)});
  whenDialog(QStringLiteral("frmDBConfig"), [](QDialog& dialog) {
    static_cast<TfrmDBConfig&>(dialog).setConnection(recordOf(hbase));
    dialog.accept();
  });
  type(*window, "eFind", "nothing");
  click(*window, "bAddConn");
  EXPECT_EQ(table_->model()->rowCount(), 2) << "a new row is seen whatever was sought";
  EXPECT_EQ(table_->currentIndex().row(), 1);
}

TEST_F(TConnListTest, AListThatCannotBeLoadedIsNeverOverwrittenByNothing) {
  writeBytes(path_, TCipher("another").encryptStream(R"({"connections":[]})"));
  const std::string foreign = readBytes(path_);
  world_.prompt.expect(TPromptKind::Error, "Failed to load database connection list from " + path_);
  EXPECT_TRUE(open()->close());
  EXPECT_EQ(readBytes(path_), foreign);
  world_.prompt.expect(TPromptKind::Error, "Failed to load database connection list from " + path_);
  const auto window = open();
  world_.prompt.expect(TPromptKind::Confirmation,
                       "Would you like to save this database connection for future use?", TAnswer::Yes);
  EXPECT_TRUE(window->offerToKeep(recordOf(hbase)));
  EXPECT_EQ(cell(0, 0), "hb");
  EXPECT_EQ(readBytes(path_ + ".bad"), foreign);
}

TEST_F(TConnListTest, StaysOpenWhenItsListWouldBeLost) {
  TFailingFiles full(3);
  TWindowContext context = {world_.settings,
                            world_.store,
                            world_.folder,
                            world_.stores,
                            world_.cipher,
                            full,
                            world_.clock,
                            world_.dates,
                            world_.prompt,
                            world_.mainThread,
                            {}};
  keep({oracle});
  TfrmConnList window(context);
  window.show();
  click(window, "bRemoveConn");
  for (const TAnswer answer : {TAnswer::No, TAnswer::Yes}) {
    world_.prompt.expect(TPromptKind::Error, "Failed to save database connection list to " + path_);
    world_.prompt.expect(TPromptKind::Confirmation,
                         "Would you like to close the connection list without saving it?", answer);
    EXPECT_EQ(window.close(), answer == TAnswer::Yes);
  }
}

class TExportTest : public TConnListTest {
 protected:
  TExportTest() { keep({oracle, hbase}); }

  void exportTo(const std::function<void(QDialog&)>& choose) {
    const auto window = open();
    whenDialog(QStringLiteral("exportDialog"), [&](QDialog& dialog) {
      choose(dialog);
      whenFileDialog(file_);
      click(dialog, "bOK");
    });
    click(*window, "bExport");
  }

  std::unique_ptr<TfrmConnList> import(const char* phrase = nullptr) {
    auto window = open();
    whenFileDialog(file_);
    if (phrase)
      whenDialog(QStringLiteral("passPhraseDialog"), [phrase](QDialog& dialog) {
        walkWindow(dialog, "passphrasedialog");
        type(dialog, "ePassPhrase", phrase);
        click(dialog, "bOK");
      });
    click(*window, "bImport");
    return window;
  }

  std::string file_ = world_.temp.file("out.json");
};

TEST_F(TExportTest, WithoutPasswords) {
  exportTo([](QDialog& dialog) { walkWindow(dialog, "exportdialog"); });
  EXPECT_EQ(readBytes(file_).find("tiger"), std::string::npos);
  EXPECT_EQ(permissionsOf(file_), 0600U);
  keep({});
  world_.prompt.expect(TPromptKind::Information, "Connections imported: 2.");
  EXPECT_EQ(import()->connections(), importConnections(readBytes(file_)));
}

TEST_F(TExportTest, UnderAPassPhrase) {
  exportTo([this](QDialog& dialog) {
    child<QRadioButton>(dialog, "rbSealed").setChecked(true);
    world_.prompt.expect(TPromptKind::Warning, "Please type a pass phrase.");
    click(dialog, "bOK");
    type(dialog, "ePassPhrase", "long enough");
    world_.prompt.expect(TPromptKind::Warning, "The two pass phrases differ.");
    click(dialog, "bOK");
    type(dialog, "ePassPhraseAgain", "long enough");
  });
  world_.prompt.expect(TPromptKind::Error, "The pass phrase is wrong, or the file is damaged.");
  import("short");
  world_.prompt.expect(TPromptKind::Information, "Connections imported: 0. Already in the list: 2.");
  import("long enough");
  keep({});
  world_.prompt.expect(TPromptKind::Information, "Connections imported: 2.");
  EXPECT_EQ(import("long enough")->connections().records(), (std::vector{recordOf(oracle), recordOf(hbase)}));
}

TEST_F(TExportTest, FilesThatCannotBeTakenOrWritten) {
  writeBytes(file_, "foreign");
  world_.prompt.expect(TPromptKind::Error, "The file holds no exported connections.");
  EXPECT_EQ(import()->connections().records().size(), 2U);
  TFailingFiles full(3);
  TWindowContext context = {world_.settings,
                            world_.store,
                            world_.folder,
                            world_.stores,
                            world_.cipher,
                            full,
                            world_.clock,
                            world_.dates,
                            world_.prompt,
                            world_.mainThread,
                            {}};
  TfrmConnList window(context);
  window.show();
  const std::string other = world_.temp.file("other.json");
  whenDialog(QStringLiteral("exportDialog"), [&other](QDialog& dialog) {
    whenFileDialog(other);
    click(dialog, "bOK");
  });
  world_.prompt.expect(TPromptKind::Error, "Unable to write file " + other + ": No space left on device");
  click(window, "bExport");
  EXPECT_FALSE(fileExists(other));
}

}  // namespace
}  // namespace hollowmere
