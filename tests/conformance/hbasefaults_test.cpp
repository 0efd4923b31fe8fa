// An HBase that fails in the middle.
#include <chrono>
#include <thread>

#include "conformance/bed.h"
#include "connectors/hbase/hbaseclient.h"
#include "connectors/hbase/hbaseconnector.h"
#include "support/casswire/standin.h"
#include "support/hbasewire/standin.h"
#include "support/httppeer.h"

namespace hollowmere {

namespace {

using hbasewire::THBaseStandIn;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using thriftwire::TFault;
using thriftwire::TWireServer;

struct TNamedFault {
  const char* name;
  TFault fault;
};

/// After which the connection is lost.
const std::vector<TNamedFault> losses{{"close", TFault::close},
                                      {"done, then close", TFault::doneThenClose},
                                      {"half an answer", TFault::halfThenClose},
                                      {"cut short", TFault::cutShort},
                                      {"2 GB announced", TFault::hugeFrame},
                                      {"garbage", TFault::garbage}};

milliseconds since(steady_clock::time_point start) {
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

class HBaseFaults : public testing::Test {
 protected:
  std::unique_ptr<THBaseStandIn> server = std::make_unique<THBaseStandIn>();
  std::unique_ptr<TStoreConnector> connector = makeHBaseConnector();
  TRecordingSink sink;
  TStopFlag stop;

  HBaseFaults() { server->makeTable("out"); }

  TStoreOptions options(std::int64_t bulkSize = 0, int timeout = 60) {
    TValue record = hbaseRecord(server->port());
    record.asObject().set("timeout", timeout);
    TStoreOptions made = optionsFor(std::move(record));
    made.bulkSize = bulkSize;
    made.fetchLimit = 3;
    made.stop = &stop;
    return made;
  }

  std::unique_ptr<TTargetWriter> writer(std::int64_t bulkSize, int timeout = 60) {
    auto made = connector->connectTarget(options(bulkSize, timeout));
    made->openTarget({"target", "out", {}});
    return made;
  }

  void write(TTargetWriter& to, int first, int count) {
    for (int i = first; i < first + count; ++i)
      to.write(TObject{{"rowkey", "r" + std::to_string(1000 + i)}, {"cf:a", i}}, sink);
    to.flush(sink);
  }

  void fillRows() {
    for (int i = 1; i <= 10; ++i) server->tables().put("in", "r" + std::to_string(100 + i), "cf:a", "1");
  }

  /// The keys of what can be read, and the error that ended it.
  std::pair<std::string, std::string> read(const std::string& query = {}, int timeout = 60) {
    const auto reader = connector->connectSource(options(0, timeout));
    std::string keys;
    const std::string fault = faultOf(TStoreErrorKind::DataSource, [&] {
      reader->openRoot(hbaseSource("in", query), {});
      while (const auto row = reader->next()) keys += row->find("rowkey")->asText().substr(1) + " ";
    });
    return {keys, fault};
  }

  [[nodiscard]] std::int64_t inServer() const {
    return static_cast<std::int64_t>(server->tables().rowCount("out"));
  }
};

constexpr char allKeys[] = "101 102 103 104 105 106 107 108 109 110 ";

TEST_F(HBaseFaults, ReadingGoesOnBehindTheLastRow) {
  fillRows();
  for (const TNamedFault& loss : losses) {
    SCOPED_TRACE(loss.name);
    server->server().clearFaults();
    server->server().onCall("scannerGetList", 2, loss.fault);
    const auto [keys, fault] = read();
    EXPECT_EQ(keys, allKeys);
    EXPECT_EQ(fault, "");
    // After a connection that the server ended, the number may be another's scanner in a new process.
    const bool ours = loss.fault == TFault::hugeFrame || loss.fault == TFault::garbage;
    EXPECT_EQ(server->tables().openScanners(), ours ? 0U : 1U);
    server->tables().expireScanners();
    // One that stays makes an end, and tells how far it came.
    server->server().clearFaults();
    for (int nth = 2; nth < 20; ++nth) server->server().onCall("scannerGetList", nth, loss.fault);
    const auto [some, told] = read();
    EXPECT_EQ(some, "101 102 103 ");
    server->tables().expireScanners();
    EXPECT_TRUE(told.ends_with(" The last row that was read has the key \"r103\".")) << told;
    EXPECT_NE(told.find("127.0.0.1:" + std::to_string(server->port())), std::string::npos) << told;
  }
}

TEST_F(HBaseFaults, AnExpiredScannerIsOpenedAnew) {
  fillRows();
  const auto expireBehind = [this](const std::string& query) {
    const auto reader = connector->connectSource(options());
    reader->openRoot(hbaseSource("in", query), {});
    server->tables().expireScanners();
    std::string keys;
    const std::string fault = faultOf(TStoreErrorKind::DataSource, [&] {
      while (const auto row = reader->next()) keys += row->find("rowkey")->asText().substr(1) + " ";
    });
    return keys + fault;
  };
  EXPECT_EQ(expireBehind(""), allKeys);
  EXPECT_EQ(expireBehind("ValueFilter(=, 'binary:1')"), allKeys);
  // From the middle this filter would count anew.
  EXPECT_EQ(expireBehind("PageFilter(5)"), "101 102 103 The scanner expired on the server.");
  EXPECT_EQ(server->tables().openScanners(), 0U);
}

TEST_F(HBaseFaults, ReadingFromAServerThatGoesAndComesBack) {
  fillRows();
  const std::uint16_t port = server->port();
  const auto tables = server->sharedTables();
  const auto restart = [&] {
    server->server().stop();
    tables->restart();
    server = std::make_unique<THBaseStandIn>(thriftwire::TOptions{.port = port}, tables);
  };
  const auto rest = [](TSourceReader& reader) {
    std::string keys;
    while (const auto row = reader.next()) keys += row->find("rowkey")->asText().substr(1) + " ";
    return keys;
  };
  const auto nested = [](TSourceReader& reader) {
    std::string keys;
    reader.nested(hbaseSource("in", "PrefixFilter(:k)"), TObject{{"k", "r10"}}, [&](TObject&& row) {
      keys += row.find("rowkey")->asText().substr(1) + " ";
      return true;
    });
    return keys;
  };
  const auto reader = connector->connectSource(options());
  reader->openRoot(hbaseSource("in"), {});
  restart();
  EXPECT_EQ(rest(*reader), allKeys);
  EXPECT_EQ(tables->openScanners(), 0U);

  // The nested query finds the new server first; there the root scan's number is another client's scan.
  for (const char* query : {"", "PageFilter(9)"}) {
    SCOPED_TRACE(query);
    reader->openRoot(hbaseSource("in", query), {});
    restart();
    THBaseClient other(thriftOptions(options(), "HBase", 9090));
    const THBaseScanner others = other.openScanner({"in", "", "r105", "", true}, 3);
    EXPECT_EQ(nested(*reader), "101 102 103 104 105 106 107 108 109 ");
    std::string keys;
    const std::string fault = faultOf(TStoreErrorKind::DataSource, [&] { keys = rest(*reader); });
    EXPECT_EQ(keys, *query ? "" : allKeys);
    EXPECT_EQ(fault.find("the connection was lost, and its scan.") != std::string::npos, *query != '\0')
        << fault;
    std::vector<THBaseRow> rows;
    other.nextRows(others, 3, "in", rows);
    ASSERT_EQ(rows.size(), 3U) << "nobody closed or read it";
    EXPECT_EQ(rows[0].key, "r105");
    other.closeScanner(others);
  }

  // While it is away, what was read stays, and the message tells where it ended.
  for (const char last : {'1', '2', '3', '4'}) tables->put("odd", std::string("\xFF") + last, "cf:a", "1");
  const auto odd = connector->connectSource(options());
  odd->openRoot(hbaseSource("odd"), {});
  reader->openRoot(hbaseSource("in"), {});
  server->server().stop();
  EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { rest(*reader); }),
            "127.0.0.1:" + std::to_string(port) +
                " refused the connection. The last row that was read has the key \"r103\".");
  const std::string fault = faultOf(TStoreErrorKind::DataSource, [&] {
    while (odd->next()) continue;
  });
  EXPECT_TRUE(fault.ends_with(" has the key \"&base64;/zM=\".")) << fault;
}

TEST_F(HBaseFaults, NestedQueriesGoOnAsTheRootDoes) {
  fillRows();
  const auto reader = connector->connectSource(options());
  for (const TNamedFault& loss : losses) {
    SCOPED_TRACE(loss.name);
    reader->openRoot(hbaseSource("in"), {});
    ASSERT_TRUE(reader->next());
    int found = 0;
    server->server().clearFaults();
    server->server().onCall("scannerGetList", 2, loss.fault);
    reader->nested(hbaseSource("in"), TObject(), [&](TObject&&) {
      // Expires in the middle of both.
      if (++found == 7) server->tables().expireScanners();
      return true;
    });
    EXPECT_EQ(found, 10);
    int rest = 0;
    while (reader->next()) ++rest;
    EXPECT_EQ(rest, 9);
  }
}

TEST_F(HBaseFaults, AFilterThatLetsFewRowsPass) {
  constexpr int rows = 600;
  for (int i = 0; i < rows; ++i)
    server->tables().put("in", "r" + std::to_string(1000 + i), "cf:a", i % 30 == 7 ? "hit" : "miss");
  server->tables().setTimePerRow(std::chrono::microseconds(2000));
  TStoreOptions made = options(0, 1);
  made.fetchLimit = 20;
  const TDataSource source = hbaseSource("in", "ValueFilter(=, 'binary:hit')");
  // All twenty at once take longer than an answer may.
  EXPECT_EQ(connector->count(made, source), 20);
  const auto reader = connector->connectSource(made);
  int found = 0;
  for (reader->openRoot(source, {}); reader->next();) ++found;
  EXPECT_EQ(found, 20);
  EXPECT_EQ(server->tables().openScanners(), 0U);
}

TEST_F(HBaseFaults, EveryDocumentHasOneOutcome) {
  int first = 1;
  for (const std::int64_t bulkSize : {0, 3, 100})
    for (const TNamedFault& loss : losses) {
      SCOPED_TRACE(loss.name + std::string(", batches of ") + std::to_string(bulkSize));
      const std::string method = bulkSize == 0 ? "mutateRow" : "mutateRows";
      sink = {};
      server->server().clearFaults();
      server->server().onCall(method, bulkSize == 100 ? 1 : 2, loss.fault);
      write(*writer(bulkSize), first, 10);
      // A put can be repeated; one whose answer is absurd is not.
      EXPECT_EQ(sink.storedCount, bulkSize == 0 && loss.fault == TFault::hugeFrame ? 9 : 10);
      EXPECT_EQ(sink.storedCount + static_cast<std::int64_t>(sink.refusals.size()), 10);
      first += 10;
      EXPECT_GE(inServer(), sink.storedCount);

      // Never confirmed, never counted.
      sink = {};
      server->server().onCall("mutateRow", TWireServer::every, loss.fault);
      server->server().onCall("mutateRows", TWireServer::every, loss.fault);
      write(*writer(bulkSize), first, 10);
      EXPECT_EQ(sink.storedCount, 0);
      EXPECT_EQ(sink.refusals.size(), 10U);
      EXPECT_EQ(sink.refusals.at(0).first, "{\"rowkey\":\"r" + std::to_string(1000 + first) +
                                               "\",\"cf:a\":" + std::to_string(first) + "}");
      first += 10;
    }
}

TEST_F(HBaseFaults, ARefusedBatchIsTakenApart) {
  server->server().onCall("mutateRows", TWireServer::every, TFault::internalError);
  write(*writer(4), 1, 10);
  EXPECT_EQ(sink.storedCount, 10);
  EXPECT_EQ(inServer(), 10);
  EXPECT_EQ(server->server().calls("mutateRow"), 10U);
  server->server().onCall("mutateRow", 2, TFault::internalError);
  sink = {};
  write(*writer(4), 11, 4);
  EXPECT_EQ(sink.storedCount, 3);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_EQ(sink.refusals[0].second,
            "The server failed in mutateRow of the table out without giving a reason.");
  EXPECT_EQ(inServer(), 13);
}

TEST_F(HBaseFaults, ATableThatGoesAwayInTheMiddle) {
  for (const std::int64_t bulkSize : {0, 4}) {
    sink = {};
    const auto to = writer(bulkSize);
    write(*to, 1, 4);
    server->tables().disableTable("out");
    write(*to, 5, 4);
    EXPECT_EQ(sink.storedCount, 4);
    ASSERT_EQ(sink.refusals.size(), 4U);
    for (const auto& [text, message] : sink.refusals) EXPECT_EQ(message, "The table out is disabled.");
    server->tables().enableTable("out");
    write(*to, 5, 4);
    EXPECT_EQ(sink.storedCount, 8);
  }
}

/// As a server that goes on trying for longer than an answer is waited for.
TEST_F(HBaseFaults, ASilenceBecauseOfADisabledTableIsExplained) {
  const auto to = writer(4, 1);
  server->tables().disableTable("out");
  server->server().onCall("mutateRows", TWireServer::every, TFault::silence);
  write(*to, 1, 4);
  ASSERT_EQ(sink.refusals.size(), 4U);
  EXPECT_EQ(sink.refusals[3].second, "The table out is disabled.");
}

TEST_F(HBaseFaults, ATableIsDroppedOnlyWhenItCanBeMadeAgain) {
  const auto truncateFault = [this](const std::string& table) {
    try {
      THBaseClient(thriftOptions(options(), "HBase", 9090)).truncate(table);
    } catch (const THBaseFault& fault) {
      return std::string(fault.what());
    }
    return std::string();
  };
  hbasewire::ColumnDescriptor family;
  family.name = "cf:";
  family.bloomFilterType = "ROWPREFIX_FIXED_LENGTH";
  server->tables().createTable("odd", {family});
  server->tables().put("odd", "r", "cf:a", "1");
  EXPECT_TRUE(truncateFault("odd").starts_with(
      "The table odd was left as it is: this interface cannot make its column family {NAME => 'cf', "));
  EXPECT_EQ(server->tables().rowCount("odd"), 1U);
  server->server().onCall("createTable", 1, TFault::internalError);
  EXPECT_EQ(
      truncateFault("out"),
      "The server failed in createTable of the table out without giving a reason. The table out was dropped "
      "and could not be made again. Its column families were: {NAME => 'cf', VERSIONS => 3, COMPRESSION => "
      "'NONE', TTL => 2147483647, BLOOMFILTER => 'NONE', IN_MEMORY => false, BLOCKCACHE => false}");
}

TEST_F(HBaseFaults, AServerThatIsKilledAndComesBack) {
  for (const std::int64_t bulkSize : {0, 5}) {
    SCOPED_TRACE(bulkSize);
    sink = {};
    const auto to = writer(bulkSize);
    write(*to, 1, 20);
    const auto tables = server->sharedTables();
    const std::uint16_t port = server->port();
    server->server().stop();
    write(*to, 21, 20);
    EXPECT_EQ(sink.storedCount, 20);
    ASSERT_EQ(sink.refusals.size(), 20U);
    EXPECT_EQ(sink.refusals.back().second, "127.0.0.1:" + std::to_string(port) + " refused the connection.");
    server = std::make_unique<THBaseStandIn>(thriftwire::TOptions{.port = port}, tables);
    write(*to, 41, 20);
    EXPECT_EQ(sink.storedCount, 40);
    EXPECT_EQ(sink.refusals.size(), 20U);
    EXPECT_EQ(inServer(), 40);
  }
}

TEST_F(HBaseFaults, AConnectionThatTheServerFoundIdle) {
  fillRows();
  const auto to = writer(3);
  const auto from = connector->connectSource(options());
  from->openRoot(hbaseSource("in"), {});
  write(*to, 1, 3);
  server->server().dropConnections();
  write(*to, 4, 3);
  EXPECT_EQ(sink.storedCount, 6);
  int rows = 0;
  while (from->next()) ++rows;
  EXPECT_EQ(rows, 10);
  // Opening one more source, a nested query and a target meet such a connection, too.
  server->server().dropConnections();
  from->openRoot(hbaseSource("in"), {});
  server->server().dropConnections();
  rows = 0;
  from->nested(hbaseSource("in", "PrefixFilter(:k)"), TObject{{"k", "r10"}},
               [&](TObject&&) { return ++rows > 0; });
  EXPECT_EQ(rows, 9);
  server->server().dropConnections();
  to->openTarget({"target", "out", {}});
  write(*to, 7, 1);
  EXPECT_EQ(sink.storedCount, 7);
  THBaseClient client(thriftOptions(options(), "HBase", 9090));
  for (const auto& use : {std::function<void()>([&] { client.create("other", {{.name = "cf"}}); }),
                          std::function<void()>([&] { client.disable("other"); }),
                          std::function<void()>([&] { client.drop("other"); })}) {
    client.tables();
    server->server().dropConnections();
    EXPECT_NO_THROW(use());
  }
}

TEST_F(HBaseFaults, ASilentServerIsLeft) {
  fillRows();
  // The first answer that does not come may be one that takes long.
  for (int nth = 2; nth < 20; ++nth) server->server().onCall("scannerGetList", nth, TFault::silence);
  const auto start = steady_clock::now();
  const auto [keys, fault] = read({}, 1);
  EXPECT_EQ(keys, "101 102 103 ");
  EXPECT_NE(fault.find("did not answer within 1 second. The connection can have another answer time-out. "
                       "The last row that was read has the key \"r103\"."),
            std::string::npos)
      << fault;
  EXPECT_EQ(server->tables().openScanners(), 0U);
  // The root scan leaves the scanner that it had before a nested query gave the connection up.
  server->server().clearFaults();
  const auto reader = connector->connectSource(options(0, 1));
  reader->openRoot(hbaseSource("in"), {});
  for (int nth = 1; nth < 3; ++nth) server->server().onCall("scannerGetList", nth, TFault::silence);
  EXPECT_NE(faultOf(TStoreErrorKind::Read,
                    [&] { reader->nested(hbaseSource("in"), TObject(), [](TObject&&) { return true; }); }),
            "");
  int rows = 0;
  while (reader->next()) ++rows;
  EXPECT_EQ(rows, 10);
  EXPECT_EQ(server->tables().openScanners(), 0U);
  server->server().onCall("mutateRows", 1, TFault::halfThenSilence);
  write(*writer(10, 1), 1, 10);
  EXPECT_EQ(sink.storedCount, 0);
  EXPECT_EQ(sink.refusals.size(), 10U);
  EXPECT_LT(since(start), milliseconds(8000));
}

TEST_F(HBaseFaults, StopDoesNotWaitForASilentServer) {
  fillRows();
  const auto to = writer(10);
  const auto from = connector->connectSource(options());
  for (const char* method : {"mutateRows", "scannerGetList"})
    server->server().onCall(method, TWireServer::every, TFault::silence);
  std::jthread stopper([this] {
    std::this_thread::sleep_for(milliseconds(100));
    stop.set();
  });
  const auto start = steady_clock::now();
  write(*to, 1, 25);
  EXPECT_EQ(sink.storedCount, 0);
  EXPECT_EQ(sink.refusals.size(), 25U);
  EXPECT_NE(faultOf(TStoreErrorKind::DataSource, [&] { from->openRoot(hbaseSource("in"), {}); }), "");
  EXPECT_LT(since(start), milliseconds(2500));
}

TEST_F(HBaseFaults, StopEndsTheCountAndTheSearchForAShare) {
  fillRows();
  for (const bool counts : {true, false}) {
    TStopFlag flag;
    TStoreOptions made = options();
    made.stop = &flag;
    const auto from = connector->connectSource(made);
    server->server().clearFaults();
    server->server().onCall("scannerGetList", 2, TFault::silence);
    std::jthread stopper([&flag] {
      std::this_thread::sleep_for(milliseconds(100));
      flag.set();
    });
    const auto start = steady_clock::now();
    EXPECT_NE(faultOf(TStoreErrorKind::DataSource,
                      [&] {
                        if (counts)
                          connector->count(made, hbaseSource("in"));
                        else
                          from->openRoot(hbaseSource("in"), {2, 2, 8, 2});
                      }),
              "");
    EXPECT_LT(since(start), milliseconds(2500));
  }
}

TEST_F(HBaseFaults, ConnectingTellsWhatIsWrong) {
  const auto faultAt = [this](std::uint16_t port) {
    TStoreOptions made = options(0, 5);
    made.connection.asObject().set("port", static_cast<int>(port));
    const std::string plain = faultOf(TStoreErrorKind::Connect, [&] { connectHBase(made); });
    const std::string where = "127.0.0.1:" + std::to_string(port);
    const std::string shown = "Unable to connect to the HBase database host: " + where + " ";
    EXPECT_TRUE(plain.starts_with(shown)) << plain;
    const std::string reason = plain.substr(std::min(plain.size(), shown.size()));
    EXPECT_EQ(faultOf(TStoreErrorKind::Connect, [&] { connector->checkSource(made); }),
              "Unable to connect to source HBase database. " + reason);
    EXPECT_EQ(faultOf(TStoreErrorKind::Connect, [&] { connector->connectTarget(made); }),
              "Unable to connect to target HBase database. " + reason);
    return reason.starts_with(where) ? reason.substr(where.size()) : reason;
  };
  EXPECT_EQ(faultAt(1), " refused the connection.");
  THBaseStandIn unframed({.framed = false});
  EXPECT_EQ(faultAt(unframed.port()),
            " answers without frames; the Thrift server must be started with framed transport (-f).");
  server->server().onCall("getTableNames", TWireServer::every, TFault::close);
  EXPECT_EQ(faultAt(server->port()), " closed the connection without an answer.");
  server->server().clearFaults();
  server->server().onCall("getTableNames", TWireServer::every, TFault::hugeFrame);
  EXPECT_EQ(faultAt(server->port()),
            " announced an answer of 2147483647 bytes; at most 268435456 are taken.");
  server->server().clearFaults();
  server->server().onCall("getTableNames", TWireServer::every, TFault::internalError);
  EXPECT_EQ(faultAt(server->port()), "The server failed in getTableNames without giving a reason.");
  const THttpPeer web("HTTP/1.1 400 Bad Request\r\n\r\n");
  EXPECT_EQ(faultAt(web.port()), " is a web server, not a Thrift server with framed transport.");
  const casswire::TCassandraStandIn cassandra;
  EXPECT_EQ(faultAt(cassandra.port()),
            "The server does not know the method getTableNames: it is not HBase's first Thrift service.");
}

TEST_F(HBaseFaults, ACellOf20MB) {
  const std::string large(20 * 1024 * 1024, 'x');
  for (const char* key : {"r1", "r2", "r3"}) server->tables().put("in", key, "cf:a", large);
  const auto reader = connector->connectSource(options());
  reader->openRoot(hbaseSource("in"), {});
  int rows = 0;
  while (const auto row = reader->next()) {
    EXPECT_TRUE(row->find("cf:a")->asText() == large);
    ++rows;
  }
  EXPECT_EQ(rows, 3);
}

TEST_F(HBaseFaults, BatchesKeepWithinAFrame) {
  const auto to = writer(1000);
  for (int i = 0; i < 100; ++i)
    to->write(TObject{{"rowkey", "r" + std::to_string(i)}, {"cf:a", std::string(100'000, 'y')}}, sink);
  EXPECT_EQ(sink.storedCount, 60) << "the fourth batch is on its way, the fifth is being filled";
  to->flush(sink);
  EXPECT_EQ(sink.storedCount, 100);
  EXPECT_EQ(server->server().calls("mutateRows"), 5U);
  EXPECT_EQ(server->server().calls("mutateRow"), 0U);
}

}  // namespace

}  // namespace hollowmere
