// Reading from Cassandra: shares, counts, nested queries, and a server that fails in the middle.
#include <chrono>
#include <set>
#include <thread>

#include "conformance/bed.h"
#include "connectors/cassandra/cassandraconnector.h"
#include "json/json.h"
#include "support/casswire/standin.h"

namespace hollowmere {

namespace {

using casswire::TCassandraStandIn;
using casswire::TFault;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char run[] = "execute_prepared_cql3_query";
constexpr char prepare[] = "prepare_cql3_query";

class CassandraRead : public testing::Test {
 protected:
  TCassandraStandIn server;
  std::unique_ptr<TStoreConnector> connector = makeCassandraConnector();
  TStopFlag stop;
  std::vector<std::string> remarks;

  void SetUp() override {
    server.add("shop.one", {{"id", "int", "partition_key", {}}, {"v", "int", "regular", {}}});
    server.add(
        "shop.two",
        {{"id", "int", "partition_key", {}}, {"v", "text", "regular", {}}, {"ref", "int", "regular", {}}});
    server.add("shop.wide", {{"p", "int", "partition_key", {}},
                             {"a", "int", "clustering", {}, true},
                             {"b", "text", "clustering", {}},
                             {"v", "text", "regular", {}}});
    for (int i = 0; i < 60; ++i) {
      put("wide", {number(i % 4), number(i / 8), std::to_string(i % 8), std::to_string(i)});
      put("one", {number(i), number(i * 2)});
    }
  }

  static std::string number(int value) { return casswire::bigEndian(static_cast<std::uint64_t>(value), 4); }
  void put(const std::string& table, const casswire::TRow& row) {
    server.tables().at("shop." + table).put(row);
  }

  TStoreOptions options() {
    TStoreOptions made = optionsFor(cassandraRecord(server.port()));
    made.fetchLimit = 3;
    made.stop = &stop;
    made.remark = [this](const std::string& line) { remarks.push_back(line); };
    made.connection.asObject().set("timeout", 1);
    return made;
  }

  static std::size_t rest(TSourceReader& reader) {
    std::set<std::string> found;
    while (const auto row = reader.next()) EXPECT_TRUE(found.insert(toJson(*row)).second) << toJson(*row);
    return found.size();
  }

  std::size_t rows(const TDataSource& source, const TShare& share = {}) {
    const auto reader = connector->connectSource(options());
    reader->openRoot(source, share);
    return rest(*reader);
  }

  std::string sourceFault(const std::function<void()>& call) {
    return faultOf(TStoreErrorKind::DataSource, call);
  }

  /// What happens when somebody stops while the server is silent.
  void stopSoon(const std::function<void()>& call) {
    std::thread stopper([&] {
      std::this_thread::sleep_for(milliseconds(100));
      stop.set();
    });
    const auto begin = steady_clock::now();
    call();
    stopper.join();
    EXPECT_LT(steady_clock::now() - begin, milliseconds(3000));
  }
};

TEST_F(CassandraRead, ASecondSourceIsReadByItsOwnTypes) {
  put("two", {number(7), std::string("text")});
  const auto reader = connector->connectSource(options());
  reader->openRoot(cassandraSource("one", "select id, v from one where id = 3"), {});
  EXPECT_EQ(toJson(*reader->next()), R"({"id":3,"v":6})");
  reader->openRoot(cassandraSource("two", "select id, v from two"), {});
  EXPECT_EQ(toJson(*reader->next()), R"({"id":7,"v":"text"})");
}

TEST_F(CassandraRead, ANullOfTheParentRowFindsNothing) {
  put("two", {number(1), std::string("next"), number(2)});
  put("two", {number(2), std::string("last"), {}});
  TStoreOptions sparse = options();
  for (const bool ignoreNulls : {true, false}) {
    sparse.ignoreNulls = ignoreNulls;
    const auto reader = connector->connectSource(sparse);
    const TDataSource nested = cassandraSource("two", "select * from two where id = :\"REF\"");
    const auto collect = [&](const TObject& parent) {
      std::string found;
      reader->nested(nested, parent, [&](TObject&& row) {
        found += row.find("v")->asText();
        // A nested row, too, is a parent that may have a null.
        reader->nested(nested, row, [&](TObject&&) {
          found += " and more";
          return true;
        });
        return true;
      });
      return found;
    };
    reader->openRoot(cassandraSource("two"), {});
    std::set<std::string> all;
    while (const auto row = reader->next()) all.insert(collect(*row));
    EXPECT_EQ(all, (std::set<std::string>{"last", ""}));
    EXPECT_EQ(faultOf(TStoreErrorKind::Read,
                      [&] {
                        reader->nested(cassandraSource("two", "select * from two where id = :colour"),
                                       TObject{{"id", 2}}, [](TObject&&) { return true; });
                      }),
              "The parent row has no field for the query parameter :colour");
  }
}

TEST_F(CassandraRead, AllSharesDecideAlike) {
  // A fault that passes ends the source: another share may be reading by tokens.
  server.fail(run, TFault::Unavailable);
  EXPECT_NE(sourceFault([&] { rows(cassandraSource("one"), {2, 3, 20, 20}); }), "");
  EXPECT_TRUE(remarks.empty());
  // A statement that the server does not take is no fault that passes.
  std::size_t found = 0;
  for (int share = 1; share <= 3; ++share) {
    server.fail(prepare, TFault::Refuse, 1);
    found += rows(cassandraSource("one"), {share, 3, (share - 1) * 20, 20});
  }
  EXPECT_EQ(found, 60U);
  EXPECT_EQ(remarks, std::vector<std::string>(
                         3, "The query is read at once, with all its rows in memory: told to refuse"));
}

TEST_F(CassandraRead, TheTableIsTheOneOfTheQuery) {
  for (const char* keyspace : {"shop", "Shop", "\"shop\""})
    for (const char* query : {"select v from wide", "SELECT v FROM Shop.WIDE -- all of it",
                              "select v from \"wide\";", "select /* 'v */ v from wide where p = 1"}) {
      const TDataSource source{"s",
                               TObject{{"keyspace", keyspace}, {"columnfamily", "one"}, {"query", query}}, 0};
      const bool one = std::string(query).ends_with("= 1");
      EXPECT_EQ(rows(source), one ? 15U : 60U) << keyspace << query;
      EXPECT_EQ(connector->count(options(), source), one ? 15 : 60) << keyspace << query;
    }
  EXPECT_EQ(remarks, std::vector<std::string>());
}

TEST_F(CassandraRead, OnlySelectsAreSent) {
  const auto reader = connector->connectSource(options());
  for (const char* query :
       {"truncate one", "delete from one where id = 1", "-- select\ninsert into one (id) values (1)",
        "select * from one; drop table one", "selec"}) {
    const TDataSource source = cassandraSource("one", query);
    const std::string fault = sourceFault([&] { reader->openRoot(source, {}); });
    EXPECT_TRUE(fault.starts_with("Data source one: Invalid CQL query: ")) << fault;
    EXPECT_EQ(sourceFault([&] { connector->count(options(), source); }), fault);
    EXPECT_EQ(
        faultOf(TStoreErrorKind::Read, [&] { reader->nested(source, {}, [](TObject&&) { return true; }); }),
        fault);
    EXPECT_EQ("Data source one: " + connector->checkQuery(source.definition), fault);
  }
  EXPECT_EQ(server.calls(prepare), 0);
  EXPECT_EQ(
      sourceFault([&] { reader->openRoot(cassandraSource("one", "select * from one where id = :x"), {}); }),
      "Data source one is read for itself, so there is no parent row for the query parameter :x");
  EXPECT_EQ(connector->checkQuery(TObject{{"keyspace", "shop"}, {"query", " "}}),
            "The data source names no Cassandra keyspace and query.");
  EXPECT_EQ(connector->checkQuery(cassandraSource("one", "select * from one where id = :x").definition), "");
}

TEST_F(CassandraRead, CountingGoesOnInSmallerPieces) {
  for (const TFault fault : {TFault::TimeOut, TFault::Close, TFault::LosePrepared}) {
    server.fail(run, fault, 2, 2);
    EXPECT_EQ(connector->count(options(), cassandraSource("one")), 60);
  }
  EXPECT_EQ(connector->count(options(), cassandraSource("one", "select * from one limit 7")), 7);
  EXPECT_EQ(connector->count(options(), cassandraSource("wide", "select v from wide where p = 2 limit 40")),
            15);
  // One partition is counted at once, or, where that takes too long, by its keys.
  const TDataSource one = cassandraSource("wide", "select v from wide where p = 2");
  const int before = server.calls(run);
  EXPECT_EQ(connector->count(options(), one), 15);
  EXPECT_EQ(server.calls(run), before);
  server.fail("execute_cql3_query", TFault::Silence, 2);
  EXPECT_EQ(connector->count(options(), one), 15);
  EXPECT_GT(server.calls(run), before);
  server.fail(run, TFault::TimeOut, 0, 100);
  EXPECT_NE(sourceFault([&] { connector->count(options(), cassandraSource("one")); }).find("did not answer"),
            std::string::npos);
}

TEST_F(CassandraRead, AReaderWaitsForAServerThatComesBack) {
  const auto reader = connector->connectSource(options());
  reader->openRoot(cassandraSource("one"), {});
  ASSERT_TRUE(reader->next());
  server.stop();
  std::thread comeBack([&] {
    std::this_thread::sleep_for(milliseconds(700));
    server.start();
  });
  EXPECT_EQ(rest(*reader), 59U);
  comeBack.join();
  // The server's own time-outs: fewer rows are asked for.
  server.fail(run, TFault::TimeOut, 3, 2);
  EXPECT_EQ(rows(cassandraSource("wide")), 60U);
  server.fail(run, TFault::Silence, 2);
  EXPECT_EQ(rows(cassandraSource("wide")), 60U);

  const TDataSource nested = cassandraSource("one", "select v from one where id = :id");
  const auto find = [&] {
    std::size_t found = 0;
    reader->nested(nested, TObject{{"id", 5}}, [&](TObject&&) { return ++found > 0; });
    return found;
  };
  EXPECT_EQ(find(), 1U);
  for (const TFault fault : {TFault::TimeOut, TFault::Close, TFault::Silence}) {
    server.fail(run, fault, 0, 2);
    EXPECT_EQ(find(), 1U);
  }
  server.stop();
  EXPECT_NE(faultOf(TStoreErrorKind::Read, find), "");
  // Every further row is lost, too, but waits no more.
  const auto begin = steady_clock::now();
  for (int i = 0; i < 20; ++i) EXPECT_NE(faultOf(TStoreErrorKind::Read, find), "");
  EXPECT_LT(steady_clock::now() - begin, milliseconds(1000));
}

TEST_F(CassandraRead, AStopEndsEveryWait) {
  TStoreOptions patient = options();
  patient.connection.asObject().set("timeout", 60);
  const auto reader = connector->connectSource(patient);
  const TDataSource nested = cassandraSource("one", "select v from one where id = :id");
  reader->openRoot(cassandraSource("one"), {});
  server.fail(run, TFault::Silence, 0, 1000);
  stopSoon([&] { EXPECT_NE(sourceFault([&] { rest(*reader); }), ""); });
  EXPECT_NE(faultOf(TStoreErrorKind::Read,
                    [&] {
                      reader->nested(nested, TObject{{"id", 5}}, [](TObject&&) { return true; });
                    }),
            "");
}

TEST_F(CassandraRead, AStopEndsANestedQueryAndACount) {
  TStoreOptions patient = options();
  patient.connection.asObject().set("timeout", 60);
  const auto reader = connector->connectSource(patient);
  const TDataSource nested = cassandraSource("one", "select v from one where id = :id");
  server.fail(run, TFault::Silence, 0, 1000);
  stopSoon([&] {
    std::string fault;
    std::thread counting(
        [&] { fault = sourceFault([&] { connector->count(patient, cassandraSource("one")); }); });
    EXPECT_NE(faultOf(TStoreErrorKind::Read,
                      [&] {
                        reader->nested(nested, TObject{{"id", 5}}, [](TObject&&) { return true; });
                      }),
              "");
    counting.join();
    EXPECT_NE(fault, "");
  });
}

TEST_F(CassandraRead, ARowThatCannotBeReadIsTheOnlyOneLost) {
  put("two", {number(1), std::string("\xFF\xFE")});
  put("two", {number(2), std::string("good")});
  put("two", {number(3), std::string(), std::string()});
  const auto reader = connector->connectSource(options());
  reader->openRoot(cassandraSource("two"), {});
  std::set<std::string> good, bad;
  for (int i = 0; i < 3; ++i) {
    const std::string fault = faultOf(TStoreErrorKind::Read, [&] { good.insert(toJson(*reader->next())); });
    if (!fault.empty()) bad.insert(fault + " " + reader->rowText());
  }
  EXPECT_FALSE(reader->next());
  EXPECT_EQ(good,
            (std::set<std::string>{R"({"id":2,"v":"good","ref":null})", R"({"id":3,"v":"","ref":""})"}));
  EXPECT_EQ(bad, std::set<std::string>{"column v: cannot read a Cassandra value of type text: not UTF-8 "
                                       R"({"id":1,"v":"&base64;//4=","ref":null})"});
}

}  // namespace

}  // namespace hollowmere
