#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

#include "support/mongowire/driverclient.h"
#include "support/mongowire/sink.h"

namespace hollowmere::mongowire {
namespace {

TEST(MongoSink, CountsRequestsRowsAndBytesExactly) {
  TMongoSink sink;
  std::uint64_t bytes = 0;
  for (int worker = 0; worker < 2; ++worker) {
    TDriverClient client(sink.uri());
    for (int round = 0; round < 5; ++round) {
      const std::vector<TBson> rows = numberedRows(0, 300, 400);
      for (const TBson& row : rows) bytes += row.bytes().size();
      ASSERT_TRUE(client.bulk(rows, false).ok);
    }
    ASSERT_TRUE(client.command("{\"insert\":\"rows\",\"documents\":[{\"_id\":1},{\"_id\":2}]}").ok);
    bytes += 2 * TBson::fromJson("{\"_id\":1}").bytes().size();
  }
  const TSinkCounts counts = sink.counts();
  EXPECT_EQ(counts.requests.at("insert"), 12u);
  EXPECT_EQ(counts.documents, 3004u);
  EXPECT_EQ(counts.documentBytes, bytes);
  EXPECT_EQ(counts.stored, 3004u);
  EXPECT_EQ(counts.refused, 0u);
  EXPECT_GT(counts.messageBytes, bytes);
  ASSERT_EQ(sink.countsByConnection().size(), 2u);
  EXPECT_EQ(sink.countsByConnection()[1].documents, 1502u);
  EXPECT_EQ(sink.server().violations(), 0u);
}

TEST(MongoSink, LargeMessagesAndSplitBulks) {
  TSinkOptions options;
  options.hello.maxWriteBatchSize = 400;
  options.hello.maxMessageSizeBytes = 20000000;
  TMongoSink sink(options);
  TDriverClient client(sink.uri());
  ASSERT_TRUE(client.bulk(numberedRows(0, 1000, 100), false).ok);
  EXPECT_EQ(sink.counts().requests.at("insert"), 3u);
  ASSERT_TRUE(client.bulk(numberedRows(0, 5, 6000000), false).ok);
  EXPECT_EQ(sink.counts().requests.at("insert"), 5u);
  EXPECT_EQ(sink.counts().documents, 1005u);
  EXPECT_EQ(sink.server().violations(), 0u);
}

TEST(MongoSink, RefusesEveryKthRowOverAllConnections) {
  TSinkOptions options;
  options.refuseEvery = 10;
  TMongoSink sink(options);
  const auto work = [&sink] {
    TDriverClient client(sink.uri());
    for (int round = 0; round < 10; ++round) {
      const auto answer = client.bulk(numberedRows(0, 77), false);
      const TBsonView reply = answer.reply.view();
      EXPECT_EQ(answer.error.code, 121u);
      EXPECT_GE(integerField(reply.get(), "nInserted", 0), 69);
    }
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(sink.counts().documents, 1540u);
  EXPECT_EQ(sink.counts().refused, 154u);
  EXPECT_EQ(sink.counts().stored, 1386u);
}

TEST(MongoSink, OrderedWritesStopAtTheRefusedRow) {
  TSinkOptions options;
  options.refuseEvery = 10;
  TMongoSink sink(options);
  TDriverClient client(sink.uri());
  const auto answer = client.bulk(numberedRows(0, 25), true);
  EXPECT_NE(answer.reply.json().find("\"nInserted\" : 9"), std::string::npos) << answer.reply.json();
  EXPECT_NE(answer.reply.json().find("\"index\" : 9"), std::string::npos);
  const TSinkCounts counts = sink.counts();
  EXPECT_EQ(counts.documents, 25u);
  EXPECT_EQ(counts.stored, 9u);
  EXPECT_EQ(counts.refused, 1u);
}

TEST(MongoSink, AnswersAfterTheDelay) {
  TSinkOptions options;
  options.delay = std::chrono::milliseconds(2);
  TMongoSink sink(options);
  TDriverClient client(sink.uri());
  client.command("{\"ping\":1}");
  const auto start = std::chrono::steady_clock::now();
  for (int round = 0; round < 20; ++round) client.insertOne("{}");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40));
}

class MongoSource : public testing::Test {
 protected:
  static constexpr int kRows = 5000;
  MongoSource() {
    TVirtualOptions virtualRows;
    virtualRows.count = kRows;
    virtualRows.rowsPerMatch = 3;
    virtualRows.generate = patchedTemplate(sampleDocument(434), {"_id", "number"});
    source = std::make_shared<TVirtualCollection>(virtualRows);
    TSinkOptions options;
    options.source = source;
    sink = std::make_unique<TMongoSink>(options);
  }
  /// The _id of each document found; fails when one is not as it should be.
  std::vector<std::int64_t> ids(const std::string& options, const std::string& filter = "{}") {
    TDriverClient client(sink->uri());
    std::vector<std::int64_t> found;
    for (const std::string& json : client.find(filter, options)) {
      const TBson row = TBson::fromJson(json);
      const TBsonView view = row.view();
      found.push_back(integerField(view.get(), "_id", -1));
      EXPECT_EQ(integerField(view.get(), "number", -2), found.back());
    }
    return found;
  }
  static std::vector<std::int64_t> run(std::int64_t first, std::int64_t count) {
    std::vector<std::int64_t> expected;
    for (std::int64_t i = 0; i < count; ++i) expected.push_back(first + i);
    return expected;
  }
  std::shared_ptr<TVirtualCollection> source;
  std::unique_ptr<TMongoSink> sink;
};

TEST_F(MongoSource, GivesEveryDocumentOnce) {
  EXPECT_EQ(ids("{}"), run(0, kRows));
  EXPECT_EQ(ids("{\"batchSize\":1000}"), run(0, kRows));
  EXPECT_EQ(ids("{\"batchSize\":4999,\"sort\":{\"_id\":1}}"), run(0, kRows));
  EXPECT_EQ(ids("{\"skip\":1234,\"limit\":2345,\"batchSize\":100}"), run(1234, 2345));
  EXPECT_EQ(ids("{\"skip\":4990,\"limit\":100}"), run(4990, 10));
  EXPECT_EQ(ids("{\"skip\":5000}"), run(0, 0));
  EXPECT_EQ(ids("{\"limit\":101}"), run(0, 101));
  EXPECT_EQ(source->served(), 3u * kRows + 2345 + 10 + 101);
}

TEST_F(MongoSource, CountsAndFilters) {
  TDriverClient client(sink->uri());
  EXPECT_EQ(client.count(), kRows);
  EXPECT_EQ(
      mongoc_collection_estimated_document_count(client.collection(), nullptr, nullptr, nullptr, nullptr),
      kRows);
  EXPECT_EQ(ids("{}", "{\"_id\":4999}"), run(4999, 1));
  EXPECT_EQ(ids("{}", "{\"_id\":5000}"), run(0, 0));
  EXPECT_EQ(ids("{}", "{\"parent\":20}"), run(60, 3));
  bson_error_t error;
  client.find("{\"_id\":{\"$gt\":1}}", "{}", &error);
  EXPECT_EQ(error.code, 2u);
}

TEST_F(MongoSource, BatchesStayWithinAMessage) {
  TVirtualOptions options;
  options.count = 10;
  options.generate = patchedTemplate(sampleDocument(5000000), {"_id"});
  TSinkOptions sinkOptions;
  sinkOptions.source = std::make_shared<TVirtualCollection>(options);
  TMongoSink large(sinkOptions);
  TDriverClient client(large.uri());
  EXPECT_EQ(client.find().size(), 10u);
  EXPECT_EQ(large.counts().requests.at("getMore"), 3u);
}

TEST(MongoSourceTemplate, PatchesEachKindOfField) {
  const TBson row = TBson::fromJson(
      "{\"a\":1,\"_id\":{\"$oid\":\"0123456789abcdef01234567\"},\"n\":{\"$numberLong\":\"1\"},\"i\":{\"$"
      "numberInt\":"
      "\"1\"}}");
  const TGenerator generate = patchedTemplate(row, {"_id", "n", "i"});
  std::string out = "before";
  generate(0x0102, out);
  EXPECT_EQ(TBson(std::string_view(out).substr(6)).json(),
            "{ \"a\" : 1, \"_id\" : { \"$oid\" : \"012345670000000000000102\" }, \"n\" : 258, \"i\" : 258 }");
  EXPECT_THROW(patchedTemplate(row, {"b"}), std::invalid_argument);
  EXPECT_EQ(sampleDocument(434).bytes().size(), 434u);
}

/// hm-mongo-sink with pipes to its standard streams.
class TSinkProcess {
 public:
  explicit TSinkProcess(std::vector<const char*> arguments) {
    int in[2];
    int out[2];
    if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
    arguments.insert(arguments.begin(), HM_MONGO_SINK);
    arguments.push_back(nullptr);
    pid_ = ::fork();
    if (pid_ == 0) {
      ::dup2(in[0], STDIN_FILENO);
      ::dup2(out[1], STDOUT_FILENO);
      ::execv(HM_MONGO_SINK, const_cast<char**>(arguments.data()));
      ::_exit(127);
    }
    ::close(in[0]);
    ::close(out[1]);
    input_ = in[1];
    output_ = ::fdopen(out[0], "r");
  }
  ~TSinkProcess() {
    closeInput();
    std::fclose(output_);
  }
  std::string line() {
    char text[4096] = "";
    return std::fgets(text, sizeof text, output_) ? text : "";
  }
  void closeInput() {
    if (input_ >= 0) ::close(input_);
    input_ = -1;
  }
  void terminate() { ::kill(pid_, SIGTERM); }
  int exitCode() {
    int status = 0;
    ::waitpid(pid_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_ = -1;
  int input_ = -1;
  std::FILE* output_ = nullptr;
};

TEST(MongoSinkProgram, ServesAndReportsAtTheEnd) {
  for (const bool bySignal : {true, false}) {
    TSinkProcess program(
        {"--refuse-every", "100", "--source", "1000", "--delay-ms", "0.5", "--until-stdin-closes"});
    const std::string port = program.line();
    ASSERT_GT(std::atoi(port.c_str()), 0);
    TDriverClient client("mongodb://127.0.0.1:" + std::to_string(std::atoi(port.c_str())) + "/");
    EXPECT_FALSE(client.bulk(numberedRows(0, 250), false).ok);
    EXPECT_EQ(client.find().size(), 1000u);
    bySignal ? program.terminate() : program.closeInput();
    const TBson report = TBson::fromJson(program.line());
    EXPECT_EQ(program.exitCode(), 0);
    const TBsonView view = report.view();
    EXPECT_EQ(integerField(view.get(), "documents", -1), 250);
    EXPECT_EQ(integerField(view.get(), "refused", -1), 2);
    EXPECT_EQ(integerField(view.get(), "served", -1), 1000);
    EXPECT_EQ(integerField(view.get(), "connections", -1), 1);
    EXPECT_EQ(integerField(view.get(), "violations", -1), 0);
    EXPECT_NE(report.json().find("\"insert\" : 1 "), std::string::npos) << report.json();
  }
}

}  // namespace
}  // namespace hollowmere::mongowire
