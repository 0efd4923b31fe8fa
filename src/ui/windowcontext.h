#pragma once

#include <QString>
#include <functional>

#include "connectors/datetimetext.h"
#include "connectors/storeregistry.h"
#include "settings/cipher.h"
#include "settings/clock.h"
#include "settings/connectionlist.h"
#include "settings/datafolder.h"
#include "settings/mainthread.h"
#include "settings/prompt.h"
#include "settings/safefile.h"
#include "settings/settings.h"
#include "ui/browserregistry.h"

class QSettings;
class QWidget;

namespace hollowmere {

/// What every window stands on. Made once by the program; outlives all windows. Main thread only.
struct TWindowContext {
  TSettings& settings;
  QSettings& store;  ///< placements are kept in groups of it
  const TDataFolder& folder;
  const TStoreRegistry& stores;
  const TCipher& cipher;
  TSafeFiles& files;
  const TClock& clock;
  const TDateTimeText& dates;
  TPrompt& prompt;
  TMainThread& mainThread;
  /// Opens a file or an address outside of the program.
  std::function<void(const QString&)> openOutside;
  /// Asks whether a new connection is to be kept for later, and keeps it; set by the main window. May be
  /// empty.
  std::function<void(const ConnectionConfig&)> offerToKeep = {};
  /// The connections that are kept; set by the main window. May be empty.
  std::function<TConnectionList()> keptConnections = {};
  /// Whether another window than this one shows the project file; set by the main window. May be empty.
  std::function<bool(const QString& fileName, const QWidget& except)> isOpenElsewhere = {};
  /// The stores that have a browser window.
  TBrowserRegistry browsers = {};

  [[nodiscard]] TConnectionListFile connectionFile() const {
    return {folder.connectionListFile(), cipher, files};
  }
};

/// A fixed text in the user's language.
QString text(const char* english);
inline QString text(const std::string& english) { return text(english.c_str()); }

}  // namespace hollowmere
