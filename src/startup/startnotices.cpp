#include "startup/startnotices.h"

#include <QString>
#include <QSysInfo>

namespace hollowmere {

bool runsOnWindows() {
#ifdef Q_OS_WIN
  return true;
#else
  return false;
#endif
}

bool runsOn64Bit() { return QSysInfo::currentCpuArchitecture().contains(QLatin1String("64")); }

}  // namespace hollowmere
