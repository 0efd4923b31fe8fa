#include "project/querymembers.h"

namespace hollowmere {

namespace {

constexpr std::array<TQueryMember, 1> oracle{{{"query", "SQL Query", true}}};
constexpr std::array<TQueryMember, 3> mongodb{
    {{"database", "Database"}, {"collection", "Collection"}, {"query", "Query (JSON filter)", true}}};
constexpr std::array<TQueryMember, 3> cassandra{
    {{"keyspace", "Keyspace"}, {"columnfamily", "Column Family"}, {"query", "CQL Query", true}}};
constexpr std::array<TQueryMember, 2> hbase{{{"table", "Table"}, {"query", "Filter", true}}};
constexpr std::array<TQueryMember, 3> couchdb{
    {{"database", "Database"}, {"query", "Map Function", true}, {"parameters", "Parameters"}}};
constexpr std::array<TQueryMember, 3> couchbase{
    {{"bucket", "Bucket"}, {"query", "Map Function", true}, {"parameters", "Parameters"}}};

}  // namespace

std::span<const TQueryMember> queryMembers(std::string_view dbType) {
  if (dbType == dbtype::oracle) return oracle;
  if (dbType == dbtype::mongodb) return mongodb;
  if (dbType == dbtype::cassandra) return cassandra;
  if (dbType == dbtype::hbase) return hbase;
  if (dbType == dbtype::couchdb) return couchdb;
  if (dbType == dbtype::couchbase) return couchbase;
  return {};
}

std::string definitionSummary(const TValue& definition) {
  if (!isConfigured(definition)) return "Not Configured";
  if (definition.is(TKind::Text)) return definition.asText();
  std::string line;
  for (const TMember& member : definition.asObject()) {
    if (!member.value.is(TKind::Text) || member.value.asText().empty()) continue;
    if (!line.empty()) line += " · ";
    line += member.value.asText();
  }
  for (char& c : line)
    if (c == '\n' || c == '\r') c = ' ';
  return line;
}

}  // namespace hollowmere
