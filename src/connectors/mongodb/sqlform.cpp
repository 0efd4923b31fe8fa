#include "connectors/mongodb/sqlform.h"

#include <charconv>

namespace hollowmere {

namespace {

std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return lower;
}

}  // namespace

TShellForm sqlFormFor(std::string_view serverVersion, TSqlFormChoice userChoice) {
  if (userChoice == TSqlFormChoice::Classic) return TShellForm::Classic;
  if (userChoice == TSqlFormChoice::Modern) return TShellForm::Modern;
  int major = 0;
  int minor = 0;
  const char* end = serverVersion.data() + serverVersion.size();
  const auto [dot, fault] = std::from_chars(serverVersion.data(), end, major);
  if (fault != std::errc()) return TShellForm::Modern;
  if (dot != end && *dot == '.') std::from_chars(dot + 1, end, minor);
  return major < 4 || (major == 4 && minor < 2) ? TShellForm::Classic : TShellForm::Modern;
}

bool isSqlStatement(std::string_view text) {
  const std::string lower = lowered(text);
  const auto has = [&](std::string_view word) { return lower.find(word) != std::string::npos; };
  if (has("db.")) return false;
  return (has("select") && has("from")) || (has("update") && has("set")) || (has("delete") && has("from"));
}

std::string queryFault(std::string_view text) {
  const std::string lower = lowered(text);
  const std::size_t insert = lower.find("insert");
  const bool sql = lower.find("db.") == std::string::npos;
  if (sql && insert != std::string::npos && lower.find("into", insert) != std::string::npos)
    return "Parsing of INSERT SQL statement is not supported.";
  if (text.find("toArray()") != std::string_view::npos) return "toArray() cursor method is not supported.";
  return {};
}

}  // namespace hollowmere
