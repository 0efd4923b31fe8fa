#include "connectors/cassandra/cassandrareader.h"

#include <algorithm>

#include "connectors/cassandra/cassbind.h"
#include "connectors/cassandra/cassvalue.h"
#include "connectors/cassandra/cqltext.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr char connectText[] = "Unable to connect to source Cassandra.";
constexpr char noRows[] = "Cassandra data source CQL query does not return rows: ";

[[noreturn]] void failSource(const std::string& text) {
  throw TStoreError(TStoreErrorKind::DataSource, text);
}

/// The parent's field of a parameter; a name with dots is a path into nested objects.
const TValue* findByPath(const TObject& object, std::string_view name) {
  if (const TMember* member = object.findIgnoringCase(name)) return &member->value;
  const std::size_t dot = name.find('.');
  if (dot == std::string_view::npos) return nullptr;
  const TMember* outer = object.findIgnoringCase(name.substr(0, dot));
  if (!outer || !outer->value.is(TKind::Object)) return nullptr;
  return findByPath(outer->value.asObject(), name.substr(dot + 1));
}

}  // namespace

TCassSource::TCassSource(const TDataSource& source, TStoreErrorKind kind)
    : keyspace(trimmedMember(source.definition, "keyspace")),
      columnfamily(trimmedMember(source.definition, "columnfamily")),
      query(trimmedMember(source.definition, "query")) {
  if (keyspace.empty() || query.empty())
    throw TStoreError(kind, "Data source " + source.name + " names no Cassandra keyspace and query.");
}

void TCassRows::describe(const TCassResult& result) {
  if (std::equal(columns_.begin(), columns_.end(), result.columns.begin(), result.columns.end())) return;
  columns_.clear();
  for (const std::string& name : result.columns) {
    const auto type = result.types.find(name);
    columns_.push_back({name, TCassType::fromClass(type == result.types.end() ? "UTF8Type" : type->second)});
  }
}

TObject TCassRows::getCassandraBSON(const TCassRow& row, bool ignoreNulls, const TDateTimeText& dates) const {
  TObject object;
  object.reserve(row.size());
  const std::size_t count = std::min(row.size(), columns_.size());
  for (std::size_t i = 0; i < count; ++i) {
    if (!row[i] && ignoreNulls) continue;
    try {
      TValue value = row[i] ? cassValue(*row[i], columns_[i].type, lengths_, dates) : TValue();
      if (!ignoreNulls || !value.isNull()) object.add(columns_[i].name, std::move(value));
    } catch (const std::runtime_error& error) {
      throw std::runtime_error("column " + columns_[i].name + ": " + error.what());
    }
  }
  return object;
}

std::string TCassRows::text(const TCassRow& row, const TDateTimeText& dates) const {
  TObject object;
  const std::size_t count = std::min(row.size(), columns_.size());
  for (std::size_t i = 0; i < count; ++i) {
    TValue& value = object.addNull(columns_[i].name).value;
    if (!row[i]) continue;
    try {
      value = cassValue(*row[i], columns_[i].type, lengths_, dates);
    } catch (const std::runtime_error&) {
      value = TValue::binary(*row[i]);
    }
  }
  return toJson(object, TTextForm::Markers);
}

TCassandraReader::TCassandraReader(const TStoreOptions& options)
    : options_(options),
      client_(options, connectText),
      lengths_(client_.majorVersion() >= 3 ? TCollectionLengths::Int32 : TCollectionLengths::Short16),
      rows_(lengths_) {}

void TCassandraReader::openRoot(const TDataSource& source, const TShare& share) {
  const TCassSource query(source);
  hasRow_ = ranged_ = false;
  pages_.reset();
  piece_ = {};
  row_ = 0;
  left_ = share.degree > 1 ? share.rows : std::nullopt;
  try {
    if (!client_.isConnected()) client_.connect();
    client_.setKeyspace(query.keyspace);
    openPages(query, share);
    if (!pages_) openWhole(query);
    std::int64_t passed = 0;
    while (!ranged_ && passed < share.start && nextRow()) ++passed;
    if (row_ == piece_.rows.size() && !nextPiece() && !ranged_) failSource(noRows + query.query);
  } catch (const TCassandraError& error) {
    failSource(error.what());
  }
}

/// Leaves pages_ empty when the statement can only be read at once; what the server says against it is then
/// said of the statement itself.
void TCassandraReader::openPages(const TCassSource& query, const TShare& share) {
  std::string why;
  const bool old = client_.majorVersion() < 3;
  auto plan =
      planRoot(query.query, TCassSchema(client_).columns(query.keyspace, query.columnfamily), old, why);
  TTokenRange range;
  if (plan && share.degree > 1 && !plan->onePartition && !plan->limit &&
      client_.partitioner().ends_with("Murmur3Partitioner")) {
    range = murmur3Range(share.number, share.degree);
    ranged_ = true;
  }
  if (plan && plan->limit)
    left_ = std::min(left_.value_or(*plan->limit), std::max<std::int64_t>(0, *plan->limit - share.start));
  if (plan) {
    pages_.emplace(client_, query.keyspace, std::move(*plan), range, options_.fetchLimit, options_.stop);
    try {
      nextPiece();
      return;
    } catch (const TCassandraError& error) {
      if (error.connectionLost() || error.why() == TCassandraError::TWhy::TimedOut) throw;
      why = error.what();
    }
  }
  pages_.reset();
  ranged_ = false;
  if (options_.remark) options_.remark("The query is read at once, with all its rows in memory: " + why);
}

void TCassandraReader::openWhole(const TCassSource& query) {
  piece_ = client_.execute(query.query, client_.readLevel());
  rows_.describe(piece_);
  row_ = 0;
}

/// The next piece that has rows.
bool TCassandraReader::nextPiece() {
  piece_ = {};
  row_ = 0;
  auto piece = pages_ ? pages_->next() : std::nullopt;
  if (!piece) return false;
  piece_ = std::move(*piece);
  rows_.describe(piece_);
  return true;
}

bool TCassandraReader::nextRow() {
  if (row_ == piece_.rows.size() && !nextPiece()) return false;
  ++row_;
  return true;
}

std::optional<TObject> TCassandraReader::getCassJSON() {
  hasRow_ = false;
  if (left_ && !ranged_ && (*left_)-- <= 0) {
    left_ = 0;
    return std::nullopt;
  }
  try {
    if (!nextRow()) return std::nullopt;
  } catch (const TCassandraError& error) {
    failSource(error.what());
  } catch (const TStoreError& error) {
    failSource(error.what());
  }
  hasRow_ = true;
  try {
    return rows_.getCassandraBSON(piece_.rows[row_ - 1], options_.ignoreNulls, dates_);
  } catch (const std::runtime_error& error) {
    throw TStoreError(TStoreErrorKind::Read, error.what());
  }
}

std::string TCassandraReader::rowText() {
  return hasRow_ && row_ > 0 ? rows_.text(piece_.rows[row_ - 1], dates_) : std::string();
}

TCassandraReader::TNested& TCassandraReader::nestedQuery(const std::string& name, const TCassSource& query) {
  const auto found = nestedQueries_.find(name);
  if (found != nestedQueries_.end()) return found->second;
  client_.setKeyspace(query.keyspace);
  TMarkedCql marked = markParameters(query.query);
  TNested nested{std::move(marked.cql), std::move(marked.parameters), {}, {}};
  nested.prepared = client_.prepare(nested.cql);
  for (const std::string& type : nested.prepared.types) nested.types.push_back(TCassType::fromClass(type));
  if (nested.types.size() != nested.parameters.size())
    throw TCassandraError(TCassandraError::TWhy::Refused,
                          "A nested query may have parameters, but no markers: " + query.query);
  return nestedQueries_.emplace(name, std::move(nested)).first->second;
}

/// The parent's values by the types of the markers, so that nothing in them can change the query. Empty for
/// a null: no row equals it.
std::vector<std::string> TCassandraReader::processCassandraParams(const TNested& query,
                                                                  const TObject& parent) const {
  std::vector<std::string> values;
  for (std::size_t i = 0; i < query.parameters.size(); ++i) {
    const TValue* value = findByPath(parent, query.parameters[i]);
    if (!value)
      throw TStoreError(TStoreErrorKind::Read,
                        "The parent row has no field for the query parameter :" + query.parameters[i]);
    if (value->isNull()) return {};
    try {
      values.push_back(cassBytes(*value, query.types[i], lengths_, dates_));
    } catch (const std::runtime_error& error) {
      throw TStoreError(TStoreErrorKind::Read,
                        "The query parameter :" + query.parameters[i] + " does not fit: " + error.what());
    }
  }
  return values;
}

TCassResult TCassandraReader::runNested(const std::string& name, const TCassSource& query,
                                        const TObject& parent) {
  for (bool again = true;; again = false) {
    try {
      if (!client_.isConnected()) client_.connect();
      const TNested& nested = nestedQuery(name, query);
      const std::vector<std::string> values = processCassandraParams(nested, parent);
      if (values.size() < nested.parameters.size()) return {};
      return client_.executePrepared(nested.prepared.id, values, client_.readLevel());
    } catch (const TCassandraError& error) {
      const bool lost =
          error.why() == TCassandraError::TWhy::Lost && !(options_.stop && options_.stop->isSet());
      const bool retry = again && (lost || error.why() == TCassandraError::TWhy::NotPrepared);
      if (!retry) throw TStoreError(TStoreErrorKind::Read, error.what());
      nestedQueries_.clear();
    } catch (const TStoreError& error) {
      if (error.kind() != TStoreErrorKind::Connect) throw;
      throw TStoreError(TStoreErrorKind::Read, error.what());
    }
  }
}

void TCassandraReader::nested(const TDataSource& source, const TObject& parent, const TRowSink& row) {
  const TCassSource query(source, TStoreErrorKind::Read);
  const TCassResult result = runNested(source.name, query, parent);
  TCassRows rows(lengths_);
  rows.describe(result);
  for (const TCassRow& cells : result.rows) {
    std::optional<TObject> object;
    try {
      object = rows.getCassandraBSON(cells, options_.ignoreNulls, dates_);
    } catch (const std::runtime_error& error) {
      throw TStoreError(TStoreErrorKind::Read, error.what());
    }
    if (!row(std::move(*object))) return;
  }
}

}  // namespace hollowmere
