#include "conformance/bed.h"

#include <atomic>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/cassandraconnector.h"
#include "connectors/jsonfile/jsonfileconnector.h"
#include "connectors/mongodb/mongoconnector.h"
#include "support/casswire/standin.h"
#include "support/mongowire/standin.h"
#include "support/tempfolder.h"
#include "support/toystore.h"

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
    emptyFault = "MongoDB data source does not return documents.";
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
    rangesShares = true;
    emptyFault = "Cassandra data source CQL query does not return rows: select * from ";
    strangerFault =
        "Authentication error. You must supply valid username and password to login to Cassandra database.";
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
    return cassandraRecord(server_->port());
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

}  // namespace

std::vector<TBedKind> bedKinds() {
  return {{"Toy", [] { return std::make_unique<TToyBed>(); }},
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
          {"MongoServer", [] { return std::make_unique<TMongoBed>(sharedServer().port()); }}};
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

const TLocalServer& sharedCassandra() {
  static const TLocalServer server({}, "cassandra");
  return server;
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
  for (const TObject& document : documents) writer->write(TObject(document), sink);
  writer->flush(sink);
}

std::vector<TObject> readAll(const TBed& bed, const std::string& collection, const TShare& share,
                             std::int64_t fetchLimit) {
  TStoreOptions options = optionsFor(bed.connection(collection));
  options.fetchLimit = fetchLimit;
  const auto reader = bed.connector().connectSource(options);
  reader->openRoot(bed.source(collection), share);
  std::vector<TObject> rows;
  while (auto row = reader->next()) rows.push_back(std::move(*row));
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
