// Opens a JSON document in the viewer as the program does, once, offscreen. Prints one line of JSON: the
// seconds of parsing it, of making the window and painting it first, and of the text page; the seconds
// that two plain parsers take for the same text; the memory that the process has come to use at most, beside
// what it used before, in bytes a byte of text.

#include <rapidjson/document.h>
#include <simdjson.h>

#include <QApplication>
#include <QEvent>
#include <QSettings>
#include <QTabWidget>
#include <QTreeView>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>

#include "json/json.h"
#include "jsondoc/jsontext.h"
#include "jsondoc/ui/frmviewjson.h"
#include "ui/messageprompt.h"
#include "ui/qtmainthread.h"

namespace {

using namespace hollowmere;

double seconds(const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// A line of the process's own status, in bytes.
double memory(const char* name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(name)) return 1024.0 * std::stod(line.substr(line.find(':') + 1));
  return 0;
}

/// Notes that a widget was painted.
class TPaintWatch : public QObject {
 public:
  bool painted = false;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    painted = painted || event->type() == QEvent::Paint;
    return false;
  }
};

double rapidSeconds(const std::string& text) {
  return seconds([&] {
    rapidjson::Document document;
    document.Parse(text.data(), text.size());
    if (document.HasParseError()) std::exit(1);
  });
}

double simdSeconds(const std::string& text) {
  return seconds([&] {
    simdjson::dom::parser parser;
    if (parser.parse(text).error() != simdjson::SUCCESS) std::exit(1);
  });
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  if (argc != 2) {
    std::fputs("usage: hm-bench-viewjson FILE\n", stderr);
    return 2;
  }
  TMessagePrompt prompt;
  const TDataFolder folder = TDataFolder::open();
  TSettings settings = defaultSettings(folder);
  const auto store = openSettingsStore();
  TStoreRegistry stores;
  TCipher cipher;
  TDiskFiles files;
  TSystemClock clock;
  TDateTimeText dates;
  TQtMainThread mainThread;
  TWindowContext context{settings, *store, folder, stores,     cipher, files,
                         clock,    dates,  prompt, mainThread, {}};
  const double before = memory("VmRSS");
  std::ifstream file(argv[1], std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  TJsonReading reading;
  TObject result;
  const double parse = seconds([&] { reading = readDocument(text); });
  if (!reading.document) return 1;
  std::unique_ptr<TfrmViewJSON> window;
  TPaintWatch watch;
  const double paint = seconds([&] {
    window = std::make_unique<TfrmViewJSON>(context, std::move(*reading.document), TViewJsonOptions());
    window->findChild<QTreeView*>(QStringLiteral("tlJSON"))->viewport()->installEventFilter(&watch);
    window->show();
    while (!watch.painted) QCoreApplication::processEvents();
  });
  result.add("parse", parse);
  result.add("paint", paint);
  result.add("memory", (memory("VmHWM") - before) / static_cast<double>(text.size()));
  result.add("text", seconds([&] {
               window->findChild<QTabWidget*>(QStringLiteral("pcDocument"))->setCurrentIndex(1);
               window->grab();
             }));
  window.reset();
  result.add("rapidjson", rapidSeconds(text));
  result.add("simdjson", simdSeconds(text));
  std::puts(toJson(result).c_str());
  return 0;
}
