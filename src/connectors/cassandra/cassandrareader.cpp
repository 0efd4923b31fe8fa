#include "connectors/cassandra/cassandrareader.h"

#include <algorithm>

#include "connectors/cassandra/cassbind.h"
#include "connectors/cassandra/cassvalue.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr char connectText[] = "Unable to connect to source Cassandra.";
constexpr char noRows[] = "Cassandra data source CQL query does not return rows: ";

[[noreturn]] void failSource(const std::string& text) {
  throw TStoreError(TStoreErrorKind::DataSource, text);
}

const TValue nullValue;

/// The parent's field of a parameter; a name with dots is a path into nested objects, where all of a null is
/// null.
const TValue* findByPath(const TObject& object, std::string_view name) {
  if (const TMember* member = object.findIgnoringCase(name)) return &member->value;
  const std::size_t dot = name.find('.');
  if (dot == std::string_view::npos) return nullptr;
  const TMember* outer = object.findIgnoringCase(name.substr(0, dot));
  if (outer && outer->value.isNull()) return &nullValue;
  if (!outer || !outer->value.is(TKind::Object)) return nullptr;
  return findByPath(outer->value.asObject(), name.substr(dot + 1));
}

/// Nobody would give it a value.
void refuseParameters(const TDataSource& source, const std::string& query) {
  for (const TCqlToken& token : cqlTokens(query))
    if (token.kind == TCqlToken::TKind::Parameter && token.text[0] == ':')
      failSource(
          "Data source " + source.name +
          " is read for itself, so there is no parent row for the query parameter :" + token.parameter());
}

}  // namespace

void TCassRows::describe(const TCassResult& result) {
  const auto classOf = [&](const std::string& name) -> std::string_view {
    const auto type = result.types.find(name);
    return type == result.types.end() ? "UTF8Type" : std::string_view(type->second);
  };
  const bool same = std::equal(columns_.begin(), columns_.end(), result.columns.begin(), result.columns.end(),
                               [&](const TColumn& column, const std::string& name) {
                                 return column.name == name && column.classText == classOf(name);
                               });
  if (same) return;
  columns_.clear();
  for (const std::string& name : result.columns)
    columns_.push_back({name, std::string(classOf(name)), TCassType::fromClass(classOf(name))});
}

bool TCassRows::hasColumn(std::string_view name) const {
  return std::any_of(columns_.begin(), columns_.end(),
                     [&](const TColumn& column) { return equalIgnoringCase(column.name, name); });
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
  TCassSource query(source);
  refuseParameters(source, query.query);
  hasRow_ = gone_ = false;
  rows_ = TCassRows(lengths_);
  piece_ = {};
  row_ = 0;
  try {
    readPatiently(client_, TCassRetry(options_.stop), [&] { openPages(query, share); });
    if (!pages_) openWhole(query);
    std::int64_t passed = 0;
    while (!ranged_ && passed < share.start && nextRow()) ++passed;
    if (row_ == piece_.rows.size() && !nextPiece() && !ranged_) failSource(noRows + query.query);
  } catch (const TCassandraError& error) {
    failSource(error.what());
  } catch (const TStoreError& error) {
    failSource(error.what());
  }
}

/// Leaves pages_ empty when the statement can only be read at once. That hangs on what is the same for all
/// shares: were one read by tokens and another by row numbers, rows would be missed.
void TCassandraReader::openPages(TCassSource& source, const TShare& share) {
  pages_.reset();
  ranged_ = false;
  left_ = share.degree > 1 ? share.rows : std::nullopt;
  source.useKeyspace(client_);
  std::string why;
  auto plan = source.plan(client_, why);
  if (plan) {
    TTokenRange range;
    if (share.degree > 1 && !plan->onePartition && !plan->limit &&
        client_.partitioner().ends_with("Murmur3Partitioner")) {
      range = murmur3Range(share.number, share.degree);
      ranged_ = true;
    }
    if (plan->limit)
      left_ = std::min(left_.value_or(*plan->limit), std::max<std::int64_t>(0, *plan->limit - share.start));
    pages_.emplace(client_, source.keyspace, std::move(*plan), range, options_.fetchLimit, options_.stop);
    try {
      return pages_->tryOut();
    } catch (const TCassandraError& error) {
      if (error.why() != TCassandraError::TWhy::Refused) throw;
      why = error.what();
    }
  }
  pages_.reset();
  ranged_ = false;
  if (options_.remark) options_.remark("The query is read at once, with all its rows in memory: " + why);
}

void TCassandraReader::openWhole(const TCassSource& source) {
  piece_ = readWhole(client_, source.keyspace, TCqlSelect(source.query), options_.stop);
  rows_.describe(piece_);
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

const TCassandraReader::TNested& TCassandraReader::nestedQuery(TCassSource& source) {
  const std::string key = source.keyspace + '\n' + source.query;
  const auto found = nestedQueries_.find(key);
  if (found != nestedQueries_.end()) return found->second;
  source.useKeyspace(client_);
  TMarkedCql marked = markParameters(source.query);
  TNested nested{std::move(marked.cql), std::move(marked.parameters), {}, {}};
  nested.prepared = client_.prepare(nested.cql);
  for (const std::string& type : nested.prepared.types) nested.types.push_back(TCassType::fromClass(type));
  if (nested.types.size() != nested.parameters.size())
    throw TCassandraError(TCassandraError::TWhy::Refused,
                          "The server counts other parameters in the nested query: " + source.query);
  return nestedQueries_.emplace(key, std::move(nested)).first->second;
}

const TValue& TCassandraReader::parameterValue(const TObject& parent, const std::string& name) const {
  if (const TValue* value = findByPath(parent, name)) return *value;
  // A null column is not in the row when nulls are left out.
  const TCassRows& columns = nesting_.empty() ? rows_ : *nesting_.back();
  const std::string outer = name.substr(0, name.find('.'));
  const bool isNull =
      columns.hasColumn(name) || (columns.hasColumn(outer) && !parent.findIgnoringCase(outer));
  if (isNull) return nullValue;
  throw TStoreError(TStoreErrorKind::Read, "The parent row has no field for the query parameter :" + name);
}

/// The parent's values by the types of the markers, so that nothing in them can change the query. Empty for
/// a null: no row equals it.
std::vector<std::string> TCassandraReader::processCassandraParams(const TNested& query,
                                                                  const TObject& parent) const {
  std::vector<std::string> values;
  for (std::size_t i = 0; i < query.parameters.size(); ++i) {
    const TValue& value = parameterValue(parent, query.parameters[i]);
    if (value.isNull()) return {};
    try {
      values.push_back(cassBytes(value, query.types[i], lengths_, dates_));
    } catch (const std::runtime_error& error) {
      throw TStoreError(TStoreErrorKind::Read,
                        "The query parameter :" + query.parameters[i] + " does not fit: " + error.what());
    }
  }
  return values;
}

TCassResult TCassandraReader::runNestedOnce(TCassSource& source, const TObject& parent) {
  try {
    const TNested& nested = nestedQuery(source);
    const std::vector<std::string> values = processCassandraParams(nested, parent);
    if (values.size() < nested.parameters.size()) return {};
    return client_.executePrepared(nested.prepared.id, values, client_.readLevel());
  } catch (const TCassandraError& error) {
    if (error.connectionLost() || error.why() == TCassandraError::TWhy::NotPrepared) nestedQueries_.clear();
    throw;
  }
}

/// A server that was waited for in vain is not waited for by every row.
TCassResult TCassandraReader::runNested(TCassSource& source, const TObject& parent) {
  const TCassRetry retry(options_.stop, gone_ ? 1 : TCassRetry::usual);
  const auto lose = [this](const std::exception& error, bool gone) {
    gone_ = gone;
    throw TStoreError(TStoreErrorKind::Read, error.what());
  };
  try {
    TCassResult result = readPatiently(client_, retry, [&] { return runNestedOnce(source, parent); });
    gone_ = false;
    return result;
  } catch (const TCassandraError& error) {
    lose(error, error.connectionLost());
  } catch (const TStoreError& error) {
    if (error.kind() != TStoreErrorKind::Connect) throw;
    lose(error, true);
  }
  return {};
}

void TCassandraReader::nested(const TDataSource& source, const TObject& parent, const TRowSink& row) {
  TCassSource query(source, TStoreErrorKind::Read);
  const TCassResult result = runNested(query, parent);
  TCassRows rows(lengths_);
  rows.describe(result);
  struct TNesting {
    std::vector<const TCassRows*>& all;
    ~TNesting() { all.pop_back(); }
  };
  nesting_.push_back(&rows);
  const TNesting leave{nesting_};
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
