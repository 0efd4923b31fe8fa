#include "conformance/bed.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <mutex>
#include <set>
#include <sstream>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/cassandraconnector.h"
#include "connectors/hbase/hbaseclient.h"
#include "connectors/hbase/hbaseconnector.h"
#include "connectors/jsonfile/jsonfileconnector.h"
#include "connectors/mongodb/mongoconnector.h"
#include "support/casswire/standin.h"
#include "support/hbasewire/standin.h"
#include "support/mongowire/standin.h"
#include "support/tempfolder.h"
#include "support/toystore.h"
#include "support/typedjson.h"

namespace hollowmere {

namespace {

class TToyBed : public TBed {
 public:
  TToyBed() : connector_(makeToyConnector(server_)) { server_->faults.password = "right"; }

  [[nodiscard]] const TStoreConnector& connector() const override { return *connector_; }
  [[nodiscard]] TValue connection(const std::string& /*collection*/) const override {
    return TObject{{"password", "right"}};
  }
  [[nodiscard]] TDataSource source(const std::string& collection, const std::string& query) const override {
    return toySource(collection, collection, query);
  }
  [[nodiscard]] TValue strangersConnection() const override { return TObject{{"password", "wrong secret"}}; }
  [[nodiscard]] TValue nowhere() const override { return TObject(); }

 private:
  std::shared_ptr<TToyServer> server_ = std::make_shared<TToyServer>();
  std::unique_ptr<TStoreConnector> connector_;
};

class TJsonFileBed : public TBed {
 public:
  TJsonFileBed() : connector_(makeJsonFileConnector()) { nests = hasKeys = keepsKinds = false; }

  [[nodiscard]] const TStoreConnector& connector() const override { return *connector_; }
  [[nodiscard]] TValue connection(const std::string& collection) const override {
    const std::string name = folder_.file(collection + ".json");
    if (!std::filesystem::exists(name)) writeBytes(name, {});
    // Names may stand in double quotes.
    return "\"" + name + "\"";
  }
  [[nodiscard]] TDataSource source(const std::string& collection,
                                   const std::string& /*query*/) const override {
    return {collection, connection(collection), 0};
  }
  [[nodiscard]] TValue nowhere() const override { return folder_.file("no/such.json"); }

 private:
  TTempFolder folder_;
  std::unique_ptr<TStoreConnector> connector_;
};

class TMongoBed : public TBed {
 public:
  explicit TMongoBed(std::uint16_t port) : port_(port), connector_(makeMongoConnector()) {
    emptySource = "MongoDB data source does not return documents.";
  }

  [[nodiscard]] const TStoreConnector& connector() const override { return *connector_; }
  [[nodiscard]] TValue connection(const std::string& /*collection*/) const override {
    return mongoRecord(port_);
  }
  [[nodiscard]] TDataSource source(const std::string& collection, const std::string& query) const override {
    return mongoSource(collection, query);
  }
  [[nodiscard]] TValue strangersConnection() const override {
    return mongoRecord(port_, "nobody", "wrong secret", "SCRAM-SHA-256", "admin");
  }
  [[nodiscard]] TValue nowhere() const override { return mongoRecord(1); }

 private:
  std::uint16_t port_;
  std::unique_ptr<TStoreConnector> connector_;
};

/// Tables are made when they are first named.
class TCassandraBed : public TBed {
 public:
  explicit TCassandraBed(std::uint16_t port) : port_(port), connector_(makeCassandraConnector()) {
    keepsOrder = keepsKinds = hasKeys = takesAny = nests = false;
    rangesShares = overwrites = true;
    emptySource = "Cassandra data source CQL query does not return rows: select * from ";
    strangerFault = "and/or password are incorrect";
  }

  [[nodiscard]] const TStoreConnector& connector() const override { return *connector_; }
  [[nodiscard]] TValue connection(const std::string& collection) const override {
    makeTable(collection);
    return cassandraRecord(port_);
  }
  [[nodiscard]] std::string target(const std::string& collection) const override {
    return "shop." + collection;
  }
  [[nodiscard]] TDataSource source(const std::string& collection, const std::string& query) const override {
    return cassandraSource(collection, query);
  }
  [[nodiscard]] TValue strangersConnection() const override {
    return cassandraRecord(sharedCassandra("3.11 --auth").port(), "nobody", "wrong secret");
  }
  [[nodiscard]] TValue nowhere() const override { return cassandraRecord(1); }

 protected:
  virtual void makeTable(const std::string& name) const {
    TCassandraClient client(optionsFor(cassandraRecord(port_)), "No connection.");
    client.execute(
        "create keyspace if not exists shop with replication = {'class': 'SimpleStrategy', "
        "'replication_factor': 1}",
        TConsistency::One);
    client.execute("create table if not exists shop." + name + " (\"_id\" int primary key, name text)",
                   TConsistency::One);
  }

 private:
  std::uint16_t port_;
  std::unique_ptr<TStoreConnector> connector_;
};

class TCassandraStandInBed : public TCassandraBed {
 public:
  explicit TCassandraStandInBed(std::unique_ptr<casswire::TCassandraStandIn> server)
      : TCassandraBed(server->port()), server_(std::move(server)) {}

  [[nodiscard]] TValue strangersConnection() const override {
    server_->setPassword("right");
    return cassandraRecord(server_->port(), "nobody", "wrong secret");
  }

 protected:
  void makeTable(const std::string& name) const override {
    server_->add("shop." + name, {{"_id", "int", "partition_key", {}}, {"name", "text", "regular", {}}});
  }

 private:
  std::unique_ptr<casswire::TCassandraStandIn> server_;
};

class TStandInBed : public TMongoBed {
 public:
  explicit TStandInBed(std::unique_ptr<mongowire::TMongoStandIn> server)
      : TMongoBed(server->port()), server_(std::move(server)) {}
  ~TStandInBed() override {
    EXPECT_EQ(server_->server().violations(), 0U) << "bytes that break the protocol";
  }

 private:
  std::unique_ptr<mongowire::TMongoStandIn> server_;
};

/// HBase holds bytes in columns of families: texts stand in the family "t", bytes in "b", what else there is
/// as JSON in "j". The columns' order, which is that of their names, is made the members'.
class THBaseBed : public TBed {
 public:
  explicit THBaseBed(std::uint16_t port) : port_(port), connector_(makeHBaseConnector()) {
    jsonQueries = hasKeys = false;
    overwrites = true;
    emptySource = "Unable to retrieve rows from HBase table ";
  }

  [[nodiscard]] const TStoreConnector& connector() const override { return *connector_; }
  [[nodiscard]] TValue connection(const std::string& collection) const override {
    const std::lock_guard lock(mutex_);
    if (made_.insert(collection).second) makeHBaseTable(port_, collection, {"t", "b", "j"});
    return hbaseRecord(port_);
  }
  [[nodiscard]] TDataSource source(const std::string& collection, const std::string& query) const override {
    return hbaseSource(collection, query);
  }
  [[nodiscard]] TValue nowhere() const override { return hbaseRecord(1); }

  [[nodiscard]] TObject toStore(const TObject& document) const override {
    std::map<std::string, TValue> columns;
    char place[] = "00";
    for (const TMember& member : document) {
      const TValue& value = member.value;
      const bool asIs = value.is(TKind::Text) || value.is(TKind::Binary);
      const char* family = value.is(TKind::Text) ? "t:" : value.is(TKind::Binary) ? "b:" : "j:";
      columns[std::string(family) + place + member.name] = asIs ? value : TValue(typedText(value));
      place[1] == '9' ? (++place[0], place[1] = '0') : ++place[1];
    }
    char key[24];
    std::snprintf(key, sizeof key, "%010lld", static_cast<long long>(document.find("_id")->asInt()));
    TObject row{{"rowkey", key}};
    for (auto& [name, value] : columns) row.add(name, std::move(value));
    return row;
  }
  [[nodiscard]] TObject fromStore(const TObject& row) const override {
    std::map<std::string, TMember> members;
    for (const TMember& cell : row) {
      if (cell.name == "rowkey") continue;
      const std::string& text = cell.value.asText();
      members[cell.name.substr(2, 2)] = {cell.name.substr(4), cell.name[0] == 'j'   ? typedJson(text)
                                                              : cell.name[0] == 'b' ? TValue::binary(text)
                                                                                    : TValue(text)};
    }
    TObject document;
    for (auto& [place, member] : members) document.add(member.name, std::move(member.value));
    return document;
  }

 private:
  std::uint16_t port_;
  std::unique_ptr<TStoreConnector> connector_;
  mutable std::mutex mutex_;
  mutable std::set<std::string> made_;
};

class THBaseStandInBed : public THBaseBed {
 public:
  explicit THBaseStandInBed(std::unique_ptr<hbasewire::THBaseStandIn> server)
      : THBaseBed(server->port()), server_(std::move(server)) {}

 private:
  std::unique_ptr<hbasewire::THBaseStandIn> server_;
};

}  // namespace

std::vector<TBedKind> bedKinds() {
  std::vector<TBedKind> kinds = {
      {"Toy", [] { return std::make_unique<TToyBed>(); }},
      {"JsonFile", [] { return std::make_unique<TJsonFileBed>(); }},
      {"MongoStandIn",
       [] { return std::make_unique<TStandInBed>(std::make_unique<mongowire::TMongoStandIn>()); }},
      {"CassandraStandIn",
       [] {
         return std::make_unique<TCassandraStandInBed>(std::make_unique<casswire::TCassandraStandIn>());
       }},
      {"CassandraOldStandIn",
       [] {
         return std::make_unique<TCassandraStandInBed>(
             std::make_unique<casswire::TCassandraStandIn>("2.1.22"));
       }},
      {"CassandraServer", [] { return std::make_unique<TCassandraBed>(sharedCassandra().port()); }},
      {"MongoServer", [] { return std::make_unique<TMongoBed>(sharedServer().port()); }},
      {"HBaseStandIn",
       [] { return std::make_unique<THBaseStandInBed>(std::make_unique<hbasewire::THBaseStandIn>()); }},
      {"HBaseServer", [] { return std::make_unique<THBaseBed>(sharedHBase().port()); }}};
  for (const std::string& release : moreCassandraReleases())
    kinds.push_back({"CassandraServer" + release.substr(0, 1) + release.substr(2),
                     [release] { return std::make_unique<TCassandraBed>(sharedCassandra(release).port()); }});
  return kinds;
}

TValue hbaseRecord(std::uint16_t port) {
  return TObject{{"dbtype", "HBase"}, {"host", "127.0.0.1"}, {"port", static_cast<int>(port)}};
}

TDataSource hbaseSource(const std::string& table, const std::string& query) {
  return {table, TObject{{"table", table}, {"query", query}}, 0};
}

void makeHBaseTable(std::uint16_t port, const std::string& table, const std::vector<std::string>& families) {
  std::vector<THBaseFamily> made;
  for (const std::string& family : families) made.push_back({.name = family});
  connectHBase(optionsFor(hbaseRecord(port)))->create(table, made);
}

const TLocalServer& sharedHBase() {
  static const TLocalServer server("--lease " + std::to_string(hbaseLeaseSeconds), "hbase");
  return server;
}

TValue mongoRecord(std::uint16_t port, const std::string& user, const std::string& password,
                   const std::string& mechanism, const std::string& authdb) {
  return TObject{{"dbtype", "MongoDB"},    {"host", "127.0.0.1"}, {"port", static_cast<int>(port)},
                 {"database", "shop"},     {"user", user},        {"password", password},
                 {"mechanism", mechanism}, {"authdb", authdb}};
}

TDataSource mongoSource(const std::string& collection, const std::string& query) {
  return {collection, TObject{{"database", "shop"}, {"collection", collection}, {"query", query}}, 0};
}

TValue cassandraRecord(std::uint16_t port, const std::string& user, const std::string& password) {
  return TObject{{"dbtype", "Cassandra"}, {"host", "127.0.0.1"},  {"port", static_cast<int>(port)},
                 {"user", user},          {"password", password}, {"readlevel", "ONE"},
                 {"writelevel", "ONE"}};
}

TDataSource cassandraSource(const std::string& table, const std::string& query) {
  return {table,
          TObject{{"keyspace", "shop"},
                  {"columnfamily", table},
                  {"query", query.empty() ? "select * from " + table : query}},
          0};
}

const TLocalServer& sharedCassandra(const std::string& release) {
  static std::map<std::string, TLocalServer> servers;
  return servers.try_emplace(release, "--version " + release, "cassandra").first->second;
}

std::vector<std::string> moreCassandraReleases() {
  const char* wanted = std::getenv("HOLLOWMERE_CASSANDRA_VERSIONS");
  std::istringstream words(wanted ? wanted : "");
  return {std::istream_iterator<std::string>(words), {}};
}

const TLocalServer& sharedServer() {
  static const TLocalServer server;
  return server;
}

TStoreOptions optionsFor(TValue connection) {
  TStoreOptions options;
  options.connection = std::move(connection);
  options.ignoreNulls = false;
  return options;
}

void writeAll(const TBed& bed, const std::string& collection, const std::vector<TObject>& documents,
              TRecordingSink& sink, std::int64_t bulkSize) {
  TStoreOptions options = optionsFor(bed.connection(collection));
  options.bulkSize = bulkSize;
  const auto writer = bed.connector().connectTarget(options);
  writer->openTarget({"target", bed.target(collection), {}});
  for (const TObject& document : documents) writer->write(bed.toStore(document), sink);
  writer->flush(sink);
}

std::vector<TObject> readAll(const TBed& bed, const std::string& collection, const TShare& share,
                             std::int64_t fetchLimit) {
  TStoreOptions options = optionsFor(bed.connection(collection));
  options.fetchLimit = fetchLimit;
  const auto reader = bed.connector().connectSource(options);
  reader->openRoot(bed.source(collection), share);
  std::vector<TObject> rows;
  while (auto row = reader->next()) rows.push_back(bed.fromStore(*row));
  EXPECT_FALSE(reader->next()) << "the end stays the end";
  return rows;
}

std::string faultOf(TStoreErrorKind kind, const std::function<void()>& call) {
  try {
    call();
  } catch (const TStoreError& error) {
    EXPECT_EQ(static_cast<int>(error.kind()), static_cast<int>(kind)) << error.what();
    return error.what();
  }
  return {};
}

}  // namespace hollowmere
