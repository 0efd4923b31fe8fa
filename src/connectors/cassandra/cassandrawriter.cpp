#include "connectors/cassandra/cassandrawriter.h"

#include <algorithm>
#include <iterator>

#include "connectors/cassandra/cassbind.h"
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

std::string unquoted(std::string_view name) {
  if (name.size() > 1 && name.front() == '"' && name.back() == '"') name = name.substr(1, name.size() - 2);
  return std::string(name);
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

}  // namespace

TCassandraWriter::TCassandraWriter(const TStoreOptions& options)
    : options_(options),
      client_(options, connectText),
      lengths_(client_.majorVersion() >= 3 ? TCollectionLengths::Int32 : TCollectionLengths::Short16),
      window_(options.bulkSize > 1 ? std::min(mostRows, static_cast<std::size_t>(options.bulkSize)) : 1) {}

void TCassandraWriter::openTarget(const TDataTarget& target) {
  const auto fail = [](const char* text, const std::string& name) {
    throw TStoreError(TStoreErrorKind::DataSource, text + name);
  };
  const std::size_t dot = target.target.find('.');
  std::string keyspace = dot == std::string::npos ? "" : unquoted(target.target.substr(0, dot));
  std::string table = dot == std::string::npos ? target.target : unquoted(target.target.substr(dot + 1));
  open_ = {};
  try {
    if (!client_.isConnected()) client_.connect();
    TCassSchema schema(client_);
    if (keyspace.empty() || !findName(schema.keyspaces(), keyspace))
      fail(noKeyspace, keyspace.empty() ? target.target : keyspace);
    if (!findName(schema.tables(keyspace), table)) fail(noColumnFamily, table);
    plans_.emplace(client_, keyspace, table, schema.columns(keyspace, table), window_ > 1 ? batchRows : 1);
  } catch (const TCassandraError& error) {
    throw TStoreError(TStoreErrorKind::DataSource, error.what());
  }
}

void TCassandraWriter::write(TObject&& document, TOutcomeSink& sink) {
  if (!connected(sink, document)) return;
  TInsertPlan* plan = planOf(document, sink);
  if (!plan) return;
  TRow row;
  if (!encode(*plan, document, row.values, sink)) return;
  row.document = std::move(document);
  add(*plan, std::move(row), sink);
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

TInsertPlan* TCassandraWriter::planOf(const TObject& document, TOutcomeSink& sink) {
  TInsertPlan* plan = plans_->find(document);
  try {
    if (!plan) {
      // Preparing asks the server, whose answers to what is in flight come first.
      flush(sink);
      plan = &plans_->add(document);
    }
    if (plan->fault.empty()) return plan;
    sink.refused(toJson(document), plan->fault);
  } catch (const TCassandraError& error) {
    sink.refused(toJson(document), lostText_ = error.what());
  }
  return nullptr;
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

/// Whether the row may go with those that wait: rows of one batch have one time stamp, so that of two with
/// the same key the later would not win.
bool TCassandraWriter::fits(const TInsertPlan& plan, const TRow& row, std::size_t bytes) const {
  if (open_.rows.empty()) return true;
  if (open_.plan != &plan || open_.bytes + bytes > batchBytes) return false;
  return std::none_of(open_.rows.begin(), open_.rows.end(), [&](const TRow& other) {
    return std::all_of(plan.keys.begin(), plan.keys.end(),
                       [&](std::size_t key) { return other.values[key] == row.values[key]; });
  });
}

void TCassandraWriter::add(TInsertPlan& plan, TRow&& row, TOutcomeSink& sink) {
  const std::size_t bytes = bytesOf(row.values);
  if (!fits(plan, row, bytes)) sendOpen(sink);
  open_.plan = &plan;
  open_.bytes += bytes;
  open_.rows.push_back(std::move(row));
  if (window_ == 1 || bytes > mostBytes)
    flush(sink);
  else if (open_.rows.size() >= plan.batchRows)
    sendOpen(sink);
}

/// A full batch as one statement; what is less row by row.
void TCassandraWriter::sendOpen(TOutcomeSink& sink) {
  if (open_.rows.empty()) return;
  const std::size_t before = sent_.size();
  rowsSent_ += open_.rows.size();
  bytesSent_ += open_.bytes;
  if (open_.rows.size() == open_.plan->batchRows) {
    sent_.push_back(std::move(open_));
  } else {
    for (TRow& row : open_.rows) {
      TUnit& one = sent_.emplace_back(TUnit{open_.plan, {}, bytesOf(row.values)});
      one.rows.push_back(std::move(row));
    }
  }
  open_ = {};
  if (!client_.isConnected()) return rescue(lostText_, sink);
  try {
    for (std::size_t i = before; i < sent_.size(); ++i) send(sent_[i]);
  } catch (const TCassandraError& error) {
    return rescue(error.what(), sink);
  }
  // Half of them stay in flight, so that the server has work while the next are made.
  if (rowsSent_ >= window_ || bytesSent_ > mostBytes) receiveUntil(window_ / 2, sink);
}

void TCassandraWriter::send(const TUnit& unit) {
  if (unit.rows.size() == 1) return client_.send(unit.plan->id, unit.rows[0].values, client_.writeLevel());
  std::vector<std::string> values;
  values.reserve(unit.rows.size() * unit.rows[0].values.size());
  for (const TRow& row : unit.rows) values.insert(values.end(), row.values.begin(), row.values.end());
  client_.send(unit.plan->batchId, values, client_.writeLevel());
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
  for (TUnit& unit : failed) writeAlone(unit, sink);
}

void TCassandraWriter::takeAnswer(TOutcomeSink& sink) {
  TUnit& unit = sent_.front();
  const std::size_t rows = unit.rows.size();
  try {
    client_.receive();
    sink.stored(static_cast<std::int64_t>(rows));
  } catch (const TCassandraError& error) {
    if (error.connectionLost()) throw;
    if (rows > 1 || error.why() == TCassandraError::TWhy::NotPrepared)
      failed_.push_back(std::move(unit));
    else
      sink.refused(toJson(unit.rows[0].document), error.what());
  }
  rowsSent_ -= rows;
  bytesSent_ -= sent_.front().bytes;
  sent_.pop_front();
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
  losses_ = plans_->countersOnly() ? mostLosses : 0;
  for (TUnit& unit : units) writeAlone(unit, sink);
  losses_ = 0;
}

/// One row may be what ends a connection; when several rows one after the other do, the server is at fault,
/// and is not waited for with each of the others.
void TCassandraWriter::writeAlone(TUnit& unit, TOutcomeSink& sink) {
  for (const TRow& row : unit.rows) {
    const bool reached = losses_ < mostLosses && (client_.isConnected() || reconnect());
    const std::string fault = reached ? tryAlone(*unit.plan, row) : lostText_;
    if (reached) losses_ = client_.isConnected() ? 0 : losses_ + 1;
    if (fault.empty())
      sink.stored(1);
    else
      sink.refused(toJson(row.document), fault);
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

}  // namespace hollowmere
