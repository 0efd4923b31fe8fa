// A Cassandra server that fails in the middle, of both schema dialects.
#include <chrono>
#include <set>
#include <thread>

#include "conformance/bed.h"
#include "connectors/cassandra/cassandraconnector.h"
#include "support/casswire/standin.h"

namespace hollowmere {

namespace {

using casswire::TCassandraStandIn;
using casswire::TFault;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char run[] = "execute_prepared_cql3_query";

milliseconds since(steady_clock::time_point start) {
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

class CassandraFaults : public testing::TestWithParam<const char*> {
 protected:
  TCassandraStandIn server{GetParam()};
  std::unique_ptr<TStoreConnector> connector = makeCassandraConnector();
  TRecordingSink sink;
  TStopFlag stop;
  std::vector<std::string> remarks;

  void SetUp() override {
    server.add("shop.out", {{"id", "int", "partition_key", {}}, {"name", "text", "regular", {}}});
    server.add("shop.hits", {{"page", "text", "partition_key", {}}, {"n", "counter", "regular", {}}});
    server.add("shop.wide", {{"p", "int", "partition_key", {}},
                             {"a", "int", "clustering", {}, true},
                             {"b", "text", "clustering", {}},
                             {"v", "text", "regular", {}}});
  }

  TStoreOptions options(std::int64_t bulkSize = 0) {
    TStoreOptions made = optionsFor(cassandraRecord(server.port()));
    made.bulkSize = bulkSize;
    made.fetchLimit = 3;
    made.stop = &stop;
    made.remark = [this](const std::string& line) { remarks.push_back(line); };
    made.connection.asObject().set("timeout", 1);
    return made;
  }

  void write(TTargetWriter& to, int first, int count) {
    for (int i = first; i < first + count; ++i)
      to.write(TObject{{"id", i}, {"name", "n" + std::to_string(i)}}, sink);
    to.flush(sink);
  }

  std::unique_ptr<TTargetWriter> writer(std::int64_t bulkSize, const std::string& table = "out") {
    auto made = connector->connectTarget(options(bulkSize));
    made->openTarget({"target", "shop." + table, {}});
    return made;
  }

  std::set<std::int64_t> ids(const std::string& query = "select * from out", const TShare& share = {}) {
    const auto reader = connector->connectSource(options());
    reader->openRoot(cassandraSource("out", query), share);
    std::set<std::int64_t> found;
    while (const auto row = reader->next()) EXPECT_TRUE(found.insert(row->find("id")->asInt()).second);
    return found;
  }

  [[nodiscard]] std::int64_t outcomes() const {
    return sink.storedCount + static_cast<std::int64_t>(sink.refusals.size());
  }
};

TEST_P(CassandraFaults, AConnectionLostInTheMiddleCostsNothing) {
  for (const TFault fault :
       {TFault::Close, TFault::Tear, TFault::Oversize, TFault::Garbage, TFault::CloseAfterRun})
    for (const std::int64_t bulk : {0, 50}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(fault)) + " " + std::to_string(bulk));
      server.tables().at("shop.out").rows.clear();
      sink = {};
      const auto to = writer(bulk);
      write(*to, 1, 5);
      server.fail(run, fault, 3);
      write(*to, 6, 95);
      EXPECT_EQ(outcomes(), 100);
      EXPECT_EQ(sink.storedCount, 100) << sink.refusals.size();
      EXPECT_EQ(server.tables().at("shop.out").rows.size(), 100U);
    }
}

TEST_P(CassandraFaults, AServerThatEndsLosesWhatItDidNotConfirm) {
  const auto to = writer(20);
  write(*to, 1, 40);
  EXPECT_EQ(sink.storedCount, 40);
  server.stop();
  write(*to, 41, 60);
  EXPECT_EQ(sink.storedCount, 40);
  ASSERT_EQ(sink.refusals.size(), 60U);
  EXPECT_EQ(sink.refusals[59].first, R"({"id":100,"name":"n100"})");
  EXPECT_NE(sink.refusals[59].second.find("127.0.0.1:" + std::to_string(server.port())), std::string::npos);
  server.start();
  std::this_thread::sleep_for(milliseconds(600));
  write(*to, 101, 30);
  EXPECT_EQ(sink.storedCount, 70) << "it came back, and knows no prepared statement any more";
}

TEST_P(CassandraFaults, ASilentServerIsLeftInTime) {
  const auto to = writer(10);
  server.fail(run, TFault::Silence, 0, 1000);
  const auto begin = steady_clock::now();
  write(*to, 1, 3);
  EXPECT_EQ(sink.storedCount, 0);
  EXPECT_EQ(sink.refusals.size(), 3U);
  EXPECT_NE(sink.refusals[0].second.find("did not answer within 1 second"), std::string::npos)
      << sink.refusals[0].second;
  EXPECT_LT(since(begin), milliseconds(12000));
}

TEST_P(CassandraFaults, AStopEndsWaitingForASilentServer) {
  TStoreOptions patient = options(10);
  patient.connection.asObject().set("timeout", 60);
  const auto to = connector->connectTarget(patient);
  to->openTarget({"target", "shop.out", {}});
  server.fail(run, TFault::Silence, 0, 1000);
  std::thread stopper([&] {
    std::this_thread::sleep_for(milliseconds(100));
    stop.set();
  });
  const auto begin = steady_clock::now();
  write(*to, 1, 30);
  stopper.join();
  EXPECT_LT(since(begin), milliseconds(3000));
  EXPECT_EQ(outcomes(), 30);
  EXPECT_EQ(sink.storedCount, 0);
}

TEST_P(CassandraFaults, LostStatementsArePreparedAgain) {
  for (const std::int64_t bulk : {0, 50}) {
    sink = {};
    const auto to = writer(bulk);
    write(*to, 1, 1);
    const int before = server.calls("prepare_cql3_query");
    server.fail(run, TFault::LosePrepared);
    write(*to, 2, 60);
    EXPECT_EQ(sink.storedCount, 61);
    EXPECT_GT(server.calls("prepare_cql3_query"), before);
  }
  server.fail(run, TFault::LosePrepared, 2);
  EXPECT_EQ(ids().size(), 61U);
}

TEST_P(CassandraFaults, ABatchIsTakenApart) {
  const auto to = writer(50);
  write(*to, 1, 10);
  for (const TFault fault : {TFault::Refuse, TFault::Unavailable, TFault::TimeOut}) {
    server.fail(run, fault, 1);
    write(*to, 11, 40);
  }
  EXPECT_EQ(sink.storedCount, 130);
  // One row that is refused for itself, within a batch.
  server.fail(run, TFault::Refuse, 0, 2);
  write(*to, 51, 10);
  EXPECT_EQ(sink.storedCount, 139);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_EQ(sink.refusals[0],
            (std::pair<std::string, std::string>(R"({"id":51,"name":"n51"})", "told to refuse")));
}

TEST_P(CassandraFaults, TheLastRowOfAKeyWins) {
  const auto to = writer(100);
  // Of the batches, each of ten rows and two shapes by turns, the third fails and is written once more.
  server.fail(run, TFault::Refuse, 2);
  for (int i = 0; i < 60; ++i) {
    const std::string name = "n" + std::to_string(i);
    const bool keyFirst = (i / 20 + i) % 2 == 0;
    to->write(keyFirst ? TObject{{"id", i % 20}, {"name", name}} : TObject{{"name", name}, {"id", i % 20}},
              sink);
  }
  to->flush(sink);
  EXPECT_EQ(sink.storedCount, 60);
  for (const auto& [key, row] : server.tables().at("shop.out").rows)
    EXPECT_GE(std::stoi(row[1]->substr(1)), 40) << *row[1];
}

TEST_P(CassandraFaults, RowsThatFailedAloneDoNotSpoilLaterOnes) {
  const auto to = writer(50);
  write(*to, 1, 10);
  server.fail(run, TFault::Refuse);
  server.fail(run, TFault::Close, 0, 2);
  write(*to, 11, 10);
  EXPECT_EQ(sink.storedCount, 10)
      << "two rows one after the other cost the connection: the server is at fault";
  server.fail(run, TFault::Refuse);
  write(*to, 31, 10);
  EXPECT_EQ(sink.storedCount, 20);
  EXPECT_EQ(outcomes(), 30);
}

TEST_P(CassandraFaults, FewStatementsCarryManyRows) {
  struct TCase {
    const char* what;
    std::int64_t bulk;
    int most;  ///< statements for 60 rows
    TObject (*row)(int);
  };
  const std::vector<TCase> cases = {
      {"rows of 700 bytes: five a batch", 100, 13,
       [](int i) {
         return TObject{{"id", i}, {"name", std::string(700, 'x')}};
       }},
      {"two shapes by turns", 100, 8,
       [](int i) {
         return i % 2 == 0 ? TObject{{"id", i}, {"name", "x"}} : TObject{{"id", i}};
       }},
      {"a bulk size of four", 4, 15,
       [](int i) {
         return TObject{{"id", i}, {"name", "x"}};
       }},
      {"with rows that no table has between them", 100, 7, [](int i) {
         return i % 10 != 0 ? TObject{{"id", i}, {"name", "x"}}
                            : TObject{{"id", i}, {"odd" + std::to_string(i), 1}};
       }}};
  for (const TCase& each : cases) {
    SCOPED_TRACE(each.what);
    sink = {};
    const auto to = writer(each.bulk);
    const int before = server.calls(run);
    for (int i = 0; i < 60; ++i) to->write(each.row(i), sink);
    to->flush(sink);
    EXPECT_EQ(outcomes(), 60);
    EXPECT_LE(server.calls(run) - before, each.most);
    EXPECT_GE(server.calls(run) - before, 60 / std::min<int>(10, static_cast<int>(each.bulk)) - 1);
  }
}

TEST_P(CassandraFaults, MoreShapesOfRowsThanAreKept) {
  std::vector<casswire::TColumn> columns{{"id", "int", "partition_key", {}}};
  for (char name = 'a'; name < 'j'; ++name) columns.push_back({std::string(1, name), "int", "regular", {}});
  server.add("shop.shapes", columns);
  const auto to = writer(50, "shapes");
  for (int i = 0; i < 1024; ++i) {
    TObject row{{"id", i}};
    for (int bit = 0; bit < 9; ++bit)
      if ((i >> bit & 1) != 0) row.add(std::string(1, static_cast<char>('a' + bit)), i);
    to->write(std::move(row), sink);
  }
  to->flush(sink);
  EXPECT_EQ(sink.storedCount, 1024);
  EXPECT_EQ(server.tables().at("shop.shapes").rows.size(), 1024U);
}

TEST_P(CassandraFaults, ARowIsTriedOnceMore) {
  const auto to = writer(0);
  // The first row of its kind, whose statement is prepared.
  server.fail("prepare_cql3_query", TFault::Close);
  write(*to, 1, 1);
  EXPECT_EQ(sink.storedCount, 1);
  server.fail(run, TFault::TimeOut);
  write(*to, 2, 1);
  EXPECT_EQ(sink.storedCount, 2);
  server.fail(run, TFault::TimeOut, 0, 2);
  write(*to, 3, 1);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_EQ(sink.refusals[0].second, "The server's replicas did not answer within its own time-out.");
}

TEST_P(CassandraFaults, CountersAreNeverAddedTwice) {
  for (const TFault fault : {TFault::TimeOut, TFault::CloseAfterRun, TFault::Close, TFault::Garbage})
    for (const std::int64_t bulk : {0, 50}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(fault)) + " " + std::to_string(bulk));
      auto& rows = server.tables().at("shop.hits").rows;
      rows.clear();
      sink = {};
      const auto to = writer(bulk, "hits");
      server.fail(run, fault, 2);
      for (int i = 0; i < 8; ++i) to->write(TObject{{"n", 1}, {"page", "a"}}, sink);
      to->flush(sink);
      EXPECT_EQ(outcomes(), 8);
      const auto total =
          static_cast<std::int64_t>(static_cast<unsigned char>(rows.begin()->second[1]->back()));
      // What was done and not confirmed counts besides.
      EXPECT_GE(total, sink.storedCount);
      EXPECT_LE(total, 8);
      EXPECT_GE(sink.refusals.size(), 1U);
      if (bulk == 0) {
        EXPECT_EQ(sink.storedCount, 7);
      }
    }
}

TEST_P(CassandraFaults, RowsThatDoNotFitNameTheirColumn) {
  const auto to = writer(0);
  const std::vector<std::pair<TObject, std::string>> cases = {
      {TObject{{"id", "x"}, {"name", "a"}}, "Column id of type int cannot take the text \"x\""},
      {TObject{{"id", 3000000000}, {"name", "a"}},
       "Column id of type int cannot take the integer 3000000000 (out of range)"},
      {TObject{{"id", 1}, {"name", TValue::binary("\xFF")}}, ""},
      {TObject{{"id", 1}, {"name", "\xFF"}},
       "Column name of type text cannot take the binary \"&base64;/w==\" (the bytes are no text)"},
      {TObject{{"name", "no key"}}, "Some partition key parts are missing: id"},
      {TObject{{"id", nullptr}, {"name", "no key"}}, "Some partition key parts are missing: id"},
      {TObject{{"id", 2}, {"nmae", "typo"}}, "Table shop.out has no column nmae."},
      {TObject{}, "The document has no value for any column."},
      {TObject{{"ID", 7.0}, {"Name", true}}, ""}};
  for (const auto& [document, fault] : cases) {
    sink = {};
    to->write(TObject(document), sink);
    to->flush(sink);
    ASSERT_EQ(outcomes(), 1);
    EXPECT_EQ(sink.refusals.empty() ? "" : sink.refusals[0].second, fault);
  }
}

TEST_P(CassandraFaults, LargeRowsGoAloneAndTooLargeOnesAreNamed) {
  const auto to = writer(50);
  to->write(TObject{{"id", 1}, {"name", std::string(3'000'000, 'a')}}, sink);
  to->write(TObject{{"id", 2}, {"name", std::string(20'000'000, 'b')}}, sink);
  to->write(TObject{{"id", 3}, {"name", "c"}}, sink);
  to->flush(sink);
  EXPECT_EQ(sink.storedCount, 2);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_NE(sink.refusals[0].second.find("servers take 15 MiB at most"), std::string::npos)
      << sink.refusals[0].second;
}

TEST_P(CassandraFaults, EveryRowIsReadOnceHoweverItIsCut) {
  const auto to = connector->connectTarget(options(100));
  to->openTarget({"target", "shop.wide", {}});
  std::set<std::string> all;
  for (int p = 0; p < 5; ++p)
    for (int a = 0; a < 4; ++a)
      for (int b = 0; b < 5; ++b) {
        const std::string v = std::to_string(p) + "/" + std::to_string(a) + "/" + std::to_string(b);
        to->write(TObject{{"p", p}, {"a", a - 2}, {"b", std::to_string(b)}, {"v", v}}, sink);
        all.insert(v);
      }
  to->flush(sink);
  ASSERT_EQ(sink.storedCount, 100);
  for (const std::int64_t fetch : {1, 2, 3, 7, 20, 100, 1000})
    for (const int degree : {1, 4}) {
      std::set<std::string> found;
      for (int number = 1; number <= degree; ++number) {
        TStoreOptions made = options();
        made.fetchLimit = fetch;
        const auto reader = connector->connectSource(made);
        const std::int64_t each = 100 / degree;
        reader->openRoot(cassandraSource("wide", "select v from wide"),
                         {number, degree, (number - 1) * each, each});
        while (const auto row = reader->next()) {
          EXPECT_EQ(row->size(), 1U) << "what was asked for besides stays behind";
          EXPECT_TRUE(found.insert(row->find("v")->asText()).second);
        }
      }
      EXPECT_EQ(found, all) << fetch << " " << degree;
    }
  EXPECT_TRUE(remarks.empty());
}

TEST_P(CassandraFaults, SharesOfOnePartitionAndOfAWholeQueryAreRows) {
  const auto to = connector->connectTarget(options(100));
  to->openTarget({"target", "shop.wide", {}});
  for (int a = 0; a < 30; ++a)
    to->write(TObject{{"p", 1}, {"a", a}, {"b", "x"}, {"v", std::to_string(a)}}, sink);
  to->flush(sink);
  for (const char* query : {"select * from wide where p = 1", "select * from wide where p = 1 and a >= 0",
                            "select * from wide limit 30"}) {
    std::vector<std::string> found;
    for (int number = 1; number <= 3; ++number) {
      const auto reader = connector->connectSource(options());
      reader->openRoot(cassandraSource("wide", query), {number, 3, (number - 1) * 10, 10});
      EXPECT_FALSE(reader->keepsItsShare());
      while (const auto row = reader->next()) found.push_back(row->find("v")->asText());
    }
    ASSERT_EQ(found.size(), 30U) << query;
    EXPECT_EQ(found.front(), "29");
    EXPECT_EQ(found.back(), "0");
  }
  EXPECT_EQ(remarks.size(), 3U) << "the query on a clustering column, by each thread";
}

TEST_P(CassandraFaults, AReaderGoesOnOverANewConnection) {
  write(*writer(0), 1, 20);
  for (const TFault fault : {TFault::Close, TFault::Tear, TFault::Garbage}) {
    server.fail(run, fault, 2);
    EXPECT_EQ(ids().size(), 20U);
  }
  // Longer than is taken: fewer rows are asked for.
  server.fail(run, TFault::Oversize, 1);
  EXPECT_EQ(ids().size(), 20U);
  const auto reader = connector->connectSource(options());
  reader->openRoot(cassandraSource("out"), {});
  ASSERT_TRUE(reader->next());
  server.stop();
  EXPECT_NE(faultOf(TStoreErrorKind::DataSource,
                    [&] {
                      while (reader->next()) continue;
                    }),
            "");
}

TEST_P(CassandraFaults, SourcesThatAreNone) {
  const auto reader = connector->connectSource(options());
  const auto fault = [&](const std::string& keyspace, const std::string& query) {
    const TDataSource source{"s", TObject{{"keyspace", keyspace}, {"columnfamily", "out"}, {"query", query}},
                             0};
    return faultOf(TStoreErrorKind::DataSource, [&] { reader->openRoot(source, {}); });
  };
  EXPECT_EQ(fault("nowhere", "select * from out"), "Keyspace 'nowhere' does not exist");
  EXPECT_EQ(fault("shop", "select * from nothing"),
            GetParam()[0] == '2' ? "unconfigured columnfamily nothing" : "unconfigured table nothing");
  EXPECT_EQ(fault("shop", "select colour from out"), "Undefined column name colour");
  EXPECT_EQ(fault("shop", "select * from out"),
            "Cassandra data source CQL query does not return rows: select * from out");
  EXPECT_EQ(fault("", ""), "Data source s names no Cassandra keyspace and query.");
}

TEST_P(CassandraFaults, TargetsThatAreNone) {
  const auto to = connector->connectTarget(options());
  const auto fault = [&](const std::string& target) {
    return faultOf(TStoreErrorKind::DataSource, [&] { to->openTarget({"t", target, {}}); });
  };
  EXPECT_EQ(fault("out"), "Unable to determine target Cassandra keyspace : out");
  EXPECT_EQ(fault("nowhere.out"), "Unable to determine target Cassandra keyspace : nowhere");
  EXPECT_EQ(fault("shop.nothing"), "Unable to determine target Cassandra column family : nothing");
  EXPECT_EQ(fault("Shop.\"out\""), "");
  EXPECT_EQ(fault("\"no.\"\"where\".out"), "Unable to determine target Cassandra keyspace : no.\"where");
}

TEST_P(CassandraFaults, NestedQueriesAreBoundByType) {
  write(*writer(0), 1, 5);
  const auto reader = connector->connectSource(options());
  const TDataSource nested = cassandraSource("out", "select name from out where id = :p.Id");
  const auto names = [&](const TObject& parent) {
    std::string found;
    reader->nested(nested, parent, [&](TObject&& row) {
      found += row.find("name")->asText();
      return true;
    });
    return found;
  };
  EXPECT_EQ(names(TObject{{"P", TObject{{"ID", 3}}}}), "n3");
  EXPECT_EQ(names(TObject{{"p.id", "4"}}), "n4");
  EXPECT_EQ(names(TObject{{"p.id", nullptr}}), "");
  EXPECT_EQ(server.calls("prepare_cql3_query"), 2) << "the writer's and this one";
  EXPECT_EQ(faultOf(TStoreErrorKind::Read,
                    [&] {
                      names(TObject{{"x", 1}});
                    }),
            "The parent row has no field for the query parameter :p.Id");
  EXPECT_EQ(faultOf(TStoreErrorKind::Read,
                    [&] {
                      names(TObject{{"p.id", "1; drop table out"}});
                    }),
            "The query parameter :p.Id does not fit: int cannot take the text \"1; drop table out\"");
  server.fail(run, TFault::LosePrepared);
  EXPECT_EQ(names(TObject{{"p.id", 5}}), "n5");
  server.fail(run, TFault::Close);
  EXPECT_EQ(names(TObject{{"p.id", 1}}), "n1");
}

TEST_P(CassandraFaults, ConnectingTellsWhatIsWrong) {
  const auto fault = [&](const TStoreOptions& with) {
    return faultOf(TStoreErrorKind::Connect, [&] { connector->connectSource(with); });
  };
  server.setPassword("right");
  const std::string text = "Unable to connect to source Cassandra. ";
  TStoreOptions with = options();
  EXPECT_EQ(fault(with), text +
                             "Authentication error. You must supply valid username and password to login to "
                             "Cassandra database.");
  with.connection = cassandraRecord(server.port(), "ann", "wrong secret");
  EXPECT_EQ(fault(with), text + "Error occurred: Username and/or password are incorrect");
  with.connection = cassandraRecord(server.port(), " ann ", "right");
  EXPECT_EQ(fault(with), "");
  server.fail("execute_cql3_query", TFault::Close);
  EXPECT_NE(fault(with).find("closed the connection without an answer."), std::string::npos);
  for (const char* call : {"login", "execute_cql3_query"}) {
    server.fail(call, TFault::Garbage);
    EXPECT_NE(fault(with).find("sent an answer that cannot be read: "), std::string::npos) << call;
  }
  server.setPassword("");
  const int logins = server.calls("login");
  with.connection = cassandraRecord(server.port(), "ann", "");
  EXPECT_EQ(fault(with), "");
  EXPECT_EQ(server.calls("login"), logins) << "no password, no login";
  server.stop();
  EXPECT_EQ(fault(with),
            text + "Unable to connect to the database host: 127.0.0.1:" + std::to_string(server.port()) +
                " (refused the connection; Cassandra 4 and later have no Thrift interface, 2.2 to 3.11 "
                "have it after \"nodetool enablethrift\" or with start_rpc: true in cassandra.yaml).");
}

TEST_P(CassandraFaults, RowsAreAccountedForWhateverMeetsTheNewConnection) {
  server.setPassword("right");
  for (const TFault fault : {TFault::Garbage, TFault::Oversize, TFault::Close})
    for (const char* call : {"login", "execute_cql3_query"}) {
      SCOPED_TRACE(std::string(call) + " " + std::to_string(static_cast<int>(fault)));
      sink = {};
      TStoreOptions with = options(50);
      with.connection = cassandraRecord(server.port(), "ann", "right");
      const auto to = connector->connectTarget(with);
      to->openTarget({"target", "shop.out", {}});
      server.fail(run, TFault::Close, 1);
      server.fail(call, fault);
      write(*to, 1, 60);
      EXPECT_EQ(outcomes(), 60);
      EXPECT_GE(sink.refusals.size(), 1U);
    }
}

TEST_P(CassandraFaults, KeyColumnsAreRequiredOfATarget) {
  const auto required = [&](const std::string& target) {
    return connector->requiredFields(options(), {"t", target, {}});
  };
  EXPECT_EQ(required("shop.wide"), (std::vector<std::string>{"p", "a", "b"}));
  EXPECT_EQ(required("shop.nothing"), std::vector<std::string>{});
  server.stop();
  EXPECT_NE(faultOf(TStoreErrorKind::Connect, [&] { required("shop.wide"); }), "");
}

INSTANTIATE_TEST_SUITE_P(Dialects, CassandraFaults, testing::Values("3.11.19", "2.1.22"),
                         [](const auto& kind) { return kind.param[0] == '2' ? "Old" : "New"; });

}  // namespace

}  // namespace hollowmere
