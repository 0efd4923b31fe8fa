// A MongoDB server that fails in the middle.
#include <chrono>
#include <thread>

#include "conformance/bed.h"
#include "connectors/mongodb/mongoconnector.h"
#include "support/mongowire/standin.h"

namespace hollowmere {

namespace {

namespace fault = mongowire::fault;
using mongowire::TFault;
using mongowire::TMongoStandIn;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct TNamedFault {
  const char* name;
  TFault fault;
};

/// After which the connection is lost.
std::vector<TNamedFault> losses() {
  return {{"close", fault::close()},
          {"half an answer", fault::halfThenClose()},
          {"short length", fault::wrongLength(3)},
          {"huge length", fault::wrongLength(0x7fffffff)},
          {"garbage", fault::garbageFrame()}};
}

milliseconds since(steady_clock::time_point start) {
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

class MongoFaults : public testing::Test {
 protected:
  TMongoStandIn server;
  std::unique_ptr<TStoreConnector> connector = makeMongoConnector();
  TRecordingSink sink;
  TStopFlag stop;

  TStoreOptions options(std::int64_t bulkSize = 0) {
    TStoreOptions made = optionsFor(mongoRecord(server.port()));
    made.bulkSize = bulkSize;
    made.fetchLimit = 2;
    made.stop = &stop;
    return made;
  }

  std::unique_ptr<TTargetWriter> writer(std::int64_t bulkSize) {
    auto made = connector->connectTarget(options(bulkSize));
    made->openTarget({"target", "out", {}});
    return made;
  }

  void write(TTargetWriter& to, int first, int count) {
    for (int i = first; i < first + count; ++i) to.write(TObject{{"_id", i}}, sink);
    to.flush(sink);
  }

  void fillRows() {
    server.fillJson("shop", "in",
                    {"{\"_id\":1}", "{\"_id\":2}", "{\"_id\":3}", "{\"_id\":4}", "{\"_id\":5}"});
  }

  [[nodiscard]] std::int64_t inServer() const {
    return static_cast<std::int64_t>(server.documents("shop", "out").size());
  }
};

TEST_F(MongoFaults, ReadingEndsWithAnErrorOfTheSource) {
  fillRows();
  auto all = losses();
  all.push_back({"refusal", fault::error(43, "CursorNotFound", "cursor id not found")});
  for (const TNamedFault& loss : all) {
    SCOPED_TRACE(loss.name);
    server.faults().clear();
    server.faults().onCommand("getMore", 1, loss.fault);
    const auto reader = connector->connectSource(options());
    reader->openRoot(mongoSource("in"), {});
    int rows = 0;
    const std::string text = faultOf(TStoreErrorKind::DataSource, [&] {
      while (reader->next()) ++rows;
    });
    EXPECT_EQ(rows, 2);
    EXPECT_TRUE(text.starts_with("Error Code: ")) << text;
    // The server is well again: so is the next cursor.
    reader->openRoot(mongoSource("in"), {});
    for (rows = 0; reader->next();) ++rows;
    EXPECT_EQ(rows, 5);
  }
}

TEST_F(MongoFaults, ALostNestedQueryLosesItsRow) {
  fillRows();
  // The driver tries a lost read once more, a refused one not.
  server.faults().onCommand("find", 2, fault::error(2, "BadValue", "no such thing"));
  const auto reader = connector->connectSource(options());
  reader->openRoot(mongoSource("in"), {});
  const TRowSink take = [](TObject&&) { return true; };
  EXPECT_EQ(faultOf(TStoreErrorKind::Read, [&] { reader->nested(mongoSource("in"), TObject(), take); }),
            "Error Code: 2\rError Message: no such thing");
  int rows = 0;
  reader->nested(mongoSource("in"), TObject(), [&](TObject&&) { return ++rows < 100; });
  EXPECT_EQ(rows, 5);
}

TEST_F(MongoFaults, EveryDocumentHasOneOutcome) {
  int first = 1;
  for (const std::int64_t bulkSize : {0, 3, 100})
    for (const TNamedFault& loss : losses()) {
      SCOPED_TRACE(loss.name + std::string(", batches of ") + std::to_string(bulkSize));
      sink = {};
      server.faults().clear();
      server.faults().onCommand("insert", bulkSize == 3 ? 2 : 1, loss.fault);
      const auto to = writer(bulkSize);
      write(*to, first, 10);
      const auto refused = static_cast<std::int64_t>(sink.refusals.size());
      EXPECT_EQ(sink.storedCount + refused, 10);
      EXPECT_EQ(refused, bulkSize == 0 ? 1 : bulkSize == 3 ? 3 : 10);
      for (const auto& [text, message] : sink.refusals) {
        EXPECT_TRUE(text.starts_with("{\"_id\":")) << text;
        EXPECT_TRUE(message.starts_with("Error Code: ")) << message;
      }
      first += 10;
    }
}

TEST_F(MongoFaults, ExactlyTheRefusedDocumentsAreDiscarded) {
  server.faults().onCommand("insert", mongowire::TFaultScript::kEvery, fault::refuseAt({0, 2}));
  const auto to = writer(4);
  write(*to, 1, 10);
  // Batches of 4, 4 and 2.
  EXPECT_EQ(sink.storedCount, 5);
  EXPECT_EQ(inServer(), 5);
  std::string refused;
  for (const auto& [text, message] : sink.refusals) {
    refused += text;
    EXPECT_EQ(message, "Error Code: 121\rError Message: Document failed validation");
  }
  EXPECT_EQ(refused, R"({"_id":1}{"_id":3}{"_id":5}{"_id":7}{"_id":9})");
}

TEST_F(MongoFaults, ABatchBeyondTheServersLimitsKeepsItsOutcomesApart) {
  mongowire::THello hello;
  hello.maxWriteBatchSize = 4;
  server.setHello(hello);
  int first = 1;
  for (const TFault& loss : {fault::close(), fault::error(50, "X", "time")}) {
    sink = {};
    const std::int64_t before = inServer();
    server.faults().clear();
    server.faults().onCommand("insert", 2, loss);
    const auto to = writer(10);
    write(*to, first, 10);
    EXPECT_EQ(sink.storedCount, 6);
    EXPECT_EQ(inServer() - before, 6);
    ASSERT_EQ(sink.refusals.size(), 4U);
    for (int i = 0; i < 4; ++i)
      EXPECT_EQ(sink.refusals[static_cast<std::size_t>(i)].first,
                "{\"_id\":" + std::to_string(first + 4 + i) + "}");
    first += 10;
  }
}

TEST_F(MongoFaults, ABatchOfManyBytesIsSentInParts) {
  TStoreOptions made = options(1000);
  const auto to = connector->connectTarget(made);
  to->openTarget({"target", "out", {}});
  const std::string large(9'000'000, 'x');
  for (int i = 1; i <= 12; ++i) to->write(TObject{{"_id", i}, {"x", large}}, sink);
  to->flush(sink);
  EXPECT_EQ(sink.storedCount, 12);
  EXPECT_EQ(server.requestCount("insert"), 3U);
}

TEST_F(MongoFaults, ARefusedCommandRefusesItsDocuments) {
  server.faults().onCommand("insert", 1, fault::error(13, "Unauthorized", "not authorized on shop"));
  const auto to = writer(3);
  write(*to, 1, 6);
  EXPECT_EQ(sink.storedCount, 3);
  ASSERT_EQ(sink.refusals.size(), 3U);
  EXPECT_EQ(sink.refusals[0].second, "Error Code: 13\rError Message: not authorized on shop");
}

TEST_F(MongoFaults, AServerThatIsGoneRefusesTheRest) {
  const auto to = writer(0);
  write(*to, 1, 2);
  server.stop();
  const auto start = steady_clock::now();
  write(*to, 3, 4);
  EXPECT_EQ(sink.storedCount, 2);
  EXPECT_EQ(sink.refusals.size(), 4U);
  // The driver looks for a lost server twice a second.
  EXPECT_LT(since(start), milliseconds(4000));
}

TEST_F(MongoFaults, RefusesServersThatItDoesNotUnderstand) {
  const auto connect = [&] {
    return faultOf(TStoreErrorKind::Connect, [&] { connector->connectSource(options()); });
  };
  server.setWireVersions(0, 5);
  EXPECT_NE(connect().find("(servers of version 3.6 or later can be used)"), std::string::npos);
  server.setWireVersions(0, 17);
  server.faults().setManner(mongowire::TManner::otherProtocol);
  EXPECT_TRUE(connect().starts_with("Unable to connect to source MongoDB. ")) << connect();
  server.faults().setManner(mongowire::TManner::closeAtOnce);
  EXPECT_NE(connect(), "");
  server.faults().clear();
  EXPECT_EQ(connect(), "");
}

/// Runs a call that never ends by itself and stops it; gives the time from the stop to the end.
template <typename Call>
milliseconds timeToStop(TStopFlag& stop, const std::function<bool()>& underWay, Call call) {
  steady_clock::time_point stopped;
  std::jthread stopper([&] {
    while (!underWay()) std::this_thread::sleep_for(milliseconds(1));
    std::this_thread::sleep_for(milliseconds(50));
    stopped = steady_clock::now();
    stop.set();
  });
  call();
  const auto ended = steady_clock::now();
  stopper.join();
  return std::chrono::duration_cast<milliseconds>(ended - stopped);
}

void stopWaitingAt(const std::string& command, const TNamedFault& silent) {
  SCOPED_TRACE(command + ", " + silent.name);
  TMongoStandIn quiet;
  quiet.fillJson("shop", "in", {"{\"_id\":1}", "{\"_id\":2}", "{\"_id\":3}"});
  quiet.faults().onCommand(command, mongowire::TFaultScript::kEvery, silent.fault);
  TStopFlag stop;
  TStoreOptions options = optionsFor(mongoRecord(quiet.port()));
  options.fetchLimit = 2;
  options.stop = &stop;
  const auto work = [&] {
    const auto reader = makeMongoConnector()->connectSource(options);
    const auto writer = makeMongoConnector()->connectTarget(options);
    writer->openTarget({"t", "out", {}});
    reader->openRoot(mongoSource("in"), {});
    TRecordingSink sink;
    while (auto row = reader->next()) writer->write(std::move(*row), sink);
  };
  const auto kind =
      command == "hello" || command == "ping" ? TStoreErrorKind::Connect : TStoreErrorKind::DataSource;
  const auto elapsed = timeToStop(
      stop, [&] { return quiet.requestCount(command) > 0; }, [&] { faultOf(kind, work); });
  EXPECT_LT(elapsed, milliseconds(1800));
  EXPECT_GE(elapsed, milliseconds(0)) << "ended before the stop";
}

TEST_F(MongoFaults, AStopEndsWaitingForASilentServer) {
  std::vector<std::jthread> threads;
  for (const char* command : {"hello", "ping", "find", "getMore", "insert"})
    for (const TNamedFault& silent :
         {TNamedFault{"silence", fault::silence()}, TNamedFault{"half an answer", fault::halfThenSilence()},
          TNamedFault{"too long", fault::wrongLength(100'000)}})
      threads.emplace_back([=] { stopWaitingAt(command, silent); });
}

TEST_F(MongoFaults, AStopLetsTheLastBatchOfASlowServerArrive) {
  server.faults().onCommand("insert", 1, fault::delay(milliseconds(400)));
  const auto to = writer(10);
  timeToStop(
      stop, [&] { return server.requestCount("insert") > 0; }, [&] { write(*to, 1, 10); });
  EXPECT_EQ(sink.storedCount, 10);
  EXPECT_TRUE(sink.refusals.empty());
}

}  // namespace

}  // namespace hollowmere
