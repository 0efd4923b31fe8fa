// pictures FOLDER [dark | LANGUAGE]: draws every window offscreen into FOLDER/NAME.png. QT_SCALE_FACTOR=2 for
// the pictures of a display with twice the pixels.
#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTableView>
#include <QTranslator>
#include <QTreeView>
#include <chrono>
#include <cstdio>
#include <thread>

#include "app/ui/frmhelp.h"
#include "app/ui/frmmain.h"
#include "connectors/jsonfile/jsonfileconnector.h"
#include "connectors/storeerror.h"
#include "json/json.h"
#include "jsondoc/ui/frmviewjson.h"
#include "jsongrid/ui/addattributedialog.h"
#include "jsongrid/ui/frmjson.h"
#include "project/runtexts.h"
#include "project/ui/datasourcedialog.h"
#include "project/ui/frmproject.h"
#include "settings/ui/exportdialogs.h"
#include "settings/ui/frmconnlist.h"
#include "settings/ui/frmdbconfig.h"
#include "settings/ui/frmoption.h"
#include "support/toystore.h"
#include "support/windowworld.h"
#include "ui/codeeditor.h"
#include "ui/propertygrid.h"

namespace hollowmere {
namespace {

class TPictures {
 public:
  explicit TPictures(const QString& folder) : folder_(folder) { world_.stores.add(makeJsonFileConnector()); }

  void all() {
    options();
    connectionDialogs();
    connectionTest();
    connectionList();
    exportDialogs();
    documentViewer();
    jsonGrid();
    project();
    mappingFaults();
    runningLoad();
    mainWindow();
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

  static std::string picture() {
    QImage image(160, 120, QImage::Format_RGB32);
    for (int y = 0; y < 120; ++y)
      for (int x = 0; x < 160; ++x) image.setPixel(x, y, qRgb(x, y * 2, 160 - x));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
  }

  void documentViewer() {
    const TObject document{
        {"_id", TObjectId{0x5f, 1, 2, 3}},
        {"name", "Ada Lovelace"},
        {"born", TValue::dateTime(-4857062400000)},
        {"address",
         TObject{{"city", "London"}, {"zip", nullptr}, {"lines", TList{"12 St James's Square", 2, true}}}},
        {"picture", TValue::binary(picture())},
        {"note", "A long text. " + std::string(300, 'x')},
        {"total", 12.5},
        {"total", 13},
        {"empty", TList()}};
    TfrmViewJSON window(world_.context, document, {});
    save(window, QStringLiteral("frmviewjson"));
    auto* view = window.findChild<QTreeView*>(QStringLiteral("tlJSON"));
    view->setCurrentIndex(view->model()->index(4, 1));
    save(window, QStringLiteral("frmviewjson_blob"));
    auto* blob = window.findChild<QTabWidget*>(QStringLiteral("pcBlob"));
    blob->setCurrentIndex(2);
    view->setCurrentIndex(view->model()->index(1, 1));
    view->edit(view->currentIndex());
    save(window, QStringLiteral("frmviewjson_edit"));
    view->setCurrentIndex(view->model()->index(4, 1));
    blob->setCurrentIndex(2);
    save(window, QStringLiteral("frmviewjson_hex"));
    window.findChild<QTabWidget*>(QStringLiteral("pcDocument"))->setCurrentIndex(1);
    auto* text = window.findChild<TCodeEditor*>(QStringLiteral("mText"));
    text->showFind();
    text->findChild<QLineEdit*>(QStringLiteral("mTextFind"))->setText(QStringLiteral("to"));
    save(window, QStringLiteral("frmviewjson_text"));
  }

  void jsonGrid() {
    const char* cities[] = {"Leiden", "Delft", "Zürich", "São Paulo"};
    TList documents;
    for (int i = 0; i < 1234; ++i) {
      TObject order{{"_id", 1000 + i}, {"city", cities[i % 4]}, {"total", 12.5 * i}, {"paid", i % 3 == 0}};
      if (i % 2 == 0) order.add("placed", TValue::dateTime(1767323045000 + i * 86'400'000LL));
      order.add("lines", parseJson(R"([{"sku":"A-17","quantity":2},{"sku":"B-2","quantity":1}])"));
      if (i % 5 == 0)
        order.add("photo",
                  "&base64;iVBORw0KGgoAAAANSUhEUgAAAAoAAAAKCAIAAAACUFjqAAAAEklEQVR4nGP4z8CAB+"
                  "GTG8HSALfKY52fTcuYAAAAAElFTkSuQmCC");
      documents.emplace_back(std::move(order));
    }
    TJsonWindowOptions options;
    options.saveAsNewCollection = [](QWidget*, const TList&) {};
    TfrmJSON window(world_.context, std::move(documents), options, nullptr);
    save(window, QStringLiteral("frmjson"));
    auto* table = window.findChild<QTableView*>(QStringLiteral("gDocuments"));
    table->model()->setData(table->model()->index(1, 1), QStringLiteral("Utrecht"), Qt::EditRole);
    table->setCurrentIndex(table->model()->index(2, 5));
    save(window, QStringLiteral("frmjson_nested"));
    table->setCurrentIndex(table->model()->index(5, 6));
    save(window, QStringLiteral("frmjson_binary"));
    save(*window.findChild<QMenu*>(QStringLiteral("exportMenu")), QStringLiteral("frmjson_export"));
    TAddAttributeDialog attribute(world_.prompt, {}, &window);
    save(attribute, QStringLiteral("addattributedialog"));
  }

  /// Lets timers and other threads work for a while.
  static void wait(int milliseconds) {
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < milliseconds;)
      QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
  }

  TProject sampleProject() {
    const std::string file = world_.temp.file("orders.json");
    std::string lines;
    for (int i = 1; i <= 200; ++i)
      lines += R"({"order":)" + std::to_string(1000 + i) + R"(,"placed":"2026-03-0)" +
               std::to_string(1 + i % 9) + R"( 10:15:00","total":")" + std::to_string(i) +
               R"(.50","paid":"true","city":"Leiden",)" + R"("lines":[{"sku":"A-17","quantity":2}]})" + "\n";
    writeBytes(file, lines);
    TProject project = newProject(world_.settings, world_.folder);
    project.projectName = "Orders";
    project.source = {"JSON File", file};
    project.target = {"MongoDB", mongo_};
    project.dataSources.push_back({"JSON File", file, 0});
    project.dataTargets.push_back({"orders", "orders", ""});
    project.mapping.push_back(
        {"orders",
         "JSON File",
         "Data Source (JSON List)",
         {{"_id", "order", "Number", {}},
          {"placed", "placed", "DateTime", {}},
          {"total", "total", "Number", {}},
          {"paid", "paid", "Boolean", {}},
          {"lines", "lines", "JSON List", {}},
          {"delivery", "JSON File", "Data Source (JSON Object)", {{"city", "city", "String", {}}}}}});
    return project;
  }

  void project() {
    TfrmProject window(world_.context, sampleProject());
    window.resize(1200, 700);
    auto* pages = window.findChild<QTabWidget*>(QStringLiteral("pages"));
    const QStringList names{"general", "sources", "targets", "mapping", "run"};
    for (int page = 0; page < pages->count(); ++page) {
      window.show();
      pages->setCurrentIndex(page);
      wait(names.value(page) == QLatin1String("mapping") ? 1500 : 50);
      save(window, names.value(page));
    }
    const TProject& shown = window.project();
    TDataSourceDialog dialog(world_.context, shown, shown.dataSources[0], nullptr);
    save(dialog, QStringLiteral("datasourcedialog"));
  }

  void mappingFaults() {
    TProject faulty = sampleProject();
    faulty.mapping[0].children[2] = {"paid", "city", "Number", {}};
    TfrmProject window(world_.context, faulty);
    window.resize(1200, 700);
    window.findChild<QTabWidget*>(QStringLiteral("pages"))->setCurrentIndex(3);
    window.show();
    wait(1500);
    save(window, QStringLiteral("mapping_faults"));
  }

  /// A load on three threads, some of its rows lost.
  void runningLoad() {
    const auto toy = std::make_shared<TToyServer>();
    toy->fillNumbered("people", 3000);
    toy->faults.unreadableRows = {7};
    toy->faults.refusedDocuments = {20, 21, 22};
    toy->faults.pauseMilliseconds = 2;
    world_.stores.add(makeToyConnector(toy));
    TProject project = newProject(world_.settings, world_.folder);
    project.projectName = "People";
    project.degree = 3;
    project.source = project.target = {"Toy", TObject{{"dbtype", "Toy"}}};
    project.dataSources.push_back(toySource("people", "people"));
    project.dataTargets.push_back({"copies", "copies", ""});
    project.mapping.push_back({"copies",
                               "people",
                               "Data Source (JSON List)",
                               {{"_id", "_id", "Number", {}}, {"n", "name", "String", {}}}});
    TfrmProject window(world_.context, project);
    window.resize(1200, 700);
    window.show();
    world_.prompt.expect(TPromptKind::Confirmation, runtexts::confirmStart, TAnswer::Yes);
    window.actStartExecute();
    wait(1000);
    save(window, QStringLiteral("run_running"));
    world_.prompt.expect(TPromptKind::Confirmation, runtexts::confirmStop, TAnswer::Yes);
    window.actStopExecute();
    while (window.run()->busy()) wait(50);
  }

  void mainWindow() {
    TProject sample = sampleProject();
    const std::string file = world_.temp.file("orders.hmp");
    TProjectFile(world_.cipher, world_.files).save(sample, file);
    TfrmMain window(world_.context);
    window.resize(1200, 750);
    save(window, QStringLiteral("frmmain_empty"));
    window.openProject(QString::fromStdString(file));
    window.openConnectionList();
    window.openProject(QString::fromStdString(file));
    save(window, QStringLiteral("frmmain"));
    window.showHelp(QStringLiteral("mapping"));
    save(*window.findChild<TfrmHelp*>(), QStringLiteral("frmhelp"));
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
    std::fputs("usage: pictures FOLDER [dark | LANGUAGE]\n", stderr);
    return 2;
  }
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  const QString form = arguments.value(2);
  QTranslator translator;
  if (form == QLatin1String("dark")) {
    QApplication::setPalette(darkPalette());
  } else if (!form.isEmpty()) {
    const QString folder = QCoreApplication::applicationDirPath() + QStringLiteral("/translations");
    if (!translator.load(QStringLiteral("hollowmere_") + form, folder)) {
      std::fprintf(stderr, "pictures: no translation for %s\n", qPrintable(form));
      return 2;
    }
    QCoreApplication::installTranslator(&translator);
  }
  QDir().mkpath(arguments[1]);
  TPictures pictures(arguments[1]);
  pictures.all();
  return pictures.failed() ? 1 : 0;
}

}  // namespace
}  // namespace hollowmere

int main(int argc, char** argv) { return hollowmere::run(argc, argv); }
