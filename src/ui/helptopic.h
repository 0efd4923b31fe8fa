#pragma once

#include <QString>

class QWidget;

namespace hollowmere {

/// Names the help page that tells of a widget and of all in it.
void setHelpTopic(QWidget& widget, const char* topic);

/// The page for a widget: its own topic, or that of the nearest one around it; "index" without any.
QString helpTopicOf(const QWidget* widget);

}  // namespace hollowmere
