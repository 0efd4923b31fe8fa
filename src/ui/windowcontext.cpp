#include "ui/windowcontext.h"

#include <QCoreApplication>

namespace hollowmere {

QString text(const char* english) { return QCoreApplication::translate("Messages", english); }

}  // namespace hollowmere
