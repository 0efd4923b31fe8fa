#include "connectors/cassandra/cassandrawriter.h"

#include <algorithm>
#include <iterator>

#include "connectors/cassandra/cassbind.h"
#include "connectors/textpiece.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr char connectText[] = "Unable to connect to target Cassandra.";
constexpr char noKeyspace[] = "Unable to determine target Cassandra keyspace : ";
constexpr char noColumnFamily[] = "Unable to determine target Cassandra column family : ";

/// Rows of one batch: a server warns of more than 10 partitions, and of more than 5 KB, in one.
constexpr std::size_t batchRows = 10;
constexpr std::size_t batchBytes = 4096;

/// More than these are not in flight: their answers must find room while nobody reads them.
constexpr std::size_t mostRows = 512;
constexpr std::size_t mostBytes = 1024 * 1024;

/// What servers take in one request, unless they are told otherwise.
constexpr std::size_t requestBytes = 15 * 1024 * 1024;

/// Between two attempts to reach a server that is gone.
constexpr std::chrono::milliseconds reconnectPause{500};

/// Rows one after the other that may each cost a connection.
constexpr int mostLosses = 2;

std::size_t bytesOf(const std::vector<std::string>& values) {
  std::size_t bytes = 0;
  for (const std::string& value : values) bytes += value.size() + sizeof(std::int32_t);
  return bytes;
}

/// Where the name at the front of a text ends: at a dot, but not at one in double quotes.
std::size_t nameEnd(std::string_view text) {
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') quoted = !quoted;
    if (text[i] == '.' && !quoted) return i;
  }
  return text.find('.');
}

std::string unquoted(std::string_view name) {
  if (name.size() < 2 || name.front() != '"' || name.back() != '"') return std::string(name);
  return replaceAll(name.substr(1, name.size() - 2), "\"\"", "\"");
}

/// The name as the schema has it: as it stands, or in lower case.
bool findName(const std::vector<std::string>& names, std::string& name) {
  if (std::find(names.begin(), names.end(), name) != names.end()) return true;
  std::string lower = name;
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  if (std::find(names.begin(), names.end(), lower) == names.end()) return false;
  name = std::move(lower);
  return true;
}

struct TTargetTable {
  std::string keyspace;
  std::string table;
  std::vector<TCassColumn> columns;
};

/// "keyspace.table" as the server has it. Throws TStoreError (DataSource), TCassandraError.
TTargetTable findTarget(TCassandraClient& client, const std::string& target) {
  const auto fail = [](const char* text, const std::string& name) {
    throw TStoreError(TStoreErrorKind::DataSource, text + name);
  };
  const std::size_t dot = nameEnd(target);
  if (dot == std::string::npos) fail(noKeyspace, target);
  TTargetTable found{unquoted(target.substr(0, dot)), unquoted(target.substr(dot + 1)), {}};
  TCassSchema schema(client);
  if (!findName(schema.keyspaces(), found.keyspace))
    fail(noKeyspace, found.keyspace.empty() ? target : found.keyspace);
  if (!findName(schema.tables(found.keyspace), found.table)) fail(noColumnFamily, found.table);
  found.columns = schema.columns(found.keyspace, found.table);
  return found;
}

}  // namespace

TCassandraWriter::TCassandraWriter(const TStoreOptions& options)
    : options_(options),
      client_(options, connectText),
      lengths_(client_.majorVersion() >= 3 ? TCollectionLengths::Int32 : TCollectionLengths::Short16),
      window_(options.bulkSize > 1 ? std::min(mostRows, static_cast<std::size_t>(options.bulkSize)) : 1) {}

void TCassandraWriter::openTarget(const TDataTarget& target) {
  open_.clear();
  rowsOpen_ = bytesOpen_ = 0;
  keys_.clear();
  try {
    if (!client_.isConnected()) client_.connect();
    TTargetTable found = findTarget(client_, target.target);
    plans_.emplace(client_, found.keyspace, found.table, std::move(found.columns));
  } catch (const TCassandraError& error) {
    throw TStoreError(TStoreErrorKind::DataSource, error.what());
  }
}

void TCassandraWriter::write(TObject&& document, TOutcomeSink& sink) {
  if (!connected(sink, document)) return;
  const TPlan plan = planOf(document, sink);
  if (!plan) return;
  TRow row;
  if (!encode(*plan, document, row.values, sink)) return;
  row.document = std::move(document);
  claimKey(*plan, row, sink);
  add(plan, std::move(row), sink);
}

void TCassandraWriter::flush(TOutcomeSink& sink) {
  sendOpen(sink);
  receiveUntil(0, sink);
}

/// Refuses the document while the server is gone. It is tried again now and then: it may come back.
bool TCassandraWriter::connected(TOutcomeSink& sink, const TObject& document) {
  if (client_.isConnected() || reconnect()) return true;
  sink.refused(toJson(document), lostText_);
  return false;
}

bool TCassandraWriter::reconnect() {
  const auto begin = std::chrono::steady_clock::now();
  if (begin < nextConnect_ || (options_.stop && options_.stop->isSet())) return false;
  try {
    client_.connect();
    return true;
  } catch (const TStoreError& error) {
    lostText_ = error.detail();
    // A server that is silent is not waited for again at once.
    const auto now = std::chrono::steady_clock::now();
    nextConnect_ = now + std::max<std::chrono::steady_clock::duration>(reconnectPause, now - begin);
    return false;
  }
}

TCassandraWriter::TPlan TCassandraWriter::planOf(const TObject& document, TOutcomeSink& sink) {
  TPlan plan = plans_->find(document);
  if (!plan) {
    plan = plans_->make(document);
    if (plan->fault.empty() && prepare(*plan, sink)) plans_->keep(plan);
  }
  if (plan->fault.empty()) return plan;
  sink.refused(toJson(document), plan->fault);
  return nullptr;
}

/// False when the connection is lost and does not come back.
bool TCassandraWriter::prepare(TInsertPlan& plan, TOutcomeSink& sink) {
  // Preparing asks the server, whose answers to what is in flight come first.
  receiveUntil(0, sink);
  for (bool again = true;; again = false) {
    try {
      plans_->prepare(plan);
      return true;
    } catch (const TCassandraError& error) {
      lostText_ = error.what();
    }
    if (again && reconnect()) continue;
    plan.fault = lostText_;
    return false;
  }
}

bool TCassandraWriter::encode(const TInsertPlan& plan, const TObject& document,
                              std::vector<std::string>& values, TOutcomeSink& sink) const {
  values.resize(plan.order.size());
  std::size_t at = 0;
  try {
    // Markers stand in the order of the members, but for counters.
    std::vector<const TValue*> members;
    for (const TMember& member : document)
      if (!member.value.isNull()) members.push_back(&member.value);
    for (; at < values.size(); ++at)
      values[at] = cassBytes(*members[plan.order[at]], plan.types[at], lengths_, dates_);
    return true;
  } catch (const std::runtime_error& error) {
    sink.refused(toJson(document), "Column " + plan.columns[plan.order[at]] + " of type " + error.what());
    return false;
  }
}

/// Waits until no other row of this key is under way: rows of one batch have one time stamp, and what is
/// tried again comes late, so that of two the later would not win.
void TCassandraWriter::claimKey(const TInsertPlan& plan, TRow& row, TOutcomeSink& sink) {
  if (plan.keys.empty()) return;
  for (const std::size_t key : plan.keys)
    row.key = row.key * 31 + std::hash<std::string_view>()(row.values[key]);
  if (keys_.contains(row.key)) receiveUntil(0, sink);
  // It is one that waits to be sent.
  if (keys_.contains(row.key)) flush(sink);
  keys_.insert(row.key);
}

void TCassandraWriter::add(const TPlan& plan, TRow&& row, TOutcomeSink& sink) {
  const std::size_t bytes = bytesOf(row.values);
  TUnit& unit = unitFor(plan, bytes, sink);
  unit.rows.push_back(std::move(row));
  unit.bytes += bytes;
  ++rowsOpen_;
  bytesOpen_ += bytes;
  if (window_ == 1 || bytes > mostBytes) return flush(sink);
  const std::size_t most = plan->takesBatches ? std::min(batchRows, window_) : 1;
  if (unit.rows.size() >= most) {
    sendFilled(unit, sink);
    std::erase_if(open_, [](const TUnit& each) { return each.rows.empty(); });
  }
  if (rowsOpen_ >= window_ || bytesOpen_ > mostBytes) sendOpen(sink);
}

/// The one of the plan, sent before when it has no room left.
TCassandraWriter::TUnit& TCassandraWriter::unitFor(const TPlan& plan, std::size_t bytes, TOutcomeSink& sink) {
  const auto found =
      std::find_if(open_.begin(), open_.end(), [&](const TUnit& unit) { return unit.plan == plan; });
  if (found == open_.end()) return open_.emplace_back(TUnit{plan, {}, 0});
  if (!found->rows.empty() && found->bytes + bytes > batchBytes) sendFilled(*found, sink);
  return *found;
}

void TCassandraWriter::sendOpen(TOutcomeSink& sink) {
  for (TUnit& unit : open_) sendFilled(unit, sink);
  open_.clear();
}

/// Its rows as one statement, or one by one where the server has none such. The unit is empty then.
void TCassandraWriter::sendFilled(TUnit& unit, TOutcomeSink& sink) {
  TUnit filled{unit.plan, {}, 0};
  std::swap(filled, unit);
  const std::size_t rows = filled.rows.size();
  if (rows == 0) return;
  rowsOpen_ -= rows;
  bytesOpen_ -= filled.bytes;
  TInsertPlan& plan = *filled.plan;
  if (rows > 1 && plan.takesBatches && !plan.batchIds.contains(rows)) {
    receiveUntil(0, sink);
    try {
      plans_->prepareBatch(plan, rows);
    } catch (const TCassandraError& error) {
      lostText_ = error.what();
    }
  }
  if (rows == 1 || plan.batchIds.contains(rows)) return send(std::move(filled), sink);
  for (TRow& row : filled.rows) {
    TUnit one{filled.plan, {}, bytesOf(row.values)};
    one.rows.push_back(std::move(row));
    send(std::move(one), sink);
  }
}

void TCassandraWriter::send(TUnit&& unit, TOutcomeSink& sink) {
  rowsSent_ += unit.rows.size();
  bytesSent_ += unit.bytes;
  sent_.push_back(std::move(unit));
  if (!client_.isConnected() && !reconnect()) return rescue(lostText_, sink);
  try {
    transmit(sent_.back());
  } catch (const TCassandraError& error) {
    return rescue(error.what(), sink);
  }
  // Half of them stay in flight, so that the server has work while the next are made.
  if (rowsSent_ >= window_ || bytesSent_ > mostBytes) receiveUntil(window_ / 2, sink);
}

void TCassandraWriter::transmit(const TUnit& unit) {
  const TInsertPlan& plan = *unit.plan;
  if (unit.rows.size() == 1) return client_.send(plan.id, unit.rows[0].values, client_.writeLevel());
  std::vector<std::string> values;
  values.reserve(unit.rows.size() * unit.rows[0].values.size());
  for (const TRow& row : unit.rows) values.insert(values.end(), row.values.begin(), row.values.end());
  client_.send(plan.batchIds.at(unit.rows.size()), values, client_.writeLevel());
}

/// Takes answers until no more rows than that are in flight; all of them, when there is something to be done
/// again.
void TCassandraWriter::receiveUntil(std::size_t inFlight, TOutcomeSink& sink) {
  if (sent_.empty()) return;
  try {
    client_.sendNow();
    while (!sent_.empty() && (rowsSent_ > inFlight || bytesSent_ > mostBytes / 2 || !failed_.empty()))
      takeAnswer(sink);
  } catch (const TCassandraError& error) {
    return rescue(error.what(), sink);
  }
  std::vector<TUnit> failed;
  failed.swap(failed_);
  int losses = 0;
  for (TUnit& unit : failed) writeAlone(unit, losses, sink);
}

void TCassandraWriter::takeAnswer(TOutcomeSink& sink) {
  TUnit& unit = sent_.front();
  const std::size_t rows = unit.rows.size();
  try {
    client_.receive();
    for (const TRow& row : unit.rows) keys_.erase(row.key);
    sink.stored(static_cast<std::int64_t>(rows));
  } catch (const TCassandraError& error) {
    if (error.connectionLost()) throw;
    if (error.why() == TCassandraError::TWhy::NotPrepared) unit.plan->batchIds.erase(rows);
    if (isTriedAgain(unit, error))
      failed_.push_back(std::move(unit));
    else
      refuse(unit.rows[0], error.what(), sink);
  }
  rowsSent_ -= rows;
  bytesSent_ -= sent_.front().bytes;
  sent_.pop_front();
}

/// A row that a server's own time-out was about may be there: it is written once more, but not added again.
bool TCassandraWriter::isTriedAgain(const TUnit& unit, const TCassandraError& error) const {
  return unit.rows.size() > 1 || error.why() == TCassandraError::TWhy::NotPrepared ||
         (error.why() == TCassandraError::TWhy::TimedOut && !plans_->countersOnly());
}

void TCassandraWriter::refuse(const TRow& row, const std::string& fault, TOutcomeSink& sink) {
  keys_.erase(row.key);
  sink.refused(toJson(row.document), fault);
}

/// The connection is lost, and what became of the rows in flight is not known: each is tried again over a new
/// one. Where there is none, and for counters, which would count twice, they are refused.
void TCassandraWriter::rescue(const std::string& reason, TOutcomeSink& sink) {
  lostText_ = reason;
  std::vector<TUnit> units;
  units.swap(failed_);
  std::move(sent_.begin(), sent_.end(), std::back_inserter(units));
  sent_.clear();
  rowsSent_ = bytesSent_ = 0;
  int losses = plans_->countersOnly() ? mostLosses : 0;
  for (TUnit& unit : units) writeAlone(unit, losses, sink);
}

/// One row may be what ends a connection; when several rows one after the other do, the server is at fault,
/// and is not waited for with each of the others. losses counts such rows.
void TCassandraWriter::writeAlone(TUnit& unit, int& losses, TOutcomeSink& sink) {
  for (const TRow& row : unit.rows) {
    const bool reached = losses < mostLosses && (client_.isConnected() || reconnect());
    const std::string fault = reached ? tryAlone(*unit.plan, row) : lostText_;
    if (reached) losses = client_.isConnected() ? 0 : losses + 1;
    if (!fault.empty()) {
      refuse(row, fault, sink);
      continue;
    }
    keys_.erase(row.key);
    sink.stored(1);
  }
}

/// Empty when the server has taken the row.
std::string TCassandraWriter::tryAlone(TInsertPlan& plan, const TRow& row) {
  for (bool again = true;; again = false) {
    try {
      client_.executePrepared(plan.id, row.values, client_.writeLevel());
      return {};
    } catch (const TCassandraError& error) {
      if (error.connectionLost()) lostText_ = error.what();
      const std::size_t bytes = bytesOf(row.values);
      if (error.connectionLost() && bytes >= requestBytes)
        return error.what() + (" The row has " + std::to_string(bytes)) +
               " bytes; servers take 15 MiB at most, unless thrift_framed_transport_size_in_mb tells them "
               "otherwise.";
      if (error.why() != TCassandraError::TWhy::NotPrepared || !again) return error.what();
    }
    try {
      plans_->prepare(plan);
    } catch (const TCassandraError& error) {
      return lostText_ = error.what();
    }
    if (!plan.fault.empty()) return plan.fault;
  }
}

std::vector<std::string> requiredColumns(const TStoreOptions& options, const TDataTarget& target,
                                         const std::string& fixedText) {
  TCassandraClient client(options, fixedText);
  std::vector<std::string> names;
  try {
    const TTargetTable found = findTarget(client, target.target);
    const bool statics = std::any_of(found.columns.begin(), found.columns.end(),
                                     [](const TCassColumn& c) { return c.role == TKeyRole::Static; });
    // A row with static columns alone names its partition only.
    for (const TCassColumn& column : found.columns)
      if (column.role == TKeyRole::Partition || (column.isKey() && !statics)) names.push_back(column.name);
  } catch (const TCassandraError& error) {
    throw TStoreError(TStoreErrorKind::Connect, fixedText, error.what());
  } catch (const TStoreError&) {
    // There is no such target, which the run tells when it opens it.
    return {};
  }
  return names;
}

}  // namespace hollowmere
