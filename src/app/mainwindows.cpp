#include "app/mainwindows.h"

#include <QApplication>
#include <QDesktopServices>
#include <QEvent>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QSettings>
#include <QTimer>
#include <QTranslator>
#include <QUrl>
#include <exception>
#include <functional>

#include "app/program.h"
#include "app/ui/frmmain.h"
#include "startup/applicationfault.h"
#include "ui/messageprompt.h"
#include "ui/qtmainthread.h"

namespace hollowmere {

namespace {

/// Tells what a handler has thrown instead of ending the program with it.
class TApplication : public QApplication {
 public:
  TApplication(int& argc, char** argv, TPrompt& prompt) : QApplication(argc, argv), prompt_(prompt) {}

  std::function<void()> openSupport = [] {};

  bool notify(QObject* receiver, QEvent* event) override {
    try {
      return QApplication::notify(receiver, event);
    } catch (...) {
      reportFault(std::current_exception(), prompt_, openSupport);
      return false;
    }
  }

 private:
  TPrompt& prompt_;
};

/// Ends the program when its first window has been drawn: how long that takes is measured so.
class TEndAfterPaint : public QObject {
 public:
  using QObject::QObject;

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint)
      QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
  }
};

/// Another language than English is asked for in the settings store, as "de" in Ui/language. The toolkit
/// brings its own texts, of the buttons for example, where its translations are installed.
void takeLanguage(const QSettings& store) {
  const QString language = store.value(QStringLiteral("Ui/language")).toString();
  if (language.isEmpty()) return;
  const auto take = [&](const QString& name, const QString& folder) {
    auto* translator = new QTranslator(qApp);
    if (translator->load(name + language, folder)) QCoreApplication::installTranslator(translator);
  };
  take(QStringLiteral("qtbase_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
  take(QStringLiteral("hollowmere_"),
       QCoreApplication::applicationDirPath() + QStringLiteral("/translations"));
}

void openOutside(const QString& target) {
  QDesktopServices::openUrl(QFileInfo::exists(target) ? QUrl::fromLocalFile(target) : QUrl(target));
}

}  // namespace

int runWindows(int argc, char** argv, const std::string& projectFile) {
  TMessagePrompt prompt;
  TApplication application(argc, argv, prompt);
  QApplication::setDesktopFileName(QStringLiteral("hollowmere"));
  try {
    TProgram program(prompt);
    const auto store = openSettingsStore();
    takeLanguage(*store);
    TQtMainThread mainThread;
    TWindowContext context{program.settings, *store,        program.folder, program.stores,
                           program.cipher,   program.files, program.clock,  program.dates,
                           prompt,           mainThread,    openOutside};
    TfrmMain window(context);
    application.openSupport = [&window] { window.openSupport(); };
    const std::string crashNote = program.folder.file("logs", "violation.txt");
    const auto violation = takeAccessViolation(crashNote);
    noteAccessViolations(crashNote);
    TEndAfterPaint end;
    if (qEnvironmentVariableIsSet("HOLLOWMERE_END_AFTER_PAINT")) window.installEventFilter(&end);
    window.show();
    if (violation)
      QTimer::singleShot(0, &window,
                         [&] { reportProgramFault(*violation, prompt, application.openSupport); });
    if (!projectFile.empty())
      QTimer::singleShot(0, &window, [&] { window.openProject(QString::fromStdString(projectFile)); });
    return QApplication::exec();
  } catch (const std::exception& error) {
    prompt.error(error.what());
    return 1;
  }
}

}  // namespace hollowmere
