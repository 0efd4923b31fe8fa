#include "ui/mdichild.h"

#include <QCloseEvent>

namespace hollowmere {

void TMdiChild::closeEvent(QCloseEvent* event) { event->setAccepted(mayClose()); }

}  // namespace hollowmere
