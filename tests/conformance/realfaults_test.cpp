// Real servers that are killed in the middle of a load and come back.
#include <atomic>
#include <set>
#include <sstream>
#include <thread>

#include "conformance/bed.h"
#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/cassandraconnector.h"
#include "connectors/hbase/hbaseclient.h"
#include "connectors/hbase/hbaseconnector.h"
#include "json/json.h"

namespace hollowmere {

namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;

/// What the test must know of a store. The table is "s.t" or "t"; it has a key and a number.
struct TVictim {
  std::string name;  ///< of the script that starts it
  std::string options;
  std::unique_ptr<TStoreConnector> (*connector)();
  TValue (*record)(std::uint16_t port);
  const char* target;
  const char* keyName;
  const char* numberName;
  void (*makeTable)(std::uint16_t port);
  /// Throws until the table can be used.
  void (*useTable)(std::uint16_t port);
  /// The keys in the table, as another client reads them.
  std::set<std::string> (*keys)(std::uint16_t port);
};
std::ostream& operator<<(std::ostream& out, const TVictim& victim) { return out << victim.name; }

const std::string servers = HOLLOWMERE_TESTS_DIR "/servers/";

std::set<std::string> linesOf(const std::string& text) {
  std::istringstream in(text);
  std::set<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.insert(line);
  return lines;
}

TVictim hbase() {
  return {
      "hbase",
      "",
      makeHBaseConnector,
      [](std::uint16_t port) { return hbaseRecord(port); },
      "t",
      "rowkey",
      "cf:n",
      [](std::uint16_t port) { makeHBaseTable(port, "t", {"cf"}); },
      [](std::uint16_t port) { connectHBase(optionsFor(hbaseRecord(port)))->row("t", "r"); },
      [](std::uint16_t port) {
        return linesOf(printedBy(
            "\"$(" + servers +
            "hbase client)\" -c \"import happybase\nfor key, cells in happybase.Connection('127.0.0.1', " +
            std::to_string(port) + ", transport='framed').table('t').scan(): print(key.decode())\""));
      }};
}

void cql(std::uint16_t port, const char* statement) {
  TCassandraClient(optionsFor(cassandraRecord(port)), "No connection.").execute(statement, TConsistency::One);
}

TVictim cassandra() {
  return {"cassandra",
          "--durable",
          makeCassandraConnector,
          [](std::uint16_t port) { return cassandraRecord(port); },
          "s.t",
          "id",
          "n",
          [](std::uint16_t port) {
            cql(port,
                "create keyspace s with replication = {'class': 'SimpleStrategy', 'replication_factor': 1}");
            cql(port, "create table s.t (id text primary key, n int)");
          },
          [](std::uint16_t port) { cql(port, "select id from s.t where id = 'r'"); },
          [](std::uint16_t port) {
            const std::string tools = printedBy(servers + "cassandra tools");
            std::set<std::string> keys;
            for (const std::string& line : linesOf(printedBy(
                     tools.substr(0, tools.find('\n')) + "/python " + servers + "cassandra.d/readback.py " +
                     std::to_string(port - 118) + " 'select id from s.t' 4")))
              keys.insert(parseJson(line).asObject().find("id")->asText());
            return keys;
          }};
}

class RealFaults : public testing::TestWithParam<TVictim> {
 protected:
  const TVictim& victim = GetParam();
  TLocalServer server{victim.options, victim.name};
  TRecordingSink sink;
  std::unique_ptr<TTargetWriter> writer;
  int written = 0;

  void SetUp() override {
    victim.makeTable(server.port());
    TStoreOptions options = optionsFor(victim.record(server.port()));
    options.bulkSize = 100;
    writer = victim.connector()->connectTarget(options);
    writer->openTarget({"target", victim.target, {}});
  }

  void write(int count) {
    for (; count > 0; --count, ++written)
      writer->write(TObject{{victim.keyName, "r" + std::to_string(written)}, {victim.numberName, written}},
                    sink);
  }

  void waitForTable() const {
    const auto until = steady_clock::now() + seconds(60);
    for (;;) try {
        return victim.useTable(server.port());
      } catch (const std::exception& error) {
        ASSERT_LT(steady_clock::now(), until) << error.what();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
      }
  }

  [[nodiscard]] int refused() const { return static_cast<int>(sink.refusals.size()); }
};

TEST_P(RealFaults, AKilledServerLosesNothingThatWasCounted) {
  write(1500);
  std::atomic<bool> dead = false;
  std::jthread killer([&] {
    server.crash();
    dead = true;
  });
  while (!dead) write(1);
  writer->flush(sink);
  const std::int64_t before = sink.storedCount;
  EXPECT_GE(before, 1000);
  const int refusedBefore = refused();
  write(500);
  writer->flush(sink);
  EXPECT_EQ(sink.storedCount, before);
  ASSERT_EQ(refused(), refusedBefore + 500);
  EXPECT_NE(sink.refusals.back().second.find("127.0.0.1:" + std::to_string(server.port())), std::string::npos)
      << sink.refusals.back().second;

  server.resume();
  waitForTable();
  write(2000);
  writer->flush(sink);
  EXPECT_EQ(sink.storedCount, before + 2000) << (refused() ? sink.refusals.back().second : "");
  EXPECT_EQ(sink.storedCount + refused(), written);

  std::set<std::string> missing;
  for (int i = 0; i < written; ++i) missing.insert("r" + std::to_string(i));
  for (const auto& [text, reason] : sink.refusals)
    missing.erase(parseJson(text).asObject().find(victim.keyName)->asText());
  EXPECT_EQ(static_cast<std::int64_t>(missing.size()), sink.storedCount) << "each document has one outcome";
  for (const std::string& key : victim.keys(server.port())) missing.erase(key);
  EXPECT_TRUE(missing.empty()) << missing.size() << " rows were counted and are not there, "
                               << *missing.begin();
}

INSTANTIATE_TEST_SUITE_P(Servers, RealFaults, testing::Values(hbase(), cassandra()),
                         [](const auto& victim) { return victim.param.name; });

}  // namespace

}  // namespace hollowmere
