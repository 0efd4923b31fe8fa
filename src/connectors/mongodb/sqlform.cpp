#include "connectors/mongodb/sqlform.h"

#include <charconv>

namespace hollowmere {

TSqlForm sqlFormFor(std::string_view serverVersion, TSqlFormChoice userChoice) {
  if (userChoice == TSqlFormChoice::Legacy) return TSqlForm::Legacy;
  if (userChoice == TSqlFormChoice::Today) return TSqlForm::Today;
  int major = 0;
  int minor = 0;
  const char* end = serverVersion.data() + serverVersion.size();
  const auto [dot, fault] = std::from_chars(serverVersion.data(), end, major);
  if (fault != std::errc()) return TSqlForm::Today;
  if (dot != end && *dot == '.') std::from_chars(dot + 1, end, minor);
  return major < 4 || (major == 4 && minor < 2) ? TSqlForm::Legacy : TSqlForm::Today;
}

}  // namespace hollowmere
