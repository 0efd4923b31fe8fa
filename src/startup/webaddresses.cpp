#include "startup/webaddresses.h"

#include <QSettings>

#include "http/download.h"

namespace hollowmere {

TWebAddresses loadWebAddresses(const QSettings& store) {
  const auto read = [&store](const char* key) {
    const std::string address =
        store.value(QStringLiteral("Web/") + QLatin1String(key)).toString().toStdString();
    return isWebAddress(address) ? address : std::string();
  };
  return {read("downloadPage"), read("site"), read("support"), read("product")};
}

std::string noAddressText(const std::string& subject, const std::string& key) {
  return "No web address for " + subject + " is configured. It stands in the settings as Web/" + key + ".";
}

}  // namespace hollowmere
