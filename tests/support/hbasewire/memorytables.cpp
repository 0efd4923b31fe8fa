#include "support/hbasewire/memorytables.h"

#include <thrift/TApplicationException.h>

#include <algorithm>
#include <thread>

#include "support/hbasewire/memoryfilter.h"

namespace hollowmere::hbasewire {

namespace {

constexpr char trace[] = "\n\tat org.apache.hadoop.hbase.Some.method(Some.java:1)\n";

[[noreturn]] void failIo(const std::string& text) {
  IOError error;
  error.message = text + trace;
  throw error;
}

[[noreturn]] void failArgument(const std::string& text) {
  IllegalArgument error;
  error.message = text;
  throw error;
}

[[noreturn]] void failUnnamed() {
  throw apache::thrift::TApplicationException(apache::thrift::TApplicationException::INTERNAL_ERROR,
                                              "Internal error");
}

std::string familyOf(const std::string& column) { return column.substr(0, column.find(':') + 1); }

}  // namespace

TMemoryTables::TTable& TMemoryTables::find(const std::string& table) {
  // The server's check of names throws what the service does not tell.
  if (table.find(' ') != std::string::npos) failUnnamed();
  const auto found = tables_.find(table);
  if (found == tables_.end()) failIo("org.apache.hadoop.hbase.TableNotFoundException: " + table);
  return found->second;
}

TMemoryTables::TTable& TMemoryTables::findEnabled(const std::string& table) {
  TTable& found = find(table);
  if (!found.enabled) failIo("org.apache.hadoop.hbase.TableNotEnabledException: " + table + " is disabled.");
  return found;
}

void TMemoryTables::put(const std::string& table, const std::string& row, const std::string& column,
                        const std::string& value) {
  const std::lock_guard lock(mutex_);
  TTable& to = tables_[table];
  to.families[familyOf(column)].name = familyOf(column);
  to.rows[row][column][++clock_] = value;
}

std::string TMemoryTables::value(const std::string& table, const std::string& row,
                                 const std::string& column) const {
  const std::lock_guard lock(mutex_);
  const auto& columns = tables_.at(table).rows.at(row);
  return columns.at(column).begin()->second;
}

std::size_t TMemoryTables::rowCount(const std::string& table) const {
  const std::lock_guard lock(mutex_);
  const auto found = tables_.find(table);
  return found == tables_.end() ? 0 : found->second.rows.size();
}

void TMemoryTables::expireScanners() {
  const std::lock_guard lock(mutex_);
  scanners_.clear();
}

void TMemoryTables::restart() {
  const std::lock_guard lock(mutex_);
  scanners_.clear();
  nextScanner_ = 0;
}

void TMemoryTables::setTimePerRow(std::chrono::microseconds time) {
  const std::lock_guard lock(mutex_);
  timePerRow_ = time;
}

std::size_t TMemoryTables::openScanners() const {
  const std::lock_guard lock(mutex_);
  return scanners_.size();
}

std::uint64_t TMemoryTables::rowsGiven() const {
  const std::lock_guard lock(mutex_);
  return rowsGiven_;
}

std::vector<TScan> TMemoryTables::scans() const {
  const std::lock_guard lock(mutex_);
  return scans_;
}

void TMemoryTables::enableTable(const Bytes& table) {
  const std::lock_guard lock(mutex_);
  if (find(table).enabled)
    failIo("org.apache.hadoop.hbase.TableNotDisabledException: tableName=" + table + ", state=ENABLED");
  find(table).enabled = true;
}

void TMemoryTables::disableTable(const Bytes& table) {
  const std::lock_guard lock(mutex_);
  findEnabled(table).enabled = false;
}

bool TMemoryTables::isTableEnabled(const Bytes& table) {
  const std::lock_guard lock(mutex_);
  return find(table).enabled;
}

void TMemoryTables::compact(const Bytes& table) {
  const std::lock_guard lock(mutex_);
  find(table);
}

void TMemoryTables::majorCompact(const Bytes& table) { compact(table); }

void TMemoryTables::getTableNames(std::vector<Text>& result) {
  const std::lock_guard lock(mutex_);
  for (const auto& [name, table] : tables_) result.push_back(name);
}

void TMemoryTables::getColumnDescriptors(std::map<Text, ColumnDescriptor>& result, const Text& table) {
  const std::lock_guard lock(mutex_);
  result = find(table).families;
}

void TMemoryTables::getTableRegions(std::vector<TRegionInfo>& result, const Text& table) {
  const std::lock_guard lock(mutex_);
  if (!tables_.contains(table)) return;
  TRegionInfo region;
  region.name = table + ",,1.memory.";
  region.serverName = "localhost";
  region.port = 16020;
  result.push_back(region);
}

void TMemoryTables::createTable(const Text& table, const std::vector<ColumnDescriptor>& families) {
  const std::lock_guard lock(mutex_);
  if (tables_.contains(table)) {
    AlreadyExists error;
    error.message = "table name already in use";
    throw error;
  }
  if (families.empty())
    failIo("org.apache.hadoop.hbase.DoNotRetryIOException: Table should have at least one column family");
  TTable made;
  for (const ColumnDescriptor& family : families) {
    if (family.name.empty()) failArgument("column name is empty");
    made.families[family.name.ends_with(':') ? family.name : family.name + ":"] = family;
  }
  tables_[table] = std::move(made);
}

void TMemoryTables::deleteTable(const Text& table) {
  const std::lock_guard lock(mutex_);
  if (!tables_.contains(table)) failIo("java.io.IOException: table does not exist");
  if (tables_[table].enabled)
    failIo("org.apache.hadoop.hbase.TableNotDisabledException: Not DISABLED; tableName=" + table);
  tables_.erase(table);
}

void TMemoryTables::getVer(std::vector<TCell>& result, const Text& table, const Text& row, const Text& column,
                           std::int32_t versions, const std::map<Text, Text>& /*attributes*/) {
  const std::lock_guard lock(mutex_);
  if (versions <= 0) failIo("versions must be positive");
  for (const auto& [time, value] : findEnabled(table).rows[row][column]) {
    if (static_cast<std::int32_t>(result.size()) == versions) break;
    TCell& cell = result.emplace_back();
    cell.value = value;
    cell.timestamp = time;
  }
}

void TMemoryTables::getRow(std::vector<TRowResult>& result, const Text& table, const Text& row,
                           const std::map<Text, Text>& /*attributes*/) {
  const std::lock_guard lock(mutex_);
  const TRows& rows = findEnabled(table).rows;
  const auto found = rows.find(row);
  if (found == rows.end()) return;
  TRowResult& told = result.emplace_back();
  told.__set_row(row);
  std::map<Text, TCell> columns;
  for (const auto& [column, versions] : found->second) {
    columns[column].value = versions.begin()->second;
    columns[column].timestamp = versions.begin()->first;
  }
  told.__set_columns(columns);
}

void TMemoryTables::apply(TTable& table, const std::string& name, const std::string& row,
                          const std::vector<Mutation>& mutations) {
  if (row.empty()) failArgument("Row length is 0");
  for (const Mutation& mutation : mutations)
    if (!table.families.contains(familyOf(mutation.column)))
      failIo(
          "org.apache.hadoop.hbase.regionserver.NoSuchColumnFamilyException: "
          "org.apache.hadoop.hbase.regionserver.NoSuchColumnFamilyException: Column family " +
          mutation.column.substr(0, mutation.column.find(':')) + " does not exist in region " + name +
          ",,1.memory. in table '" + name + "'");
  ++clock_;
  for (const Mutation& mutation : mutations)
    if (mutation.isDelete)
      table.rows[row].erase(mutation.column);
    else
      table.rows[row][mutation.column][clock_] = mutation.value;
  if (table.rows[row].empty()) table.rows.erase(row);
}

void TMemoryTables::mutateRow(const Text& table, const Text& row, const std::vector<Mutation>& mutations,
                              const std::map<Text, Text>& /*attributes*/) {
  const std::lock_guard lock(mutex_);
  apply(findEnabled(table), table, row, mutations);
}

/// As the server: what can be stored is, and then the call fails for the rest.
void TMemoryTables::mutateRows(const Text& table, const std::vector<BatchMutation>& batches,
                               const std::map<Text, Text>& /*attributes*/) {
  const std::lock_guard lock(mutex_);
  TTable& to = findEnabled(table);
  int failed = 0;
  for (const BatchMutation& batch : batches)
    if (batch.row.empty()) failUnnamed();
  for (const BatchMutation& batch : batches) try {
      apply(to, table, batch.row, batch.mutations);
    } catch (const IOError&) {
      ++failed;
    }
  if (failed > 0)
    failIo("org.apache.hadoop.hbase.client.RetriesExhaustedWithDetailsException: Failed " +
           std::to_string(failed) + " action: " + table + ": 1 time, ");
}

void TMemoryTables::deleteAllRow(const Text& table, const Text& row,
                                 const std::map<Text, Text>& /*attributes*/) {
  const std::lock_guard lock(mutex_);
  findEnabled(table).rows.erase(row);
}

ScannerID TMemoryTables::scannerOpenWithScan(const Text& table, const TScan& scan,
                                             const std::map<Text, Text>& /*attributes*/) {
  const std::lock_guard lock(mutex_);
  constexpr std::size_t longestKey = 32767;
  if (scan.startRow.size() > longestKey || scan.stopRow.size() > longestKey) failUnnamed();
  if (scan.__isset.filterString) try {
      std::map<Text, TCell> none;
      filterRow(scan.filterString, "", none, 0);
    } catch (const std::invalid_argument&) {
      failUnnamed();
    }
  scans_.push_back(scan);
  scanners_[nextScanner_] = {table, scan, {}, false, 0};
  return nextScanner_++;
}

ScannerID TMemoryTables::scannerOpen(const Text& table, const Text& startRow,
                                     const std::vector<Text>& /*columns*/,
                                     const std::map<Text, Text>& attributes) {
  TScan scan;
  if (!startRow.empty()) scan.__set_startRow(startRow);
  return scannerOpenWithScan(table, scan, attributes);
}

void TMemoryTables::scannerGetList(std::vector<TRowResult>& result, ScannerID id, std::int32_t rows) {
  std::unique_lock lock(mutex_);
  const auto found = scanners_.find(id);
  if (found == scanners_.end()) failArgument("scanner ID is invalid");
  TScanner& scanner = found->second;
  const TRows& from = findEnabled(scanner.table).rows;
  auto at = scanner.begun ? from.upper_bound(scanner.last) : from.lower_bound(scanner.scan.startRow);
  std::chrono::microseconds time{0};
  for (; at != from.end() && static_cast<std::int32_t>(result.size()) < rows; ++at) {
    time += timePerRow_;
    if (!scanner.scan.stopRow.empty() && at->first >= scanner.scan.stopRow) break;
    scanner.begun = true;
    scanner.last = at->first;
    std::map<Text, TCell> columns;
    for (const auto& [column, versions] : at->second) {
      columns[column].value = versions.begin()->second;
      columns[column].timestamp = versions.begin()->first;
    }
    if (scanner.scan.__isset.filterString &&
        !filterRow(scanner.scan.filterString, at->first, columns, scanner.passed))
      continue;
    ++scanner.passed;
    ++rowsGiven_;
    TRowResult& told = result.emplace_back();
    told.__set_row(at->first);
    told.__set_columns(columns);
  }
  lock.unlock();
  if (time.count() > 0) std::this_thread::sleep_for(time);
}

void TMemoryTables::scannerClose(ScannerID id) {
  const std::lock_guard lock(mutex_);
  if (scanners_.erase(id) == 0) failArgument("scanner ID is invalid");
}

}  // namespace hollowmere::hbasewire
