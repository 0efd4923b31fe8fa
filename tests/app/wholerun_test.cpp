// hollowmere-cli with every store: from each to each, and when a server fails it.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <thread>

#include "app/place.h"
#include "app/program.h"
#include "json/json.h"
#include "project/projectdocument.h"
#include "support/localserver.h"

namespace hollowmere {

namespace {

class WholeRun : public testing::Test {
 protected:
  struct TEnd {
    std::optional<int> code;
    std::string out;
    std::string err;
  };

  TTempFolder folder;
  TProject project;
  std::string projectFile = folder.file("trial.hmp");

  void SetUp() override {
    project.projectName = "Trial";
    project.ignoreNulls = true;
    project.bulkInsert = 3;
    project.fetchLimit = 2;
    project.logFile = folder.file("log.txt");
    project.discFile = folder.file("discard.txt");
  }

  TEnd cli(const std::vector<std::string>& arguments, const std::string& input = {}) {
    TProgramRun process(folder, HOLLOWMERE_CLI, arguments, input);
    const auto code = process.wait();
    return {code, process.out(), process.err()};
  }
  void seal() {
    const TEnd sealed = cli({"seal", "-", projectFile}, toJson(toDocument(project)));
    ASSERT_EQ(sealed.code, 0) << sealed.err;
  }

  void connect(const TPlace& from, const std::string& source, const TPlace& to, const std::string& target) {
    project.source = from.side(source);
    project.target = to.side(target);
    project.degree = from.isFile() || to.isFile() ? 1 : 2;
    project.dataSources.clear();
    project.dataTargets.clear();
    project.mapping.clear();
  }
  void map(const TPlace& from, const std::string& source, const TPlace& to, const std::string& target) {
    project.dataSources.push_back(from.source(source));
    project.dataTargets.push_back({target, to.target(target), {}});
    const bool people = source.starts_with("people");
    TMapNode root{target, source, "Data Source (JSON List)", {}};
    const auto add = [&](const char* name, const char* type) {
      root.children.push_back({to.field(name), from.field(name), type, {}});
    };
    add("_id", people ? "Number" : "String");
    if (!people) add("owner", "Number");
    if (!people) add("what", "String");
    if (people) {
      add("name", "String");
      add("flag", "Boolean");
      add("big", "Number");
      add("ratio", "Number");
      add("born", "DateTime");
      add("photo", "Binary");
      add("amount", "String");
      add("tags", "JSON List");
      add("address", "JSON Object");
      add("note", "String");
      mapItems(from, to, root);
    }
    project.mapping.push_back(std::move(root));
  }

  TEnd run() {
    writeBytes(project.logFile, {});
    writeBytes(project.discFile, {});
    seal();
    return cli({"run", "--json", "--quiet", projectFile});
  }
  [[nodiscard]] std::string log() const { return readBytes(project.logFile); }
  [[nodiscard]] bool logged(const std::string& text) const { return log().find(text) != std::string::npos; }

 private:
  /// A list in the document itself, or the rows of a query for each.
  void mapItems(const TPlace& from, const TPlace& to, TMapNode& root) {
    TDataSource nested = from.nested("items");
    if (nested.name.empty()) {
      root.children.push_back({to.field("items"), from.field("items"), "JSON List", {}});
      return;
    }
    nested.name = "own";
    root.children.push_back(
        {to.field("items"),
         nested.name,
         "Data Source (JSON List)",
         {{"number", from.field("_id"), "String", {}}, {"what", from.field("what"), "String", {}}}});
    project.dataSources.push_back(std::move(nested));
  }
};

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

/// people.json and items.json are loaded; what a place holds then, or after a load from any other place,
/// stands in a file named after its store.
std::string caseFile(const std::string& name) { return HOLLOWMERE_TESTS_DIR "/cases/wholerun/" + name; }

class EveryWay : public WholeRun {
 protected:
  void loadAll(const std::vector<TPlace*>& places) {
    for (const char* name : {"people.json", "items.json"})
      writeBytes(folder.file(name), readBytes(caseFile(name)));
    const TPlace& file = *places.front();
    for (TPlace* to : places)
      if (!to->isFile()) fill(file, *to);
    for (const TPlace* from : places)
      for (TPlace* to : places)
        if (!from->isFile()) move(*from, *to);
  }

 private:
  void fill(const TPlace& file, TPlace& to) {
    SCOPED_TRACE("JSON File to " + to.dbType());
    for (const std::string name : {"people", "items"}) {
      to.make(name);
      connect(file, name, to, name);
      map(file, name, to, name);
      const bool people = name == "people";
      expectRun({{5 - !people, people}});
      EXPECT_EQ(readBytes(project.discFile), people ? "{\"_id\":\n" : "");
    }
    expectContent(to, "people", "items");
  }

  /// Two root mappings in one run.
  void move(const TPlace& from, TPlace& to) {
    SCOPED_TRACE(from.dbType() + " to " + to.dbType());
    const std::string suffix = from.dbType() == "MongoDB" ? "_m" : from.dbType() == "HBase" ? "_h" : "_c";
    const std::string people = "people" + suffix, items = "items" + suffix;
    to.make(people);
    to.make(items);
    connect(from, "people", to, people);
    map(from, "people", to, people);
    map(from, "items", to, items);
    expectRun({{5, 0}, {4, 0}});
    EXPECT_EQ(readBytes(project.discFile), "");
    expectContent(to, people, items);
  }

  static void expectContent(const TPlace& place, const std::string& people, const std::string& items) {
    std::string found = joined(place.content(people));
    // A file has both already.
    if (!place.isFile()) found += joined(place.content(items));
    EXPECT_EQ(found, readBytes(caseFile(place.dbType() + ".txt")));
  }

  /// Runs, and holds totals and log against what was loaded and skipped of each mapping.
  void expectRun(const std::vector<std::pair<int, int>>& counts) {
    const TEnd end = run();
    ASSERT_EQ(end.code, 0) << end.err;
    EXPECT_EQ(end.err, "");
    const TValue result = parseJson(end.out);
    const TList& mappings = result.asObject().find("mappings")->asList();
    ASSERT_EQ(mappings.size(), counts.size());
    for (std::size_t i = 0; i < counts.size(); ++i) {
      const TObject& mapping = mappings[i].asObject();
      EXPECT_EQ(*mapping.find("loaded"), TValue(counts[i].first));
      EXPECT_EQ(*mapping.find("skipped"), TValue(counts[i].second));
      EXPECT_EQ(*mapping.find("discarded"), TValue(0));
      EXPECT_EQ(*mapping.find("complete"), TValue(true));
      const TMapNode& root = project.mapping[i];
      EXPECT_TRUE(logged("\n" + root.source + " -> " + root.target + " total loaded documents " +
                         std::to_string(counts[i].first) + "\n"));
      if (project.degree > 1) expectShares(counts[i].first);
      EXPECT_EQ(count("Finished loading " + root.source + " -> " + root.target + "\n"), project.degree);
    }
    EXPECT_EQ(count("Total thread rows/documents to load "), project.degree > 1 ? 2 * std::ssize(counts) : 0);
    EXPECT_FALSE(logged("General error occurred: ")) << log();
    EXPECT_FALSE(logged("read at once")) << log();
  }

  void expectShares(int rows) {
    const auto share = [&](int thread, int first, int last) {
      const std::string text = ": Thread#" + std::to_string(thread) + ": ";
      EXPECT_TRUE(logged(text + "Start row/document number " + std::to_string(first) + "\n"));
      EXPECT_TRUE(logged(text + "Finish row/document number " + std::to_string(last) + "\n"));
      EXPECT_TRUE(
          logged(text + "Total thread rows/documents to load " + std::to_string(last - first + 1) + "\n"));
    };
    share(1, 1, rows / 2);
    share(2, rows / 2 + 1, rows);
  }

  [[nodiscard]] std::ptrdiff_t count(const std::string& text) const {
    const std::string all = log();
    std::ptrdiff_t found = 0;
    for (std::size_t at = 0; (at = all.find(text, at)) != std::string::npos; ++at) ++found;
    return found;
  }
};

TEST_F(EveryWay, StandIns) {
  mongowire::TMongoStandIn mongo;
  casswire::TCassandraStandIn cassandra;
  hbasewire::THBaseStandIn hbase;
  const auto files = makeFilePlace(folder);
  const auto mongoPlace = makeMongoPlace(mongo.port());
  const auto cassandraPlace = makeCassandraPlace(cassandra);
  const auto hbasePlace = makeHBasePlace(hbase.port());
  loadAll({files.get(), mongoPlace.get(), cassandraPlace.get(), hbasePlace.get()});
}

TEST_F(EveryWay, Servers) {
  const TLocalServer mongo, cassandra({}, "cassandra"), hbase({}, "hbase");
  const auto files = makeFilePlace(folder);
  const auto mongoPlace = makeMongoPlace(mongo.port());
  const auto cassandraPlace = makeCassandraPlace(cassandra.port());
  const auto hbasePlace = makeHBasePlace(hbase.port());
  loadAll({files.get(), mongoPlace.get(), cassandraPlace.get(), hbasePlace.get()});
}

/// A server with many items that fails in the middle of a load.
struct TVictim {
  virtual ~TVictim() = default;
  std::unique_ptr<TPlace> place;
  virtual int calls() = 0;  ///< that moved rows
  virtual void die() = 0;
  virtual void fallSilent() = 0;  ///< a few calls from now
  virtual std::size_t items() = 0;
};

struct TCassandraVictim : TVictim {
  TCassandraVictim() {
    server.setDelay(std::chrono::milliseconds(1));
    place = makeCassandraPlace(server);
  }
  int calls() override { return server.calls(prepared); }
  void die() override { server.stop(); }
  void fallSilent() override { server.fail(prepared, casswire::TFault::Silence, 3, 1000); }
  std::size_t items() override { return server.tables().at("shop.items").rows.size(); }

  static constexpr char prepared[] = "execute_prepared_cql3_query";
  casswire::TCassandraStandIn server;
};

struct THBaseVictim : TVictim {
  THBaseVictim() { place = makeHBasePlace(server.port()); }
  int calls() override {
    return static_cast<int>(server.server().calls(read) + server.server().calls(write));
  }
  void die() override { server.server().stop(); }
  void fallSilent() override {
    for (const char* method : {read, write}) server.server().onCall(method, 4, thriftwire::TFault::silence);
  }
  std::size_t items() override { return server.tables().rowCount("items"); }

  static constexpr char read[] = "scannerGetList";
  static constexpr char write[] = "mutateRows";
  hbasewire::THBaseStandIn server{{.delay = std::chrono::milliseconds(1)}};
};

class BadServer : public WholeRun, public testing::WithParamInterface<const char*> {
 protected:
  static constexpr int many = 2000;

  void SetUp() override {
    WholeRun::SetUp();
    project.fetchLimit = project.bulkInsert = 20;
    std::string lines;
    for (int i = 1; i <= many; ++i) {
      const std::string number = std::to_string(i);
      lines += R"({"_id":")" + number + R"(","owner":)" + number + R"(,"what":"w"})" + '\n';
    }
    writeBytes(folder.file("items.json"), lines);
    if (GetParam() == std::string("HBase"))
      victim = std::make_unique<THBaseVictim>();
    else
      victim = std::make_unique<TCassandraVictim>();
  }

  /// Out of the victim into another database, or out of a file into the victim.
  void load(bool fromVictim) {
    if (fromVictim) {
      load(*file, *victim->place);
      ASSERT_EQ(run().code, 0);
      load(*victim->place, *other);
    } else {
      load(*file, *victim->place);
    }
  }

  /// Runs until the victim has been asked that often, then lets it happen. Gives the mapping's totals, which
  /// the log must have, too.
  TObject runUntil(int asked, const std::function<void(TProgramRun&)>& happen) {
    writeBytes(project.logFile, {});
    writeBytes(project.discFile, {});
    seal();
    asked += victim->calls();
    TProgramRun process(folder, HOLLOWMERE_CLI, {"run", "--json", "--quiet", projectFile});
    while (victim->calls() < asked && !(code = process.wait(std::chrono::milliseconds(1)))) continue;
    if (code) throw std::runtime_error("ended too early: " + process.err());
    happen(process);
    code = process.wait(std::chrono::seconds(60));
    const TValue result = parseJson(process.out());
    TObject totals = result.asObject().find("mappings")->asList().at(0).asObject();
    for (const std::string name : {"loaded", "discarded", "skipped", "processed"})
      EXPECT_TRUE(
          logged("\nTotal " + name + " rows/documents " + std::to_string(number(totals, name)) + "\n"))
          << log();
    return totals;
  }
  static std::int64_t number(const TObject& totals, const std::string& name) {
    return totals.find(name)->asInt();
  }
  static bool complete(const TObject& totals) { return totals.find("complete")->asBool(); }

  void expectCancelled() {
    victim->fallSilent();
    const TObject totals = runUntil(3, [](TProgramRun& process) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      process.signal(SIGINT);
    });
    EXPECT_EQ(code, 130);
    EXPECT_FALSE(complete(totals));
    EXPECT_FALSE(logged("General error occurred: ")) << log();
    EXPECT_TRUE(logged("Thread#1: Cancelled loading items -> items\n")) << log();
    EXPECT_TRUE(logged("Thread#1: Load operation cancelled at ")) << log();
    const std::string discarded = readBytes(project.discFile);
    EXPECT_EQ(number(totals, "discarded"), std::count(discarded.begin(), discarded.end(), '\n'));
  }

  mongowire::TMongoStandIn mongo;
  std::unique_ptr<TVictim> victim;
  std::unique_ptr<TPlace> file = makeFilePlace(folder);
  std::unique_ptr<TPlace> other = makeMongoPlace(mongo.port());
  std::optional<int> code;

 private:
  void load(const TPlace& from, TPlace& to) {
    to.make("items");
    connect(from, "items", to, "items");
    map(from, "items", to, "items");
    // One thread, and no counting before it: it is the load that meets the fault.
    project.degree = 1;
    project.skipCount = true;
  }
};

INSTANTIATE_TEST_SUITE_P(Stores, BadServer, testing::Values("Cassandra", "HBase"),
                         [](const auto& store) { return std::string(store.param); });

TEST_P(BadServer, ASourceThatDiesIsToldOfAndWhatWasReadIsCounted) {
  load(true);
  const TObject totals = runUntil(4, [&](TProgramRun&) { victim->die(); });
  EXPECT_EQ(code, 0);
  EXPECT_FALSE(complete(totals));
  EXPECT_TRUE(logged("General error occurred: ")) << log();
  EXPECT_LT(number(totals, "loaded"), many);
  EXPECT_EQ(number(totals, "loaded"), std::ssize(other->content("items")));
  EXPECT_EQ(number(totals, "processed"), number(totals, "loaded"));
  EXPECT_EQ(readBytes(project.discFile), "");
}

TEST_P(BadServer, ATargetThatDiesLosesNothingUnsaid) {
  load(false);
  const TObject totals = runUntil(4, [&](TProgramRun&) { victim->die(); });
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(complete(totals)) << "the source was read to its end";
  EXPECT_GT(number(totals, "loaded"), 0);
  EXPECT_LE(number(totals, "loaded"), victim->items());
  EXPECT_EQ(number(totals, "loaded") + number(totals, "discarded"), many);
  const std::string discarded = readBytes(project.discFile);
  EXPECT_EQ(number(totals, "discarded"), std::count(discarded.begin(), discarded.end(), '\n'));
}

TEST_P(BadServer, AStopWhileASilentSourceIsAwaitedCancels) {
  load(true);
  expectCancelled();
}

TEST_P(BadServer, AStopWhileASilentTargetIsAwaitedCancels) {
  load(false);
  expectCancelled();
}

TEST_F(WholeRun, AQueryThatIsReadAtOnceIsRemarkedUpon) {
  casswire::TCassandraStandIn server;
  const auto from = makeCassandraPlace(server), to = makeFilePlace(folder);
  from->make("items");
  server.tables().at("shop.items").put({std::string("\0\0\0\1", 4), "1-1", "pen"});
  connect(*from, "items", *to, "counted");
  TDataSource counting = from->source("items");
  counting.definition.asObject().set("query", "select count(*) from items");
  project.dataSources = {counting};
  project.dataTargets = {{"file", "counted", {}}};
  project.mapping = {{"file", "items", "Data Source (JSON List)", {{"n", "count", "Number", {}}}}};
  ASSERT_EQ(run().code, 0);
  EXPECT_EQ(readBytes(folder.file("counted.json")), "{\"n\":1.0}\r");
  EXPECT_TRUE(logged(": Thread#1: The query is read at once, with all its rows in memory: ")) << log();
}

TEST_F(WholeRun, CheckSaysInALineWhatIsWrong) {
  mongowire::TMongoStandIn mongo;
  casswire::TCassandraStandIn cassandra, locked;
  hbasewire::THBaseStandIn hbase, unframed({.framed = false});
  locked.setPassword("right");
  const auto file = makeFilePlace(folder);
  writeBytes(folder.file("people.json"), "{}");
  struct TWrong {
    std::unique_ptr<TPlace> place;
    const char* user;
    const char* says;
  };
  const auto cassandraAt = [](std::uint16_t port) { return makeCassandraPlace(port); };
  std::vector<TWrong> table;
  table.push_back({cassandraAt(1), "", "refused the connection"});
  table.push_back({makeCassandraPlace(locked), "", "You must supply valid username and password"});
  table.push_back({makeCassandraPlace(locked), "ann", "Username and/or password are incorrect"});
  table.push_back({cassandraAt(unframed.port()), "", "without frames"});
  table.push_back({cassandraAt(hbase.port()), "", "is not Cassandra's Thrift interface"});
  table.push_back({cassandraAt(mongo.port()), "", "closed the connection without an answer"});
  table.push_back({makeHBasePlace(1), "", "refused the connection"});
  table.push_back({makeHBasePlace(unframed.port()), "", "framed transport"});
  table.push_back({makeHBasePlace(cassandra.port()), "", "it is not HBase's first Thrift service"});
  table.push_back({makeHBasePlace(mongo.port()), "", "closed the connection without an answer"});
  bool asSource = false;
  for (const TWrong& wrong : table) {
    asSource = !asSource;
    SCOPED_TRACE(wrong.place->dbType() + ": " + wrong.says);
    const TPlace& from = asSource ? *wrong.place : *file;
    const TPlace& to = asSource ? *file : *wrong.place;
    connect(from, "people", to, "people");
    map(from, "people", to, "people");
    TObject& connection = (asSource ? project.source : project.target).connection.asObject();
    connection.set("user", wrong.user);
    connection.set("password", "gh0st-word");
    seal();
    const TEnd end = cli({"check", projectFile});
    EXPECT_EQ(end.code, 1);
    const std::string begin =
        "hollowmere-cli: Unable to connect to " + std::string(asSource ? "source" : "target") + " database: ";
    EXPECT_TRUE(end.err.starts_with(begin)) << end.err;
    EXPECT_NE(end.err.find(wrong.says), std::string::npos) << end.err;
    EXPECT_EQ(end.err.find('\n'), end.err.size() - 1) << end.err;
    EXPECT_EQ((end.err + log()).find("gh0st"), std::string::npos);
  }
}

}  // namespace

}  // namespace hollowmere
