#include "connectors/hbase/hbasefault.h"

#include <string_view>

namespace hollowmere {

namespace {

bool holds(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

/// Drops "package.Class: " at the beginning, as often as it stands there.
std::string_view withoutClasses(std::string_view text) {
  for (;;) {
    const std::size_t end = text.find(": ");
    if (end == std::string_view::npos) return text;
    const std::string_view name = text.substr(0, end);
    if (!name.ends_with("Exception") && !name.ends_with("Error")) return text;
    if (holds(name, " ")) return text;
    text.remove_prefix(end + 2);
  }
}

std::string_view firstLine(std::string_view text) {
  text = text.substr(0, text.find_first_of("\r\n"));
  constexpr std::size_t most = 1000;
  return text.substr(0, most);
}

/// The word behind "Column family ".
std::string familyOf(std::string_view text) {
  constexpr std::string_view before = "Column family ";
  const std::size_t at = text.find(before);
  if (at == std::string_view::npos) return {};
  const std::string_view rest = text.substr(at + before.size());
  return std::string(rest.substr(0, rest.find(' ')));
}

}  // namespace

THBaseFault serverFault(const std::string& message, const std::string& table) {
  const std::string_view line = firstLine(message);
  const std::string text(withoutClasses(line));
  if (holds(line, "TableNotFoundException") || holds(line, "table does not exist"))
    return {THBaseFaultKind::NoTable, "The table " + table + " does not exist."};
  if (holds(line, "NoSuchColumnFamilyException")) {
    const std::string family = familyOf(text);
    return {THBaseFaultKind::NoFamily,
            family.empty() ? text : "The table " + table + " has no column family " + family + "."};
  }
  if (holds(line, "TableNotEnabledException"))
    return {THBaseFaultKind::Disabled, "The table " + table + " is disabled."};
  if (holds(line, "scanner ID is invalid") || holds(line, "UnknownScannerException") ||
      holds(line, "LeaseException") || holds(line, "ScannerTimeoutException"))
    return {THBaseFaultKind::NoScanner, "The scanner expired on the server."};
  return {THBaseFaultKind::Other, text.empty() ? "The server refused without a reason." : text};
}

}  // namespace hollowmere
