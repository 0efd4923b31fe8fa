#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QWidget>

#include "settings/clock.h"
#include "support/scriptedprompt.h"
#include "support/tempfolder.h"
#include "ui/qtmainthread.h"
#include "ui/windowcontext.h"

namespace hollowmere {

/// What a window under test stands on: a folder of its own, a scripted prompt, and the stores that the test
/// puts in.
class TWindowTest : public ::testing::Test {
 protected:
  TWindowTest() { settings = defaultSettings(folder); }

  template <typename T>
  static T* find(QWidget& window, const char* name) {
    T* found = window.findChild<T*>(QLatin1String(name));
    if (!found) ADD_FAILURE() << "no control " << name;
    return found;
  }

  static void click(QWidget& window, const char* name) {
    if (auto* button = find<QPushButton>(window, name)) button->click();
  }

  TTempFolder temp;
  TDataFolder folder{temp.file("data")};
  TSettings settings;
  QSettings store{QString::fromStdString(temp.file("settings.ini")), QSettings::IniFormat};
  TStoreRegistry stores;
  TCipher cipher;
  TDiskFiles files;
  TSystemClock clock;
  TDateTimeText dates{"C"};
  TScriptedPrompt prompt;
  TQtMainThread mainThread;
  QStringList opened;  ///< outside of the program
  TWindowContext context{settings, store, folder, stores,     cipher, files, clock,
                         dates,    prompt, mainThread, [this](const QString& name) { opened << name; }};
};

}  // namespace hollowmere

/// A test program of windows: they are drawn nowhere.
#define HOLLOWMERE_WINDOW_TEST_MAIN                              \
  int main(int argc, char** argv) {                              \
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))          \
      qputenv("QT_QPA_PLATFORM", "offscreen");                   \
    QApplication application(argc, argv);                        \
    ::testing::InitGoogleTest(&argc, argv);                      \
    return RUN_ALL_TESTS();                                      \
  }
