#include "connectors/cassandra/cassschema.h"

#include <algorithm>
#include <tuple>

#include "connectors/cassandra/casstype.h"
#include "connectors/cassandra/cassvalue.h"
#include "connectors/cassandra/cqltext.h"
#include "connectors/cassandranumber.h"
#include "connectors/nosqlcommon.h"

namespace hollowmere {

namespace {

/// A result whose columns are asked for by name.
class TSchemaRows {
 public:
  explicit TSchemaRows(TCassResult result) : result_(std::move(result)) {}

  [[nodiscard]] std::size_t size() const { return result_.rows.size(); }
  [[nodiscard]] const TCassCell& cell(std::size_t row, std::string_view column) const {
    static const TCassCell none;
    const auto found = std::find(result_.columns.begin(), result_.columns.end(), column);
    if (found == result_.columns.end()) return none;
    return result_.rows[row][static_cast<std::size_t>(found - result_.columns.begin())];
  }
  [[nodiscard]] std::string text(std::size_t row, std::string_view column) const {
    return cell(row, column).value_or("");
  }
  [[nodiscard]] int number(std::size_t row, std::string_view column) const {
    const TCassCell& bytes = cell(row, column);
    return bytes && bytes->size() == 4 ? static_cast<int>(bigEndian(*bytes)) : 0;
  }
  /// A collection as JSON has it.
  [[nodiscard]] TValue value(std::size_t row, const std::string& column) const {
    const TCassCell& bytes = cell(row, column);
    const auto type = result_.types.find(column);
    if (!bytes || type == result_.types.end()) return nullptr;
    return cassValue(*bytes, TCassType::fromClass(type->second), TCollectionLengths::Int32,
                     TDateTimeText("C"));
  }

 private:
  TCassResult result_;
};

TKeyRole roleOf(std::string_view kind) {
  if (kind == "partition_key") return TKeyRole::Partition;
  if (kind == "clustering_key" || kind == "clustering") return TKeyRole::Clustering;
  return kind == "static" ? TKeyRole::Static : TKeyRole::Regular;
}

}  // namespace

std::string validatorText(const std::string& validator) {
  const std::string text = CassandraValidatorToCqlType(validator);
  // The table of names tells a timeuuid, which is a uuid with a time in it, for a uuid.
  const bool known =
      text.find("unknown") == std::string::npos && validator.find("TimeUUIDType") == std::string::npos;
  return known ? text : TCassType::fromClass(validator).cql();
}

std::string TCassSchema::where(const std::string& keyspace, const std::string& table) const {
  return " where keyspace_name = " + cqlQuoted(keyspace) +
         (modern_ ? " and table_name = " : " and columnfamily_name = ") + cqlQuoted(table);
}

std::vector<std::string> TCassSchema::names(const std::string& cql, const char* column) {
  const TSchemaRows rows(client_.execute(cql, TConsistency::One));
  std::vector<std::string> found;
  for (std::size_t i = 0; i < rows.size(); ++i) found.push_back(rows.text(i, column));
  std::sort(found.begin(), found.end());
  return found;
}

std::vector<std::string> TCassSchema::keyspaces() {
  return names(modern_ ? "select * from system_schema.keyspaces" : "select * from system.schema_keyspaces",
               "keyspace_name");
}

std::vector<std::string> TCassSchema::tables(const std::string& keyspace) {
  if (modern_)
    return names("select table_name from system_schema.tables where keyspace_name = " + cqlQuoted(keyspace),
                 "table_name");
  return names("select columnfamily_name from system.schema_columnfamilies where keyspace_name = " +
                   cqlQuoted(keyspace),
               "columnfamily_name");
}

std::vector<TCassColumn> TCassSchema::columns(const std::string& keyspace, const std::string& table) {
  const std::string select =
      modern_ ? "select column_name, type, kind, position, clustering_order from system_schema.columns"
              : "select column_name, validator, type, component_index from system.schema_columns";
  const TSchemaRows rows(client_.execute(select + where(keyspace, table), TConsistency::One));
  std::vector<TCassColumn> columns;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    TCassColumn column;
    column.name = rows.text(i, "column_name");
    column.role = roleOf(rows.text(i, modern_ ? "kind" : "type"));
    column.position = column.isKey() ? rows.number(i, modern_ ? "position" : "component_index") : 0;
    column.type = modern_ ? rows.text(i, "type") : validatorText(rows.text(i, "validator"));
    column.descending = modern_ ? rows.text(i, "clustering_order") == "desc"
                                : rows.text(i, "validator").find("ReversedType(") != std::string::npos;
    if (!column.name.empty()) columns.push_back(std::move(column));
  }
  if (modern_ && !columns.empty()) hideCompact(keyspace, table, columns);
  const auto rank = [](const TCassColumn& c) {
    return std::make_tuple(c.isKey() ? static_cast<int>(c.role) : 2, c.position, std::string_view(c.name));
  };
  std::sort(columns.begin(), columns.end(), [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
  return columns;
}

/// Tables with compact storage list columns that no statement sees: the value of one that has none, and, when
/// it has no clustering columns, those that stand for them, while its own are called static.
void TCassSchema::hideCompact(const std::string& keyspace, const std::string& table,
                              std::vector<TCassColumn>& columns) {
  std::erase_if(columns,
                [](const TCassColumn& c) { return c.role == TKeyRole::Regular && c.type == "empty"; });
  const bool statics = std::any_of(columns.begin(), columns.end(),
                                   [](const TCassColumn& c) { return c.role == TKeyRole::Static; });
  if (!statics) return;
  const TSchemaRows rows(
      client_.execute("select flags from system_schema.tables" + where(keyspace, table), TConsistency::One));
  if (rows.size() == 0) return;
  const TValue flags = rows.value(0, "flags");
  if (!flags.is(TKind::List)) return;
  for (const TValue& flag : flags.asList())
    if (flag == TValue("compound")) return;
  std::erase_if(columns, [](const TCassColumn& c) {
    return c.role == TKeyRole::Clustering || c.role == TKeyRole::Regular;
  });
  for (TCassColumn& column : columns)
    if (column.role == TKeyRole::Static) column.role = TKeyRole::Regular;
}

std::vector<TCassIndex> TCassSchema::indexes(const std::string& keyspace, const std::string& table) {
  const TSchemaRows rows(
      client_.execute((modern_ ? "select index_name, kind, options from system_schema.indexes"
                               : "select column_name, index_name, index_type from system.schema_columns") +
                          where(keyspace, table),
                      TConsistency::One));
  std::vector<TCassIndex> indexes;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    TCassIndex index{rows.text(i, "index_name"), rows.text(i, modern_ ? "kind" : "index_type"),
                     rows.text(i, "column_name")};
    if (modern_) {
      const TValue options = rows.value(i, "options");
      const TValue* target = options.is(TKind::Object) ? options.asObject().find("target") : nullptr;
      if (target) index.target = textForm(*target);
    }
    if (!index.name.empty()) indexes.push_back(std::move(index));
  }
  return indexes;
}

std::string TCassSchema::columnType(const std::string& keyspace, const std::string& table,
                                    const std::string& column) {
  const TSchemaRows rows(client_.execute(
      (modern_ ? "select type from system_schema.columns" : "select validator from system.schema_columns") +
          where(keyspace, table) + " and column_name = " + cqlQuoted(column),
      TConsistency::One));
  const std::string type = rows.size() == 0 ? "" : rows.text(0, modern_ ? "type" : "validator");
  return type.empty() ? "text" : modern_ ? type : validatorText(type);
}

TKeyRole TCassSchema::columnKind(const std::string& keyspace, const std::string& table,
                                 const std::string& column) {
  const TSchemaRows rows(client_.execute(
      (modern_ ? "select kind from system_schema.columns" : "select type from system.schema_columns") +
          where(keyspace, table) + " and column_name = " + cqlQuoted(column),
      TConsistency::One));
  return rows.size() == 0 ? TKeyRole::Regular : roleOf(rows.text(0, modern_ ? "kind" : "type"));
}

}  // namespace hollowmere
