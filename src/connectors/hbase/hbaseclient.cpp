#include "connectors/hbase/hbaseclient.h"

#include <Hbase.h>
#include <thrift/TApplicationException.h>
#include <thrift/protocol/TProtocolException.h>

#include <algorithm>

#include "connectors/thrift/thriftlink.h"

namespace hollowmere {

namespace wire = hbasewire;

namespace {

using apache::thrift::TApplicationException;
using apache::thrift::TException;

constexpr std::uint16_t usualPort = 9090;

/// How long to wait for the first answer before the server is suspected of having no frames.
constexpr std::chrono::milliseconds suspicion{3000};

/// What the binary protocol puts around a mutation and around a row.
constexpr std::size_t changeBytes = 27, rowBytes = 20;

const std::map<wire::Text, wire::Text> noAttributes;

THBaseFaultKind kindOf(TThriftFaultKind kind) {
  switch (kind) {
    case TThriftFaultKind::TimedOut: return THBaseFaultKind::TimedOut;
    case TThriftFaultKind::Stopped: return THBaseFaultKind::Stopped;
    case TThriftFaultKind::Oversized: return THBaseFaultKind::Oversized;
    case TThriftFaultKind::NotFramed: return THBaseFaultKind::Unframed;
    default: return THBaseFaultKind::Lost;
  }
}

THBaseFault unknownMethod(const std::string& method) {
  return {THBaseFaultKind::Other,
          "The server does not know the method " + method + ": it is not HBase's first Thrift service."};
}

std::string ofTable(const std::string& table) { return table.empty() ? "" : " of the table " + table; }

std::string withoutColon(std::string name) {
  if (!name.empty() && name.back() == ':') name.pop_back();
  return name;
}

constexpr std::int32_t forEver = 0x7fffffff;

THBaseFamily familyOf(const wire::ColumnDescriptor& told) {
  THBaseFamily family;
  family.name = withoutColon(told.name);
  family.maxVersions = told.maxVersions;
  family.compression = told.compression;
  family.timeToLive = told.timeToLive == forEver ? 0 : told.timeToLive;
  family.bloomFilter = told.bloomFilterType;
  family.inMemory = told.inMemory;
  family.blockCache = told.blockCacheEnabled;
  return family;
}

wire::ColumnDescriptor descriptorOf(const THBaseFamily& family) {
  wire::ColumnDescriptor told;
  told.__set_name(family.name + ":");
  told.__set_maxVersions(family.maxVersions);
  told.__set_compression(family.compression);
  told.__set_timeToLive(family.timeToLive <= 0 ? forEver : family.timeToLive);
  told.__set_bloomFilterType(family.bloomFilter);
  told.__set_inMemory(family.inMemory);
  told.__set_blockCacheEnabled(family.blockCache);
  return told;
}

/// As HBase's shell writes it.
std::string textOf(const THBaseFamily& family) {
  const auto word = [](bool yes) { return yes ? "true" : "false"; };
  return "{NAME => '" + family.name + "', VERSIONS => " + std::to_string(family.maxVersions) +
         ", COMPRESSION => '" + family.compression + "', TTL => " +
         std::to_string(family.timeToLive <= 0 ? forEver : family.timeToLive) + ", BLOOMFILTER => '" +
         family.bloomFilter + "', IN_MEMORY => " + word(family.inMemory) + ", BLOCKCACHE => " +
         word(family.blockCache) + "}";
}

/// Others need a setting that the interface cannot give.
bool canBeMade(const THBaseFamily& family) {
  return family.bloomFilter == "NONE" || family.bloomFilter == "ROW" || family.bloomFilter == "ROWCOL";
}

THBaseRow rowOf(wire::TRowResult& told) {
  THBaseRow row;
  row.key = std::move(told.row);
  row.cells.reserve(told.columns.size() + told.sortedColumns.size());
  while (!told.columns.empty()) {
    auto node = told.columns.extract(told.columns.begin());
    row.cells.push_back({std::move(node.key()), std::move(node.mapped().value), node.mapped().timestamp});
  }
  for (wire::TColumn& column : told.sortedColumns)
    row.cells.push_back({std::move(column.columnName), std::move(column.cell.value), column.cell.timestamp});
  return row;
}

}  // namespace

struct THBaseBatch::TRows {
  std::vector<wire::BatchMutation> rows;  ///< the first `count` are in use
  std::size_t count = 0;
  std::size_t changes = 0;  ///< of the last row that are in use

  void settleRow() {
    if (count > 0) rows[count - 1].mutations.resize(changes);
  }
  /// As the protocol wants it.
  std::vector<wire::BatchMutation>& exact() {
    settleRow();
    rows.resize(count);
    return rows;
  }
};

THBaseBatch::THBaseBatch() : rows_(std::make_unique<TRows>()) {}
THBaseBatch::~THBaseBatch() = default;

void THBaseBatch::clear() {
  rows_->settleRow();
  rows_->count = rows_->changes = 0;
  bytes_ = bytesBefore_ = 0;
}

std::size_t THBaseBatch::rows() const { return rows_->count; }

void THBaseBatch::beginRow(std::string_view key) {
  rows_->settleRow();
  if (rows_->count == rows_->rows.size()) rows_->rows.emplace_back();
  wire::BatchMutation& row = rows_->rows[rows_->count++];
  row.row.assign(key);
  rows_->changes = 0;
  bytesBefore_ = bytes_;
  bytes_ += rowBytes + key.size();
}

void THBaseBatch::put(std::string_view column, std::string_view value) {
  auto& changes = rows_->rows[rows_->count - 1].mutations;
  if (rows_->changes == changes.size()) changes.emplace_back();
  wire::Mutation& change = changes[rows_->changes++];
  change.column.assign(column);
  change.value.assign(value);
  bytes_ += changeBytes + column.size() + value.size();
}

void THBaseBatch::dropRow() {
  rows_->settleRow();
  --rows_->count;
  if (rows_->count > 0) rows_->changes = rows_->rows[rows_->count - 1].mutations.size();
  bytes_ = bytesBefore_;
}

struct THBaseClient::TLink {
  explicit TLink(const TThriftOptions& options) : link(options), calls(link.protocol()) {}

  TThriftLink link;
  wire::HbaseClient calls;
};

THBaseClient::THBaseClient(const TThriftOptions& options) : options_(options) { prove(); }

THBaseClient::~THBaseClient() {
  if (left_.empty() || stopped()) return;
  // Worth a moment, not a minute.
  link_.reset();
  options_.connectTime = std::min(options_.connectTime, suspicion);
  options_.answerTime = std::min(options_.answerTime, suspicion);
  closeLeft();
}

THBaseClient::TLink& THBaseClient::connected() {
  if (link_) return *link_;
  try {
    link_ = std::make_unique<TLink>(options_);
    ++connection_;
  } catch (const TThriftFault& fault) {
    leave(false);
    const bool stopped = fault.kind() == TThriftFaultKind::Stopped;
    throw THBaseFault(stopped ? THBaseFaultKind::Stopped : THBaseFaultKind::Unreachable, fault.what());
  }
  return *link_;
}

/// Ends the connection. When the server did so, it may have gone, and its scanners with it.
void THBaseClient::leave(bool serverIsThere) {
  link_.reset();
  if (serverIsThere) return;
  left_.clear();
  sameServer_ = connection_ + 1;
}

/// Runs a call; whatever it throws becomes a fault that says whether the connection can still be used.
template <class TCall>
auto THBaseClient::call(const char* method, const std::string& table, TCall&& act) {
  try {
    return act(connected().calls);
  } catch (const wire::IOError& error) {
    throw serverFault(error.message, table);
  } catch (const wire::IllegalArgument& error) {
    throw serverFault(error.message, table);
  } catch (const wire::AlreadyExists&) {
    throw THBaseFault(THBaseFaultKind::Other, "The table " + table + " exists already.");
  } catch (const TApplicationException& error) {
    if (error.getType() == TApplicationException::UNKNOWN_METHOD) throw unknownMethod(method);
    // Others than these are made here, of an answer to something else.
    if (error.getType() != TApplicationException::INTERNAL_ERROR &&
        error.getType() != TApplicationException::UNKNOWN)
      leave(true);
    throw unnamedFault(method, table);
  } catch (const TThriftFault& fault) {
    leave(fault.kind() == TThriftFaultKind::TimedOut || fault.kind() == TThriftFaultKind::Oversized ||
          fault.kind() == TThriftFaultKind::NotFramed);
    throw THBaseFault(kindOf(fault.kind()), fault.what());
  } catch (const TException& error) {
    throw unreadable(error.what());
  } catch (const std::bad_alloc&) {
    throw unreadable("no memory for it");
  } catch (const std::length_error&) {
    throw unreadable("no memory for it");
  }
}

/// For calls that may be made twice: a connection that was there may have been closed, because it was idle
/// for a minute, and is then replaced.
template <class TCall>
auto THBaseClient::repeatable(const char* method, const std::string& table, TCall&& act) {
  const bool used = link_ != nullptr;
  try {
    return call(method, table, act);
  } catch (const THBaseFault& fault) {
    const bool endedByServer = fault.kind() == THBaseFaultKind::Lost && sameServer_ > connection_;
    if (!used || !endedByServer || stopped()) throw;
  }
  return call(method, table, act);
}

/// Before calls that must not be made twice, so that they meet no connection that the server has given up.
void THBaseClient::wake() {
  if (link_) tables();
}

THBaseFault THBaseClient::unreadable(const std::string& why) {
  leave(true);
  return {THBaseFaultKind::Lost, where() + " sent an answer that cannot be read (" + why + ")."};
}

/// A server that gives no reason may have been asked for a name that no table can have.
THBaseFault THBaseClient::unnamedFault(const std::string& method, const std::string& table) {
  if (link_ && method != "createTable" && isMissing(table))
    return {THBaseFaultKind::NoTable, "The table " + table + " does not exist."};
  return {THBaseFaultKind::Unnamed,
          "The server failed in " + method + ofTable(table) + " without giving a reason."};
}

bool THBaseClient::isMissing(const std::string& table) {
  // The server's own tables are not listed.
  if (table.empty() || table.starts_with("hbase:")) return false;
  try {
    const std::vector<std::string> names = tables();
    return std::none_of(names.begin(), names.end(),
                        [&](const std::string& name) { return name == table || "default:" + name == table; });
  } catch (const THBaseFault&) {
    return false;
  }
}

/// A server without frames keeps silent until its own time-out: it is found out by asking it without.
void THBaseClient::prove() {
  const TThriftOptions patient = options_;
  options_.answerTime = std::min(options_.answerTime, suspicion);
  try {
    tables();
  } catch (const THBaseFault& fault) {
    if (fault.kind() == THBaseFaultKind::Stopped || fault.answered()) throw;
    if ((fault.kind() == THBaseFaultKind::Unframed || fault.kind() == THBaseFaultKind::TimedOut ||
         fault.kind() == THBaseFaultKind::Lost) &&
        answersUnframed(options_, "getTableNames"))
      throw THBaseFault(
          THBaseFaultKind::Unframed,
          where() + " answers without frames; the Thrift server must be started with framed transport (-f).");
    if (fault.kind() != THBaseFaultKind::TimedOut || patient.answerTime <= suspicion) throw;
    options_ = patient;
    tables();
  }
  // The next call connects with the full time for an answer.
  if (options_.answerTime != patient.answerTime) link_.reset();
  options_ = patient;
}

THBaseScanner THBaseClient::openScanner(const THBaseRange& range, std::int32_t batch) {
  const std::int32_t number = repeatable("scannerOpen", range.table, [&](wire::HbaseClient& calls) {
    if (range.filter.empty() && range.from.empty() && range.before.empty())
      return calls.scannerOpen(range.table, {}, {}, noAttributes);
    wire::TScan scan;
    if (!range.from.empty()) scan.__set_startRow(range.from);
    if (!range.before.empty()) scan.__set_stopRow(range.before);
    if (!range.filter.empty()) scan.__set_filterString(range.filter);
    scan.__set_caching(batch);
    return calls.scannerOpenWithScan(range.table, scan, noAttributes);
  });
  const THBaseScanner scanner{number, connection_};
  // Now that the server is known to answer.
  closeLeft();
  return scanner;
}

void THBaseClient::nextRows(const THBaseScanner& scanner, std::int32_t most, const std::string& table,
                            std::vector<THBaseRow>& rows) {
  rows.clear();
  std::vector<wire::TRowResult> told;
  call("scannerGetList", table, [&](wire::HbaseClient& calls) {
    // Known only in here, where there is a connection.
    if (scanner.connection != connection_)
      throw THBaseFault(THBaseFaultKind::Lost, where() + ": the connection was lost, and its scan.");
    calls.scannerGetList(told, scanner.number, most);
  });
  rows.reserve(told.size());
  for (wire::TRowResult& row : told) rows.push_back(rowOf(row));
}

void THBaseClient::closeScanner(const THBaseScanner& scanner) noexcept {
  if (scanner.connection < sameServer_) return;
  left_.push_back(scanner.number);
  if (link_) closeLeft();
}

void THBaseClient::closeLeft() noexcept {
  for (const std::int32_t scanner : std::exchange(left_, {})) try {
      call("scannerClose", {}, [&](wire::HbaseClient& calls) { calls.scannerClose(scanner); });
    } catch (const THBaseFault& fault) {
      if (!fault.answered()) return;
    }
}

void THBaseClient::mutateRow(const std::string& table, THBaseBatch& row) {
  call("mutateRow", table, [&](wire::HbaseClient& calls) {
    const wire::BatchMutation& only = row.rows_->exact().front();
    calls.mutateRow(table, only.row, only.mutations, noAttributes);
  });
}

void THBaseClient::mutateRows(const std::string& table, THBaseBatch& rows) {
  sendRows(table, rows);
  awaitRows(table);
}

void THBaseClient::sendRows(const std::string& table, THBaseBatch& rows) {
  call("mutateRows", table,
       [&](wire::HbaseClient& calls) { calls.send_mutateRows(table, rows.rows_->exact(), noAttributes); });
}

void THBaseClient::awaitRows(const std::string& table) {
  if (!link_) throw THBaseFault(THBaseFaultKind::Lost, where() + ": the connection is lost.");
  call("mutateRows", table, [&](wire::HbaseClient& calls) { calls.recv_mutateRows(); });
}

void THBaseClient::deleteRow(const std::string& table, const std::string& key) {
  repeatable("deleteAllRow", table,
             [&](wire::HbaseClient& calls) { calls.deleteAllRow(table, key, noAttributes); });
}

THBaseRow THBaseClient::row(const std::string& table, const std::string& key) {
  std::vector<wire::TRowResult> told;
  repeatable("getRow", table,
             [&](wire::HbaseClient& calls) { calls.getRow(told, table, key, noAttributes); });
  return told.empty() ? THBaseRow{key, {}} : rowOf(told.front());
}

std::vector<THBaseCell> THBaseClient::versions(const std::string& table, const std::string& key,
                                               const std::string& column, std::int32_t most) {
  std::vector<wire::TCell> told;
  repeatable("getVer", table,
             [&](wire::HbaseClient& calls) { calls.getVer(told, table, key, column, most, noAttributes); });
  std::vector<THBaseCell> cells;
  for (wire::TCell& cell : told) cells.push_back({column, std::move(cell.value), cell.timestamp});
  return cells;
}

std::vector<std::string> THBaseClient::tables() {
  std::vector<std::string> names;
  repeatable("getTableNames", {}, [&](wire::HbaseClient& calls) { calls.getTableNames(names); });
  return names;
}

std::vector<THBaseFamily> THBaseClient::families(const std::string& table) {
  std::map<wire::Text, wire::ColumnDescriptor> told;
  repeatable("getColumnDescriptors", table,
             [&](wire::HbaseClient& calls) { calls.getColumnDescriptors(told, table); });
  std::vector<THBaseFamily> families;
  for (const auto& [name, family] : told) families.push_back(familyOf(family));
  return families;
}

std::vector<THBaseRegion> THBaseClient::regions(const std::string& table) {
  std::vector<wire::TRegionInfo> told;
  repeatable("getTableRegions", table, [&](wire::HbaseClient& calls) { calls.getTableRegions(told, table); });
  std::vector<THBaseRegion> regions;
  for (wire::TRegionInfo& region : told)
    regions.push_back({std::move(region.name), std::move(region.startKey), std::move(region.endKey),
                       region.serverName + ":" + std::to_string(region.port)});
  return regions;
}

bool THBaseClient::isEnabled(const std::string& table) {
  return repeatable("isTableEnabled", table,
                    [&](wire::HbaseClient& calls) { return calls.isTableEnabled(table); });
}

void THBaseClient::create(const std::string& table, const std::vector<THBaseFamily>& families) {
  wake();
  std::vector<wire::ColumnDescriptor> told;
  for (const THBaseFamily& family : families) told.push_back(descriptorOf(family));
  call("createTable", table, [&](wire::HbaseClient& calls) { calls.createTable(table, told); });
}

void THBaseClient::enable(const std::string& table) {
  wake();
  call("enableTable", table, [&](wire::HbaseClient& calls) { calls.enableTable(table); });
}

void THBaseClient::disable(const std::string& table) {
  wake();
  call("disableTable", table, [&](wire::HbaseClient& calls) { calls.disableTable(table); });
}

void THBaseClient::drop(const std::string& table) {
  if (isEnabled(table)) disable(table);
  call("deleteTable", table, [&](wire::HbaseClient& calls) { calls.deleteTable(table); });
}

/// What would keep the table from being made again is found before it is dropped, as far as it can be told.
void THBaseClient::truncate(const std::string& table) {
  const std::vector<THBaseFamily> kept = families(table);
  for (const THBaseFamily& family : kept)
    if (!canBeMade(family))
      throw THBaseFault(THBaseFaultKind::Other,
                        "The table " + table +
                            " was left as it is: this interface cannot make its column family " +
                            textOf(family) + " again.");
  drop(table);
  try {
    create(table, kept);
  } catch (const THBaseFault& fault) {
    std::string text = std::string(fault.what()) + " The table " + table +
                       " was dropped and could not be made again. Its column families were:";
    for (const THBaseFamily& family : kept) text += " " + textOf(family);
    throw THBaseFault(fault.kind(), text);
  }
}

void THBaseClient::compact(const std::string& table, bool major) {
  repeatable("compact", table, [&](wire::HbaseClient& calls) {
    if (major)
      calls.majorCompact(table);
    else
      calls.compact(table);
  });
}

std::unique_ptr<THBaseClient> connectHBase(const TStoreOptions& options, const std::string& fixedText) {
  const TThriftOptions thrift = thriftOptions(options, "HBase", usualPort);
  try {
    return std::make_unique<THBaseClient>(thrift);
  } catch (const THBaseFault& fault) {
    throw TStoreError(
        TStoreErrorKind::Connect,
        fixedText.empty() ? "Unable to connect to the HBase database host: " + thrift.where() : fixedText,
        fault.what());
  }
}

}  // namespace hollowmere
