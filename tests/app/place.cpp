#include "app/place.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/cassandraconnector.h"
#include "connectors/hbase/hbaseclient.h"
#include "connectors/hbase/hbaseconnector.h"
#include "connectors/jsonfile/jsonfileconnector.h"
#include "connectors/mongodb/mongoconnector.h"
#include "support/typedjson.h"

namespace hollowmere {

namespace {

bool isPeople(const std::string& name) { return name.starts_with("people"); }

TValue record(const char* dbType, std::uint16_t port, const TObject& more = {}) {
  TObject made{{"dbtype", dbType}, {"host", "127.0.0.1"}, {"port", static_cast<int>(port)}};
  for (const TMember& member : more) made.add(member.name, member.value);
  return made;
}

TStoreOptions optionsFor(TValue connection) {
  TStoreOptions options;
  options.connection = std::move(connection);
  return options;
}

/// Stores order the columns of a row each in its way.
TObject sortedByName(const TObject& row) {
  std::map<std::string, TValue> members;
  for (const TMember& member : row) members[member.name] = member.value;
  TObject sorted;
  for (const auto& [name, value] : members) sorted.add(name, value);
  return sorted;
}

class TFilePlace : public TPlace {
 public:
  explicit TFilePlace(const TTempFolder& folder) : TPlace(makeJsonFileConnector()), folder_(folder) {}

  [[nodiscard]] TProjectSide side(const std::string& name) const override { return {dbType(), file(name)}; }
  [[nodiscard]] TDataSource source(const std::string& name) const override { return {name, file(name), 0}; }
  [[nodiscard]] std::vector<std::string> content(const std::string& name) const override {
    std::istringstream text(readBytes(file(name)));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line, '\r');) lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
  }

 private:
  [[nodiscard]] std::string file(const std::string& name) const { return folder_.file(name + ".json"); }

  const TTempFolder& folder_;
};

class TMongoPlace : public TPlace {
 public:
  explicit TMongoPlace(std::uint16_t port) : TPlace(makeMongoConnector()), port_(port) {}

  [[nodiscard]] TProjectSide side(const std::string& /*name*/) const override {
    return {dbType(), record("MongoDB", port_, {{"database", "shop"}, {"user", ""}, {"password", ""}})};
  }
  [[nodiscard]] TDataSource source(const std::string& name) const override { return query(name, ""); }
  [[nodiscard]] TDataSource nested(const std::string& items) const override {
    return query(items, R"({"owner": :_id})");
  }

 private:
  static TDataSource query(const std::string& name, const char* text) {
    return {name, TObject{{"database", "shop"}, {"collection", name}, {"query", text}}, 0};
  }

  std::uint16_t port_;
};

class TCassandraPlace : public TPlace {
 public:
  explicit TCassandraPlace(std::uint16_t port, casswire::TCassandraStandIn* standIn = nullptr)
      : TPlace(makeCassandraConnector()), port_(port), standIn_(standIn) {}

  [[nodiscard]] TProjectSide side(const std::string& /*name*/) const override {
    return {dbType(), record("Cassandra", port_, {{"user", ""}, {"password", ""}})};
  }
  void make(const std::string& name) override {
    const auto columns = isPeople(name) ? people() : items();
    if (standIn_) return standIn_->add("shop." + name, columns);
    execute(
        "create keyspace if not exists shop with replication = {'class': 'SimpleStrategy', "
        "'replication_factor': 1}");
    std::string cql = "create table shop." + name + " (", keys;
    for (const casswire::TColumn& column : columns) {
      cql += '"' + column.name + "\" " + column.type + ", ";
      if (column.kind != "regular") keys += (keys.empty() ? "\"" : ", \"") + column.name + '"';
    }
    execute(cql + "primary key (" + keys + "))");
  }
  [[nodiscard]] TDataSource source(const std::string& name) const override {
    return query(name, "select * from " + name);
  }
  [[nodiscard]] TDataSource nested(const std::string& items) const override {
    return query(items, R"(select "_id", what from )" + items + " where owner = :_id");
  }
  [[nodiscard]] std::string target(const std::string& name) const override { return "shop." + name; }

 private:
  static std::vector<casswire::TColumn> people() {
    return {{"_id", "int", "partition_key", {}},   {"name", "text", "regular", {}},
            {"flag", "boolean", "regular", {}},    {"big", "bigint", "regular", {}},
            {"ratio", "double", "regular", {}},    {"born", "timestamp", "regular", {}},
            {"photo", "blob", "regular", {}},      {"amount", "decimal", "regular", {}},
            {"tags", "list<text>", "regular", {}}, {"address", "map<text, text>", "regular", {}},
            {"note", "text", "regular", {}},       {"items", "list<frozen<map<text, text>>>", "regular", {}}};
  }
  static std::vector<casswire::TColumn> items() {
    return {{"owner", "int", "partition_key", {}},
            {"_id", "text", "clustering", {}},
            {"what", "text", "regular", {}}};
  }
  static TDataSource query(const std::string& name, const std::string& cql) {
    return {name, TObject{{"keyspace", "shop"}, {"columnfamily", name}, {"query", cql}}, 0};
  }
  void execute(const std::string& cql) const {
    TCassandraClient(optionsFor(side({}).connection), "No connection.").execute(cql, TConsistency::One);
  }

  std::uint16_t port_;
  casswire::TCassandraStandIn* standIn_;
};

class THBasePlace : public TPlace {
 public:
  explicit THBasePlace(std::uint16_t port) : TPlace(makeHBaseConnector()), port_(port) {}

  [[nodiscard]] TProjectSide side(const std::string& /*name*/) const override {
    return {dbType(), record("HBase", port_)};
  }
  void make(const std::string& name) override {
    connectHBase(optionsFor(side({}).connection))->create(name, {{.name = "cf"}});
  }
  [[nodiscard]] TDataSource source(const std::string& name) const override { return query(name, ""); }
  [[nodiscard]] TDataSource nested(const std::string& items) const override {
    return query(items, "SingleColumnValueFilter('cf', 'owner', =, 'binary::rowkey')");
  }
  [[nodiscard]] std::string field(const std::string& name) const override {
    return name == "_id" ? "rowkey" : "cf:" + name;
  }

 private:
  static TDataSource query(const std::string& name, const char* filter) {
    return {name, TObject{{"table", name}, {"query", filter}}, 0};
  }

  std::uint16_t port_;
};

}  // namespace

std::vector<std::string> TPlace::content(const std::string& name) const {
  const auto reader = connector_->connectSource(optionsFor(side(name).connection));
  reader->openRoot(source(name), {});
  std::vector<std::string> rows;
  while (const auto row = reader->next()) rows.push_back(typedText(sortedByName(*row)));
  std::sort(rows.begin(), rows.end());
  return rows;
}

std::unique_ptr<TPlace> makeFilePlace(const TTempFolder& folder) {
  return std::make_unique<TFilePlace>(folder);
}
std::unique_ptr<TPlace> makeMongoPlace(std::uint16_t port) { return std::make_unique<TMongoPlace>(port); }
std::unique_ptr<TPlace> makeCassandraPlace(std::uint16_t port) {
  return std::make_unique<TCassandraPlace>(port);
}
std::unique_ptr<TPlace> makeCassandraPlace(casswire::TCassandraStandIn& server) {
  return std::make_unique<TCassandraPlace>(server.port(), &server);
}
std::unique_ptr<TPlace> makeHBasePlace(std::uint16_t port) { return std::make_unique<THBasePlace>(port); }

}  // namespace hollowmere
