#include "app/mainwindows.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QSettings>
#include <QTimer>
#include <QUrl>
#include <exception>

#include "app/program.h"
#include "app/ui/frmmain.h"
#include "ui/messageprompt.h"
#include "ui/qtmainthread.h"

namespace hollowmere {

namespace {

/// Shows what a handler has thrown instead of ending the program with it.
class TApplication : public QApplication {
 public:
  TApplication(int& argc, char** argv, TPrompt& prompt) : QApplication(argc, argv), prompt_(prompt) {}

  bool notify(QObject* receiver, QEvent* event) override {
    try {
      return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
      prompt_.error(error.what());
      return false;
    }
  }

 private:
  TPrompt& prompt_;
};

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
    TQtMainThread mainThread;
    TWindowContext context{program.settings, *store,        program.folder, program.stores,
                           program.cipher,   program.files, program.clock,  program.dates,
                           prompt,           mainThread,    openOutside};
    TfrmMain window(context);
    window.show();
    if (!projectFile.empty())
      QTimer::singleShot(0, &window, [&] { window.openProject(QString::fromStdString(projectFile)); });
    return QApplication::exec();
  } catch (const std::exception& error) {
    prompt.error(error.what());
    return 1;
  }
}

}  // namespace hollowmere
