// Measures windows; bench.py calls it. Each kind prints JSON.
//
//   hm-bench-windows bare            a window with nothing of ours, ended by its first paint
//   hm-bench-windows project FILE    opens a project and edits its mapping
//   hm-bench-windows log LINES       a load's log, as fast as it can be shown
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTextBlock>
#include <QTreeWidget>
#include <cstdio>

#include "app/ui/frmmain.h"
#include "connectors/jsonfile/jsonfileconnector.h"
#include "project/ui/frmproject.h"
#include "project/ui/runpage.h"
#include "support/windowworld.h"

namespace hollowmere {
namespace {

double seconds(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e9; }

/// Ends the program after its first paint.
class TBareWindow : public QMainWindow {
 protected:
  void paintEvent(QPaintEvent* event) override {
    QMainWindow::paintEvent(event);
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
  }
};

int bare() {
  TBareWindow window;
  window.show();
  return QApplication::exec();
}

/// The time that one edited cell takes until everything is drawn again.
double editOnce(QTreeWidget& tree, int number) {
  QTreeWidgetItem* item = tree.topLevelItem(0)->child(number % tree.topLevelItem(0)->childCount());
  QElapsedTimer timer;
  timer.start();
  item->setText(0, QStringLiteral("edited%1").arg(number));
  QCoreApplication::processEvents();
  return seconds(timer);
}

int project(const QString& file) {
  TWindowWorld world;
  world.stores.add(makeJsonFileConnector());
  TfrmMain window(world.context);
  window.resize(1200, 750);
  window.show();
  QCoreApplication::processEvents();
  QElapsedTimer timer;
  timer.start();
  TfrmProject* opened = window.openProject(file);
  if (!opened) return 1;
  opened->findChild<QTabWidget*>(QStringLiteral("pages"))->setCurrentIndex(3);
  QCoreApplication::processEvents();
  const double opening = seconds(timer);
  auto* tree = opened->findChild<QTreeWidget*>(QStringLiteral("tlMapping"));
  std::printf("{\"open\": %g, \"edits\": [", opening);
  for (int i = 0; i < 50; ++i) std::printf("%s%g", i ? ", " : "", editOnce(*tree, 7 * i));
  std::printf("]}\n");
  return 0;
}

std::vector<std::string> batches(int lines) {
  std::vector<std::string> made;
  for (int i = 0; i < lines; ++i) {
    if (i % 1000 == 0) made.emplace_back();
    made.back() += (i % 1000 ? "\n" : "") +
                   std::string("3/5/2026 10:15:00 AM: Thread#1: Error Code: 121 Message: Document ") +
                   std::to_string(i) + " failed validation";
  }
  return made;
}

template <typename Take, typename Shown>
double timeOf(const std::vector<std::string>& lines, Take take, Shown shown) {
  QElapsedTimer timer;
  timer.start();
  for (const std::string& batch : lines) {
    take(batch);
    QCoreApplication::processEvents();
  }
  while (!shown()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return seconds(timer);
}

int log(int lines) {
  TWindowWorld world;
  const auto text = batches(lines);
  const QString last = QStringLiteral("Document %1 failed").arg(lines - 1);
  TRunPage page(world.context, nullptr);
  page.resize(1200, 750);
  page.show();
  auto* view = page.findChild<QPlainTextEdit*>(QStringLiteral("mLog"));
  const auto shown = [&] { return view->document()->lastBlock().text().contains(last); };
  const auto take = [&](const std::string& batch) { page.addLog(batch); };
  const double all = timeOf(text, take, shown);
  page.clear();
  page.findChild<QLineEdit*>(QStringLiteral("eLogFilter"))->setText(QStringLiteral("99 FAILED"));
  const double filtered = timeOf(text, take, shown);
  QPlainTextEdit plain;
  plain.setReadOnly(true);
  plain.setUndoRedoEnabled(false);
  plain.setLineWrapMode(QPlainTextEdit::NoWrap);
  plain.resize(1200, 750);
  plain.show();
  const double reference = timeOf(
      text, [&](const std::string& batch) { plain.appendPlainText(QString::fromStdString(batch)); },
      [] { return true; });
  std::printf("{\"all\": %g, \"filtered\": %g, \"plain\": %g}\n", all, filtered, reference);
  return 0;
}

int run(int argc, char** argv) {
  const QApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.value(1) == QLatin1String("bare")) return bare();
  if (arguments.value(1) == QLatin1String("project")) return project(arguments.value(2));
  if (arguments.value(1) == QLatin1String("log")) return log(arguments.value(2).toInt());
  return 2;
}

}  // namespace
}  // namespace hollowmere

int main(int argc, char** argv) { return hollowmere::run(argc, argv); }
