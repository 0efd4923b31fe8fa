#pragma once

#include <QSettings>
#include <memory>

#include "support/callstore.h"
#include "support/scriptedprompt.h"
#include "support/tempfolder.h"
#include "support/testclock.h"
#include "ui/qtmainthread.h"
#include "ui/windowcontext.h"

namespace hollowmere {

/// What windows stand on in tests: a folder of their own, a scripted prompt, no stores yet.
struct TWindowWorld {
  TTempFolder temp;
  TScriptedPrompt prompt;
  TDataFolder folder{temp.file("home")};
  TSettings settings = defaultSettings(folder);
  QSettings store{QString::fromStdString(temp.file("settings.ini")), QSettings::IniFormat};
  TStoreRegistry stores;
  TCipher cipher;
  TDiskFiles files;
  TTestClock clock;
  TDateTimeText dates{"C"};
  TQtMainThread mainThread;
  QStringList opened;  ///< what was to be opened outside of the program
  TWindowContext context{settings,
                         store,
                         folder,
                         stores,
                         cipher,
                         files,
                         clock,
                         dates,
                         prompt,
                         mainThread,
                         [this](const QString& what) { opened.append(what); }};

  void addStore(const std::string& dbType, TCallStore::TCheck check) {
    stores.add(std::make_unique<TCallStore>(dbType, std::move(check)));
  }
};

}  // namespace hollowmere
