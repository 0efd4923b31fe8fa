#include "ui/helptopic.h"

#include <QVariant>
#include <QWidget>

namespace hollowmere {

namespace {

constexpr char topicProperty[] = "helpTopic";

}  // namespace

void setHelpTopic(QWidget& widget, const char* topic) {
  widget.setProperty(topicProperty, QLatin1String(topic));
}

QString helpTopicOf(const QWidget* widget) {
  for (; widget; widget = widget->parentWidget())
    if (const QVariant topic = widget->property(topicProperty); topic.isValid()) return topic.toString();
  return QStringLiteral("index");
}

}  // namespace hollowmere
