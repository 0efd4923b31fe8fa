// hollowmere-cli with every store: from each to each, and when a server fails it.
#include <gtest/gtest.h>

#include <functional>
#include <map>

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

}  // namespace

}  // namespace hollowmere
