// pictures FOLDER [dark]: draws every window offscreen into FOLDER/NAME.png. QT_SCALE_FACTOR=2 for the
// pictures of a display with twice the pixels.
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTableView>
#include <chrono>
#include <cstdio>
#include <thread>

#include "connectors/storeerror.h"
#include "json/json.h"
#include "settings/ui/exportdialogs.h"
#include "settings/ui/frmconnlist.h"
#include "settings/ui/frmdbconfig.h"
#include "settings/ui/frmoption.h"
#include "support/windowworld.h"
#include "ui/propertygrid.h"

namespace hollowmere {
namespace {

class TPictures {
 public:
  explicit TPictures(const QString& folder) : folder_(folder) {}

  void all() {
    options();
    connectionDialogs();
    connectionTest();
    connectionList();
    exportDialogs();
  }

  [[nodiscard]] bool failed() const { return failed_; }

 private:
  void save(QWidget& window, const QString& name) {
    window.show();
    QCoreApplication::processEvents();
    const QString file = folder_.filePath(name + QLatin1String(".png"));
    if (window.grab().save(file)) return;
    std::fprintf(stderr, "pictures: cannot write %s\n", qPrintable(file));
    failed_ = true;
  }

  void options() {
    TfrmOption dialog(world_.context);
    world_.settings.logFile = "/var/lib/hollowmere/logs/log.txt";
    TfrmOption filled(world_.context);
    save(filled, QStringLiteral("frmoption"));
    filled.findChild<TPropertyGrid*>()->editProperty(QStringLiteral("logFile"));
    save(filled, QStringLiteral("frmoption_edit"));
  }

  void connectionDialogs() {
    for (const TConnectionType& type : connectionTypes()) {
      TfrmDBConfig dialog(world_.context);
      dialog.setConnection({{"dbtype", type.dbType}});
      save(dialog, QStringLiteral("frmdbconfig_") + QString::fromStdString(std::string(type.dbType)));
    }
  }

  void connectionTest() {
    world_.addStore("MongoDB", [](const TStoreOptions&) {
      std::this_thread::sleep_for(std::chrono::milliseconds(500));
      throw TStoreError(
          TStoreErrorKind::Connect, "",
          "No suitable servers found: connection refused calling hello on 'db.example.com:27017'");
    });
    TfrmDBConfig dialog(world_.context);
    dialog.setConnection(mongo_);
    dialog.show();
    dialog.findChild<QPushButton*>(QStringLiteral("bTestConnection"))->click();
    save(dialog, QStringLiteral("frmdbconfig_testing"));
    while (dialog.tester().isRunning()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    save(dialog, QStringLiteral("frmdbconfig_refused"));
  }

  void connectionList() {
    TConnectionList list;
    list.add(mongo_);
    list.add(parseJson(R"({"dbtype":"Oracle","user":"scott","password":"x","database":"dbhost:1521:DBORA"})")
                 .asObject());
    list.add(
        parseJson(
            R"({"dbtype":"HBase","host":"hbase.example.com","port":9090,"infoport":60010,"encoding":"Default"})")
            .asObject());
    world_.context.connectionFile().save(list);
    TfrmConnList window(world_.context);
    save(window, QStringLiteral("frmconnlist"));
    window.findChild<QTableView*>()->selectRow(1);
    window.findChild<QTableView*>()->setFocus();
    save(window, QStringLiteral("frmconnlist_selected"));
  }

  void exportDialogs() {
    TExportDialog dialog(world_.prompt);
    save(dialog, QStringLiteral("exportdialog"));
    dialog.findChild<QRadioButton*>(QStringLiteral("rbSealed"))->setChecked(true);
    dialog.findChild<QLineEdit*>(QStringLiteral("ePassPhrase"))->setText(QStringLiteral("a pass phrase"));
    save(dialog, QStringLiteral("exportdialog_sealed"));
    TPassPhraseDialog phrase;
    save(phrase, QStringLiteral("passphrasedialog"));
  }

  QDir folder_;
  TWindowWorld world_;
  ConnectionConfig mongo_ =
      parseJson(R"({"dbtype":"MongoDB","host":"db.example.com","port":27017,"database":"shop",)"
                R"("user":"loader","password":"secret12","mechanism":"SCRAM-SHA-1","authdb":"admin"})")
          .asObject();
  bool failed_ = false;
};

QPalette darkPalette() {
  QPalette dark(QColor(0x35, 0x35, 0x35));
  dark.setColor(QPalette::Base, QColor(0x23, 0x23, 0x23));
  dark.setColor(QPalette::AlternateBase, QColor(0x2c, 0x2c, 0x2c));
  dark.setColor(QPalette::Highlight, QColor(0x2a, 0x82, 0xda));
  dark.setColor(QPalette::HighlightedText, Qt::white);
  return dark;
}

int run(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.size() < 2) {
    std::fputs("usage: pictures FOLDER [dark]\n", stderr);
    return 2;
  }
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  if (arguments.value(2) == QLatin1String("dark")) QApplication::setPalette(darkPalette());
  QDir().mkpath(arguments[1]);
  TPictures pictures(arguments[1]);
  pictures.all();
  return pictures.failed() ? 1 : 0;
}

}  // namespace
}  // namespace hollowmere

int main(int argc, char** argv) { return hollowmere::run(argc, argv); }
