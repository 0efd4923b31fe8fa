#include "support/hbasewire/sink.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace hollowmere::hbasewire {

namespace {

std::uint32_t numberAt(const std::string& bytes, std::size_t at) {
  if (at + 4 > bytes.size()) throw std::invalid_argument("the call is too short");
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i)
    value = value << 8 | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
  return value;
}

std::string keyOf(std::int64_t row) {
  char text[24];
  std::snprintf(text, sizeof text, "row%012lld", static_cast<long long>(row));
  return text;
}

/// Of the row with that key, or the next one when it is the key behind a row's.
std::int64_t numberOf(const std::string& key, std::int64_t otherwise) {
  if (key.size() <= 3) return otherwise;
  return std::stoll(key.substr(3)) + (key.ends_with('\0') ? 1 : 0);
}

void fillRow(TRowResult& told, std::int64_t row, bool keysOnly) {
  told.__set_row(keyOf(row));
  static const std::vector<std::pair<std::string, std::string>> columns{
      {"cf:active", "true"},
      {"cf:address", R"({"street":"Main Street 7","city":"Vienna","zip":"01234"})"},
      {"cf:balance", "12345.625"},
      {"cf:comment", std::string(120, 'c')},
      {"cf:created", "2024-05-06"},
      {"cf:email", "ada.lovelace@example.org"},
      {"cf:name", "Ada Lovelace"},
      {"cf:number", "1000000007"},
      {"cf:phone", "+43 1 1234567"},
      {"cf:tags", R"(["alpha","beta","gamma-007"])"}};
  std::map<Text, TCell> cells;
  for (const auto& [name, value] : columns) {
    TCell& cell = cells.emplace_hint(cells.end(), name, TCell())->second;
    if (!keysOnly) cell.value = value;
    cell.timestamp = 1'700'000'000'000;
    if (keysOnly) break;
  }
  told.columns = std::move(cells);
  told.__isset.columns = true;
}

}  // namespace

/// The arguments begin: field 1, the table; field 2, the rows, a list of structs (of mutateRow the key).
std::optional<std::string> TSink::quick(const std::string& method, const std::string& call) {
  if (method != "mutateRow" && method != "mutateRows") return std::nullopt;
  std::size_t at = 8 + method.size();
  const std::string head = std::string("\x80\x01\x00\x02", 4) + call.substr(4, 4 + method.size() + 4);
  at += 4 + 3;
  at += 4 + numberAt(call, at) + 3;
  stored_ += method == "mutateRow" ? 1 : numberAt(call, at + 1);
  return head + std::string(1, '\0');
}

void TSink::getTableNames(std::vector<Text>& result) { result = {"rows", "copies"}; }

bool TSink::isTableEnabled(const Bytes& /*table*/) { return true; }

void TSink::getColumnDescriptors(std::map<Text, ColumnDescriptor>& result, const Text& /*table*/) {
  for (const char* name : {"cf:", "n:"}) result[name].name = name;
}

ScannerID TSink::scannerOpenWithScan(const Text& /*table*/, const TScan& scan,
                                     const std::map<Text, Text>& /*attributes*/) {
  const std::lock_guard lock(mutex_);
  TScanner scanner;
  scanner.keysOnly = scan.filterString.find("KeyOnlyFilter") != std::string::npos;
  scanner.next = numberOf(scan.startRow, 0);
  scanner.end = std::min(sourceRows_, numberOf(scan.stopRow, sourceRows_));
  scanners_[nextScanner_] = scanner;
  return nextScanner_++;
}

ScannerID TSink::scannerOpen(const Text& table, const Text& startRow, const std::vector<Text>& /*columns*/,
                             const std::map<Text, Text>& attributes) {
  TScan scan;
  scan.startRow = startRow;
  return scannerOpenWithScan(table, scan, attributes);
}

void TSink::scannerGetList(std::vector<TRowResult>& result, ScannerID id, std::int32_t rows) {
  TScanner scanner;
  std::int64_t count = 0;
  {
    const std::lock_guard lock(mutex_);
    scanner = scanners_.at(id);
    count = std::clamp<std::int64_t>(scanner.end - scanner.next, 0, rows);
    scanners_[id].next += count;
  }
  result.resize(static_cast<std::size_t>(count));
  for (std::int64_t i = 0; i < count; ++i)
    fillRow(result[static_cast<std::size_t>(i)], scanner.next + i, scanner.keysOnly);
  if (!scanner.keysOnly) served_ += static_cast<std::uint64_t>(count);
}

void TSink::scannerClose(ScannerID id) {
  const std::lock_guard lock(mutex_);
  scanners_.erase(id);
}

}  // namespace hollowmere::hbasewire
