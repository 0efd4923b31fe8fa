#include "support/casswire/tables.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "connectors/cassandra/cqltext.h"
#include "connectors/cassandranumber.h"
#include "json/value.h"

namespace hollowmere::casswire {

namespace {

constexpr char marshal[] = "org.apache.cassandra.db.marshal.";

const std::map<std::string, std::string> simpleClasses = {
    {"text", "UTF8Type"},        {"int", "Int32Type"},           {"bigint", "LongType"},
    {"boolean", "BooleanType"},  {"double", "DoubleType"},       {"blob", "BytesType"},
    {"uuid", "UUIDType"},        {"timestamp", "TimestampType"}, {"varint", "IntegerType"},
    {"decimal", "DecimalType"},  {"float", "FloatType"},         {"timeuuid", "TimeUUIDType"},
    {"inet", "InetAddressType"}, {"ascii", "AsciiType"},         {"counter", "CounterColumnType"}};

std::string classOf(const std::string& type) {
  const auto found = simpleClasses.find(type);
  if (found != simpleClasses.end()) return marshal + found->second;
  const std::size_t open = type.find('<');
  if (open == std::string::npos) return marshal + std::string("BytesType");
  const std::string outer = type.substr(0, open);
  const std::string inner = type.substr(open + 1, type.size() - open - 2);
  if (outer == "frozen") return marshal + ("FrozenType(" + classOf(inner)) + ")";
  if (outer == "map") {
    const std::size_t comma = inner.find(',');
    return marshal + ("MapType(" + classOf(inner.substr(0, comma))) + "," +
           classOf(inner.substr(inner.find_first_not_of(" ", comma + 1))) + ")";
  }
  return marshal + std::string(outer == "set" ? "SetType(" : "ListType(") + classOf(inner) + ")";
}

/// Order of two values of one column.
int compare(const std::string& type, const std::string& a, const std::string& b) {
  const bool number = type == "int" || type == "bigint" || type == "timestamp";
  if (!number) return a.compare(b);
  const std::int64_t left = hollowmere::bigEndian(a), right = hollowmere::bigEndian(b);
  return left < right ? -1 : left > right ? 1 : 0;
}

/// A server keeps nothing of a collection without elements, unless it is frozen. value: its count alone.
bool isEmptyCollection(const std::string& type, const std::string& value) {
  const bool collection = type.starts_with("list<") || type.starts_with("set<") || type.starts_with("map<");
  return collection && value.find_first_not_of('\0') == std::string::npos;
}

std::string keyBytes(const TTable& table, const TRow& row, const char* most) {
  std::string bytes;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const bool key = table.columns[i].kind == "partition_key" || (most && table.columns[i].kind == most);
    if (key) bytes += bigEndian(row[i].value_or("").size(), 4) + row[i].value_or("");
  }
  return bytes;
}

}  // namespace

std::string bigEndian(std::uint64_t number, int bytes) {
  std::string out;
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) out += static_cast<char>(number >> shift & 0xFF);
  return out;
}

std::int64_t tokenOf(const std::string& bytes) {
  std::uint64_t hash = 14695981039346656037ULL;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
  hash ^= hash >> 32;
  return static_cast<std::int64_t>(hash * 0x9E3779B97F4A7C15ULL);
}

std::size_t TTable::columnAt(const std::string& name) const {
  return static_cast<std::size_t>(
      std::find_if(columns.begin(), columns.end(), [&](const TColumn& c) { return c.name == name; }) -
      columns.begin());
}

std::int64_t TTable::token(const TRow& row) const { return tokenOf(keyBytes(*this, row, nullptr)); }

void TTable::put(const TRow& row) {
  TRow& kept = rows[keyBytes(*this, row, "clustering")];
  kept.resize(columns.size());
  for (std::size_t i = 0; i < row.size(); ++i)
    if (row[i]) kept[i] = isEmptyCollection(columns[i].type, *row[i]) ? TCell() : row[i];
}

void TTable::addTo(TRow row) {
  const TRow& before = rows[keyBytes(*this, row, "clustering")];
  for (std::size_t i = 0; i < before.size(); ++i)
    if (columns[i].type == "counter" && before[i] && row[i])
      row[i] = bigEndian(
          static_cast<std::uint64_t>(hollowmere::bigEndian(*before[i]) + hollowmere::bigEndian(*row[i])), 8);
  put(row);
}

/// One statement, taken apart as it runs. Without values only its markers are gathered.
class TStatement {
 public:
  TStatement(TTables& tables, const std::string& cql, std::string keyspace,
             const std::vector<std::string>* values)
      : tables_(tables), tokens_(cqlTokens(cql)), keyspace_(std::move(keyspace)), values_(values) {}

  TRows run() {
    if (tokens_.empty()) throw TRefusal{"line 0:-1 no viable alternative at input '<EOF>'"};
    if (isWord("select")) return select();
    if (isWord("insert")) return insert();
    if (isWord("update")) return update();
    if (isWord("begin")) {
      at_ += 3;
      while (!isWord("apply")) {
        insert();
        pass(";");
      }
      return {};
    }
    throw TRefusal{"line 1:0 no viable alternative at input '" + std::string(tokens_[0].text) + "'"};
  }

  std::vector<std::string> markers;

 private:
  struct TCondition {
    std::size_t column = 0;
    bool token = false;
    std::string compare;
    std::string value;
    std::optional<std::int64_t> tokenValue;
  };

  [[nodiscard]] bool atEnd() const { return at_ >= tokens_.size(); }
  [[nodiscard]] bool isWord(const char* word) const { return !atEnd() && tokens_[at_].isWord(word); }
  bool pass(const std::string& text) {
    if (atEnd() || !equalIgnoringCase(tokens_[at_].text, text)) return false;
    ++at_;
    return true;
  }
  void expect(const std::string& text) {
    if (!pass(text))
      throw TRefusal{"line 1:" + std::to_string(atEnd() ? 0 : tokens_[at_].begin) + " missing '" + text +
                     "'"};
  }
  std::string name() {
    if (atEnd()) throw TRefusal{"line 1:0 mismatched input '<EOF>'"};
    return tokens_[at_++].name();
  }

  /// A marker's value; text and numbers stand for themselves.
  std::string value(const std::string& classText) {
    if (pass("?")) {
      markers.push_back(classText);
      return values_ && marker_ < values_->size() ? (*values_)[marker_++] : std::string();
    }
    const TCqlToken token = tokens_.at(at_++);
    if (token.kind == TCqlToken::TKind::Text) return std::string(token.text.substr(1, token.text.size() - 2));
    return bigEndian(std::stoull(std::string(token.text)), classText.ends_with("LongType") ? 8 : 4);
  }

  TTable& table() {
    std::string first = name();
    if (!pass(".")) return tables_.find(keyspace_, table_ = first);
    return tables_.find(keyspace_ = first, table_ = name());
  }

  TRows insert() {
    expect("insert");
    expect("into");
    TTable& into = table();
    expect("(");
    std::vector<std::size_t> at;
    do {
      const std::string column = name();
      at.push_back(into.columnAt(column));
      if (at.back() == into.columns.size()) throw TRefusal{"Unknown identifier " + column};
    } while (pass(","));
    expect(")");
    expect("values");
    expect("(");
    TRow row(into.columns.size());
    for (std::size_t i = 0; i < at.size(); ++i) {
      if (i > 0) expect(",");
      row[at[i]] = value(into.columns[at[i]].classText);
    }
    expect(")");
    for (std::size_t i = 0; i < into.columns.size(); ++i)
      if (into.columns[i].kind != "regular" && !row[i])
        throw TRefusal{"Some partition key parts are missing: " + into.columns[i].name};
    if (!values_) return {};
    for (std::size_t i = 0; i < into.columns.size(); ++i)
      if (into.columns[i].kind == "partition_key" && row[i]->empty()) throw TRefusal{"Key may not be empty"};
    ++tables_.written;
    if (!tables_.discards) into.put(row);
    return {};
  }

  /// "update t set c=c+? where k=?", of counters.
  TRows update() {
    ++at_;
    TTable& into = table();
    expect("set");
    TRow row(into.columns.size());
    do {
      const std::size_t at = into.columnAt(name());
      at_ += 3;
      row.at(at) = value(into.columns.at(at).classText);
    } while (pass(","));
    for (const TCondition& condition : conditions(into)) row[condition.column] = condition.value;
    for (std::size_t i = 0; i < into.columns.size(); ++i)
      if (into.columns[i].kind != "regular" && !row[i])
        throw TRefusal{"Some partition key parts are missing: " + into.columns[i].name};
    if (!values_) return {};
    into.addTo(row);
    ++tables_.written;
    return {};
  }

  std::vector<TCondition> conditions(const TTable& from) {
    std::vector<TCondition> found;
    if (!pass("where")) return found;
    do {
      TCondition condition;
      condition.token = isWord("token");
      if (condition.token) {
        while (!pass(")")) ++at_;
      } else {
        const std::string column = name();
        condition.column = from.columnAt(column);
        if (condition.column == from.columns.size()) throw TRefusal{"Undefined column name " + column};
      }
      condition.compare = std::string(tokens_.at(at_++).text);
      if (pass("=")) condition.compare += "=";
      if (condition.token && isWord("token")) {
        TRow key(from.columns.size());
        at_ += 2;
        std::size_t part = 0;
        do {
          key[part] = value(from.columns[part].classText);
          ++part;
        } while (pass(","));
        expect(")");
        condition.tokenValue = from.token(key);
        if (table_ == "rows" && tables_.virtualRows > 0 && values_)
          condition.tokenValue = hollowmere::bigEndian(*key[0]);
      } else {
        condition.value = value(condition.token ? std::string(marshal) + "LongType"
                                                : from.columns[condition.column].classText);
        if (condition.token && values_) condition.tokenValue = hollowmere::bigEndian(condition.value);
      }
      found.push_back(std::move(condition));
    } while (pass("and"));
    return found;
  }

  static bool holds(int order, const std::string& compare) {
    if (compare == "=") return order == 0;
    if (compare == ">") return order > 0;
    if (compare == ">=") return order >= 0;
    return compare == "<" ? order < 0 : order <= 0;
  }

  static bool matches(const TTable& from, const TRow& row, const std::vector<TCondition>& conditions) {
    return std::all_of(conditions.begin(), conditions.end(), [&](const TCondition& c) {
      if (c.token) {
        const std::int64_t token = from.token(row), bound = c.tokenValue.value_or(0);
        return holds(token < bound ? -1 : token > bound ? 1 : 0, c.compare);
      }
      return row[c.column] && holds(compare(from.columns[c.column].type, *row[c.column], c.value), c.compare);
    });
  }

  /// As a server gives them: partitions by token, rows in them by their clustering columns.
  static std::vector<const TRow*> sorted(const TTable& from) {
    std::vector<std::pair<std::int64_t, const TRow*>> rows;
    for (const auto& [key, row] : from.rows) rows.emplace_back(from.token(row), &row);
    std::stable_sort(rows.begin(), rows.end(), [&](const auto& a, const auto& b) {
      if (a.first != b.first) return a.first < b.first;
      for (std::size_t i = 0; i < from.columns.size(); ++i) {
        if (from.columns[i].kind != "clustering") continue;
        const int order =
            compare(from.columns[i].type, (*a.second)[i].value_or(""), (*b.second)[i].value_or(""));
        if (order != 0) return (order < 0) != from.columns[i].descending;
      }
      return false;
    });
    std::vector<const TRow*> found;
    for (const auto& [token, row] : rows) found.push_back(row);
    return found;
  }

  TRows select() {
    ++at_;
    std::vector<std::string> names;
    bool count = false;
    if (!pass("*")) do {
        names.push_back(name());
        if (names.back() == "count" && pass("(")) {
          ++at_;
          expect(")");
          count = true;
        }
      } while (pass(","));
    expect("from");
    TTable& from = table();
    const std::vector<TCondition> wanted = conditions(from);
    std::int64_t limit = std::numeric_limits<std::int64_t>::max();
    if (pass("limit")) limit = std::stoll(std::string(tokens_.at(at_++).text));
    if (pass("allow")) expect("filtering");
    pass(";");
    if (!atEnd())
      throw TRefusal{"line 1:" + std::to_string(tokens_[at_].begin) + " no viable alternative at input '" +
                     std::string(tokens_[at_].text) + "'"};
    TRows result;
    if (count) return counted(from, wanted);
    std::vector<std::size_t> at;
    for (std::size_t i = 0; names.empty() && i < from.columns.size(); ++i) at.push_back(i);
    for (const std::string& each : names) {
      at.push_back(from.columnAt(each));
      if (at.back() == from.columns.size()) throw TRefusal{"Undefined column name " + each};
    }
    for (const std::size_t i : at) result.columns.push_back(from.columns[i]);
    if (!values_) return result;
    if (table_ == "rows" && tables_.virtualRows > 0) return virtualRows(wanted, limit);
    for (const TRow* row : sorted(from)) {
      if (static_cast<std::int64_t>(result.rows.size()) == limit) break;
      if (!matches(from, *row, wanted)) continue;
      TRow& cells = result.rows.emplace_back();
      for (const std::size_t i : at) cells.push_back((*row)[i]);
    }
    return result;
  }

  TRows counted(const TTable& from, const std::vector<TCondition>& wanted) {
    std::int64_t count = 0;
    if (table_ == "rows" && tables_.virtualRows > 0 && values_) {
      std::optional<std::int64_t> above, upTo;
      for (const TCondition& condition : wanted)
        (condition.compare == ">" ? above : upTo) = condition.tokenValue;
      count = tables_.virtualCount(above, upTo);
    }
    for (const auto& [key, row] : from.rows) count += values_ && matches(from, row, wanted);
    return {{{"count", "bigint", "regular", std::string(marshal) + "LongType"}},
            {{bigEndian(static_cast<std::uint64_t>(count), 8)}}};
  }

  TRows virtualRows(const std::vector<TCondition>& wanted, std::int64_t limit) {
    std::optional<std::int64_t> above, upTo;
    for (const TCondition& condition : wanted)
      (condition.compare == ">" ? above : upTo) = condition.tokenValue;
    return tables_.virtualSelect(above, upTo, limit);
  }

  TTables& tables_;
  std::vector<TCqlToken> tokens_;
  std::size_t at_ = 0;
  std::string keyspace_;
  std::string table_;
  const std::vector<std::string>* values_;
  std::size_t marker_ = 0;
};

TTables::TTables(const std::string& releaseVersion) : modern_(releaseVersion[0] >= '3') {
  add("system.local", {{"key", "text", "partition_key", {}}, {"release_version", "text", "regular", {}}});
  tables_.at("system.local").put({"local", releaseVersion});
  const auto schema = [this](const std::string& name, const std::vector<std::string>& keys,
                             const std::vector<std::string>& others) {
    TTable& table = tables_[name];
    for (const std::string& key : keys)
      table.columns.push_back(
          {key, "text", &key == &keys[0] ? "partition_key" : "clustering", classOf("text")});
    for (const std::string& other : others) {
      const bool number = other == "position" || other == "component_index";
      const std::string type = number ? "int" : other == "flags" ? "frozen<set<text>>" : "text";
      table.columns.push_back({other, type, "regular", classOf(type)});
    }
  };
  if (modern_) {
    schema("system_schema.keyspaces", {"keyspace_name"}, {});
    schema("system_schema.tables", {"keyspace_name", "table_name"}, {"flags"});
    schema("system_schema.columns", {"keyspace_name", "table_name", "column_name"},
           {"clustering_order", "kind", "position", "type"});
    schema("system_schema.indexes", {"keyspace_name", "table_name", "index_name"}, {"kind", "options"});
  } else {
    schema("system.schema_keyspaces", {"keyspace_name"}, {"strategy_class"});
    schema("system.schema_columnfamilies", {"keyspace_name", "columnfamily_name"}, {"type"});
    schema("system.schema_columns", {"keyspace_name", "columnfamily_name", "column_name"},
           {"component_index", "index_name", "index_type", "type", "validator"});
  }
}

void TTables::add(const std::string& name, std::vector<TColumn> columns) {
  const std::size_t dot = name.find('.');
  for (TColumn& column : columns) column.classText = classOf(column.type);
  if (name != "system.local") addSchema(name.substr(0, dot), name.substr(dot + 1), columns);
  tables_[name].columns = std::move(columns);
}

void TTables::addSchema(const std::string& keyspace, const std::string& table,
                        const std::vector<TColumn>& columns) {
  tables_.at(modern_ ? "system_schema.keyspaces" : "system.schema_keyspaces").put({keyspace});
  const std::string compound = bigEndian(1, 4) + bigEndian(8, 4) + "compound";
  tables_.at(modern_ ? "system_schema.tables" : "system.schema_columnfamilies")
      .put({keyspace, table, modern_ ? compound : std::string("Standard")});
  std::map<std::string, int> positions;
  for (const TColumn& column : columns) {
    const std::string position =
        bigEndian(static_cast<std::uint32_t>(column.kind == "regular" ? -1 : positions[column.kind]++), 4);
    if (modern_) {
      tables_.at("system_schema.columns")
          .put({keyspace, table, column.name,
                column.kind != "clustering" ? "none"
                : column.descending         ? "desc"
                                            : "asc",
                column.kind, position, column.type});
      continue;
    }
    const bool only = column.kind == "partition_key" &&
                      std::count_if(columns.begin(), columns.end(),
                                    [](const TColumn& c) { return c.kind == "partition_key"; }) == 1;
    const std::string validator = column.descending
                                      ? std::string(marshal) + "ReversedType(" + column.classText + ")"
                                      : column.classText;
    tables_.at("system.schema_columns")
        .put({keyspace, table, column.name, only ? TCell() : TCell(position), TCell(), TCell(),
              column.kind == "clustering" ? "clustering_key" : column.kind, validator});
  }
}

TTable& TTables::at(const std::string& name) { return tables_.at(name); }

bool TTables::hasKeyspace(const std::string& keyspace) const {
  return std::any_of(tables_.begin(), tables_.end(),
                     [&](const auto& entry) { return entry.first.starts_with(keyspace + "."); });
}

TTable& TTables::find(const std::string& keyspace, const std::string& table) {
  if (!hasKeyspace(keyspace)) throw TRefusal{"Keyspace " + keyspace + " does not exist"};
  const auto found = tables_.find(keyspace + "." + table);
  if (found == tables_.end())
    throw TRefusal{(modern_ ? "unconfigured table " : "unconfigured columnfamily ") + table};
  return found->second;
}

std::vector<std::string> TTables::markers(const std::string& cql, const std::string& keyspace) const {
  TStatement statement(const_cast<TTables&>(*this), cql, keyspace, nullptr);
  statement.run();
  return std::move(statement.markers);
}

TRows TTables::run(const std::string& cql, const std::string& keyspace,
                   const std::vector<std::string>& values) {
  return TStatement(*this, cql, keyspace, &values).run();
}

/// Row i has the key that is its token, spread over all tokens.
std::int64_t TTables::virtualKey(std::int64_t row) const {
  const std::uint64_t step =
      std::numeric_limits<std::uint64_t>::max() / static_cast<std::uint64_t>(virtualRows);
  return static_cast<std::int64_t>((std::uint64_t{1} << 63) + 1 + step * static_cast<std::uint64_t>(row));
}

/// The first row whose key is above the bound.
std::int64_t TTables::virtualRowAbove(std::optional<std::int64_t> bound) const {
  if (!bound) return 0;
  const std::uint64_t step =
      std::numeric_limits<std::uint64_t>::max() / static_cast<std::uint64_t>(virtualRows);
  auto row =
      static_cast<std::int64_t>((static_cast<std::uint64_t>(*bound) - (std::uint64_t{1} << 63)) / step);
  while (row < virtualRows && virtualKey(row) <= *bound) ++row;
  return std::min(row, virtualRows);
}

std::int64_t TTables::virtualCount(std::optional<std::int64_t> above,
                                   std::optional<std::int64_t> upTo) const {
  return (upTo ? virtualRowAbove(upTo) : virtualRows) - virtualRowAbove(above);
}

TRows TTables::virtualSelect(std::optional<std::int64_t> above, std::optional<std::int64_t> upTo,
                             std::int64_t limit) const {
  const TTable& table = tables_.at("bench.rows");
  TRows result{table.columns, {}};
  for (std::int64_t row = virtualRowAbove(above);
       row < virtualRows && limit-- > 0 && (!upTo || virtualKey(row) <= *upTo); ++row) {
    TRow cells(table.columns.size(), std::string("some forty bytes of text in every column"));
    cells[0] = bigEndian(static_cast<std::uint64_t>(virtualKey(row)), 8);
    result.rows.push_back(std::move(cells));
  }
  return result;
}

}  // namespace hollowmere::casswire
