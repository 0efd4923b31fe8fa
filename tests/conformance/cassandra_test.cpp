// The Cassandra store on a real server.
#include <cstdio>
#include <map>
#include <set>
#include <sstream>

#include "conformance/bed.h"
#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/cassandraconnector.h"
#include "connectors/cassandra/cassschema.h"
#include "json/json.h"

namespace hollowmere {

namespace {

std::string outputOf(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  for (int c; pipe && (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
  return pipe && pclose(pipe) == 0 ? output : "failed: " + command;
}

/// 311 of "3.11".
int numberOf(const std::string& release) {
  return std::stoi(release.substr(0, 1)) * 100 + std::stoi(release.substr(2));
}

/// By default both schema dialects, both forms of collections.
std::vector<std::string> releases() {
  std::vector<std::string> all = moreCassandraReleases();
  all.insert(all.begin(), {"3.11", "2.1"});
  return all;
}

class CassandraServer : public testing::TestWithParam<std::string> {
 protected:
  std::uint16_t port = sharedCassandra(GetParam()).port();
  int release = numberOf(GetParam());
  bool modern = release >= 300;
  std::unique_ptr<TStoreConnector> connector = makeCassandraConnector();
  TRecordingSink sink;
  TCassandraClient client{options(), "No connection."};

  void SetUp() override {
    cql("drop keyspace if exists s");
    cql("create keyspace s with replication = {'class': 'SimpleStrategy', 'replication_factor': 1}");
    client.setKeyspace("s");
  }

  [[nodiscard]] TStoreOptions options(std::int64_t bulkSize = 0) const {
    TStoreOptions made = optionsFor(cassandraRecord(port));
    made.bulkSize = bulkSize;
    made.fetchLimit = 7;
    return made;
  }

  void cql(const std::string& statement) { client.execute(statement, TConsistency::One); }

  static TDataSource source(const std::string& table, const std::string& query) {
    return {table, TObject{{"keyspace", "s"}, {"columnfamily", table}, {"query", query}}, 0};
  }

  void write(const std::string& table, const std::vector<TObject>& documents, std::int64_t bulkSize = 0) {
    const auto writer = connector->connectTarget(options(bulkSize));
    writer->openTarget({"t", "s." + table, {}});
    for (const TObject& document : documents) writer->write(TObject(document), sink);
    writer->flush(sink);
  }

  std::vector<TObject> read(const std::string& table, const std::string& query = {}) {
    const auto reader = connector->connectSource(options());
    reader->openRoot(source(table, query.empty() ? "select * from " + table : query), {});
    std::vector<TObject> rows;
    while (auto row = reader->next()) rows.push_back(std::move(*row));
    return rows;
  }

  std::string readBack(const std::string& query) const {
    const std::string servers = HOLLOWMERE_TESTS_DIR "/servers/";
    std::string tools = outputOf(servers + "cassandra tools");
    tools = tools.substr(0, tools.find('\n'));
    return outputOf(tools + "/python " + servers + "cassandra.d/readback.py " + std::to_string(port - 118) +
                    " \"" + query + "\" " + (modern ? "4" : "3"));
  }
};

constexpr char everyType[] =
    "create table every (id int primary key, t text, a ascii, b blob, yes boolean, big bigint, v varint, d "
    "decimal, f float, "
    "r double, at timestamp, u uuid, tu timeuuid, ip inet, l list<int>, s set<text>, m map<text, bigint>, "
    "fl frozen<list<text>>, nested map<text, frozen<list<int>>>, tup frozen<tuple<int, text>>";

/// A document for that table, and what a reader gives for it.
TObject everyDocument() {
  return TObject{{"id", 1},
                 {"t", "Kr\xC3\xA4he 'quoted' \"double\""},
                 {"a", "ascii"},
                 {"b", TValue::binary(std::string("\0\xFF", 2))},
                 {"yes", true},
                 {"big", TValue::wideInt(-9223372036854775807 - 1)},
                 {"v", TValue::decimal("123456789012345678901234567890")},
                 {"d", TValue::decimal("-1.50")},
                 {"f", 1.1},
                 {"r", 0.1},
                 {"at", TValue::dateTime(-1)},
                 {"u", "550e8400-e29b-41d4-a716-446655440000"},
                 {"tu", "50554d6e-29bb-11e5-b345-feff819cdc9f"},
                 {"ip", "192.168.0.1"},
                 {"l", TList{3, 1, 2}},
                 {"s", TList{"a", "b"}},
                 {"m", TObject{{"x", 1}, {"y", 2}}},
                 {"fl", TList{"f"}},
                 {"nested", TObject{{"k", TList{1, 2}}}},
                 {"tup", TList{5, nullptr}}};
}

TEST_P(CassandraServer, EveryTypeComesBack) {
  cql(std::string(everyType) + ")");
  write("every", {everyDocument(), TObject{{"id", 2}}}, 10);
  ASSERT_EQ(sink.storedCount, 2) << sink.refusals[0].second;
  const std::vector<TObject> rows = read("every", "select * from every where id = 1");
  ASSERT_EQ(rows.size(), 1U);
  for (const TMember& member : everyDocument()) {
    const TValue* value = rows[0].find(member.name);
    ASSERT_TRUE(value) << member.name;
    EXPECT_TRUE(*value == member.value) << member.name << ": " << toJson(*value);
  }
  EXPECT_EQ(toJson(read("every", "select id, t, l from every where id = 2")[0]),
            R"({"id":2,"t":null,"l":null})");
}

TEST_P(CassandraServer, TextsOfAllFormsAreTakenByType) {
  cql(std::string(everyType) + ")");
  write("every", {TObject{{"id", "3"},
                          {"t", 5},
                          {"b", "&base64;AP8="},
                          {"yes", "True"},
                          {"big", "9007199254740993"},
                          {"v", "-129"},
                          {"d", "1E+3"},
                          {"f", "2.5"},
                          {"r", 3},
                          {"at", "2026-01-02T03:04:05.678Z"},
                          {"u", "550E8400-E29B-41D4-A716-446655440000"},
                          {"ip", "::1"},
                          {"l", "[1,2]"},
                          {"m", R"({"x":"7"})"},
                          {"nested", R"({"k":[1]})"},
                          {"tup", R"([1,"&str;2"])"}}});
  ASSERT_EQ(sink.storedCount, 1) << sink.refusals[0].second;
  TObject row = read("every")[0];
  for (auto at = row.begin(); at != row.end();) at = at->value.isNull() ? row.erase(at) : at + 1;
  EXPECT_EQ(
      toJson(row),
      R"({"id":3,"at":"2026-01-02T03:04:05.678Z","b":"&base64;AP8=","big":9007199254740993,"d":1000,"f":2.5,)"
      R"("ip":"0:0:0:0:0:0:0:1","l":[1,2],"m":{"x":7},"nested":{"k":[1]},"r":3.0,"t":"5","tup":[1,"2"],)"
      R"("u":"550e8400-e29b-41d4-a716-446655440000","v":-129,"yes":true})");
}

TEST_P(CassandraServer, BlobsAreTextOnlyWhereNothingIsLost) {
  cql("create table blobs (id int primary key, b blob)");
  const std::vector<std::string> texts{
      "plain text", "Kr\xC3\xA4he\nzwei", "&base64;AAAA", "ends in\x1E", " blank", "\xFF"};
  std::vector<TObject> documents;
  for (std::size_t i = 0; i < texts.size(); ++i)
    documents.push_back(TObject{{"id", static_cast<int>(i)}, {"b", TValue::binary(std::string(texts[i]))}});
  write("blobs", documents);
  for (const TObject& row : read("blobs")) {
    const std::int64_t id = row.find("id")->asInt();
    const std::string& text = texts[static_cast<std::size_t>(id)];
    EXPECT_TRUE(*row.find("b") == (id < 2 ? TValue(text) : TValue::binary(std::string(text)))) << text;
  }
}

TEST_P(CassandraServer, AnIndependentClientReadsTheSame) {
  cql(std::string(everyType) + ")");
  cql("create table hits (page text primary key, n counter)");
  std::vector<TObject> documents(13, everyDocument());
  for (std::size_t i = 0; i < documents.size(); ++i) documents[i].set("id", static_cast<int>(i));
  write("every", documents, 100);
  write("hits", std::vector<TObject>(3, TObject{{"page", "a"}, {"n", 5}}), 100);
  ASSERT_EQ(sink.storedCount, 16);
  const std::string text = readBack("select * from s.every");
  if (text.starts_with("failed: ")) GTEST_SKIP() << "the Python driver cannot be had: " << text;
  EXPECT_EQ(readBack("select * from s.hits"), "{\"n\": 15, \"page\": \"a\"}\n");
  const std::map<std::string, TValue> expected = {{"t", "Kr\xC3\xA4he 'quoted' \"double\""},
                                                  {"b", "00ff"},
                                                  {"yes", true},
                                                  {"d", "-1.50"},
                                                  {"r", "0.1"},
                                                  {"at", "1969-12-31 23:59:59.999000"},
                                                  {"u", "550e8400-e29b-41d4-a716-446655440000"},
                                                  {"ip", "192.168.0.1"},
                                                  {"tu", "50554d6e-29bb-11e5-b345-feff819cdc9f"},
                                                  {"v", TValue::decimal("123456789012345678901234567890")},
                                                  {"l", TList{3, 1, 2}},
                                                  {"s", TList{"a", "b"}},
                                                  {"m", TObject{{"x", 1}, {"y", 2}}},
                                                  {"fl", TList{"f"}},
                                                  {"nested", TObject{{"k", TList{1, 2}}}},
                                                  {"tup", TList{5, nullptr}}};
  std::set<std::int64_t> ids;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const TValue back = parseJson(line);
    ids.insert(back.asObject().find("id")->asInt());
    for (const auto& [name, value] : expected) {
      const TValue* found = back.asObject().find(name);
      EXPECT_TRUE(found && *found == value) << name << ": " << (found ? toJson(*found) : "missing");
    }
  }
  EXPECT_EQ(ids.size(), documents.size());
}

TEST_P(CassandraServer, UserTypes) {
  cql("create type s.addr (street text, zip int, tags frozen<set<text>>)");
  cql("create table users (id int primary key, home frozen<addr>, homes list<frozen<addr>>)");
  const TObject document{{"id", 1},
                         {"home", TObject{{"street", "Main"}, {"zip", 1010}, {"tags", TList{"x"}}}},
                         {"homes", TList{TObject{{"street", "A"}, {"zip", nullptr}, {"tags", nullptr}}}}};
  write("users", {document, TObject{{"id", 3}, {"home", TObject{{"strasse", "x"}}}}}, 10);
  EXPECT_EQ(sink.storedCount, 1);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_NE(sink.refusals[0].second.find("it has no field strasse"), std::string::npos)
      << sink.refusals[0].second;
  const std::vector<TObject> rows = read("users");
  for (const TMember& member : document)
    EXPECT_TRUE(*rows.at(0).find(member.name) == member.value)
        << member.name << toJson(*rows[0].find(member.name));
}

TEST_P(CassandraServer, NewerTypes) {
  if (release < 202) GTEST_SKIP() << "it has none of them";
  const bool durations = release >= 311;
  cql(std::string("create table newer (id int primary key, day date, t time, si smallint, ti tinyint") +
      (durations ? ", du duration)" : ")"));
  TObject document{
      {"id", 1}, {"day", "2026-02-28"}, {"t", "13:14:15.000000016"}, {"si", -32768}, {"ti", 127}};
  if (durations) document.add("du", "1y2mo3d4h5m6s7ms8us9ns");
  write("newer", {document, TObject{{"id", 2}, {"ti", 128}}}, 10);
  EXPECT_EQ(sink.storedCount, 1);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_EQ(sink.refusals[0].second, "Column ti of type tinyint cannot take the integer 128 (out of range)");
  const std::vector<TObject> rows = read("newer");
  for (const TMember& member : document)
    EXPECT_TRUE(*rows.at(0).find(member.name) == member.value)
        << member.name << toJson(*rows[0].find(member.name));
  const std::string text = readBack("select day, t, si, ti from s.newer");
  if (text.starts_with("failed: ")) GTEST_SKIP() << "the Python driver cannot be had: " << text;
  EXPECT_EQ(text, R"({"day": "2026-02-28", "si": -32768, "t": "13:14:15.000000016", "ti": 127})"
                  "\n");
}

TEST_P(CassandraServer, CountersAreAddedTo) {
  cql("create table hits (page text, day int, n counter, primary key (page, day))");
  write("hits", {TObject{{"page", "a"}, {"n", 5}, {"day", 1}}, TObject{{"page", "a"}, {"n", 2}, {"day", 1}}},
        10);
  EXPECT_EQ(sink.storedCount, 2) << sink.refusals[0].second;
  EXPECT_EQ(toJson(read("hits")[0]), R"({"page":"a","day":1,"n":7})");
}

TEST_P(CassandraServer, RowsThatTheServerRefuses) {
  cql("create table keyed (k text, c int, v text, primary key (k, c))");
  write("keyed",
        {TObject{{"k", "a"}, {"c", 1}}, TObject{{"k", ""}, {"c", 1}, {"v", "x"}},
         TObject{{"k", "a"}, {"c", nullptr}}, TObject{{"k", "b"}, {"c", 2}, {"v", "y"}}},
        100);
  EXPECT_EQ(sink.storedCount, 2);
  ASSERT_EQ(sink.refusals.size(), 2U);
  std::set<std::string> reasons{sink.refusals[0].second, sink.refusals[1].second};
  EXPECT_TRUE(reasons.contains("Key may not be empty")) << *reasons.begin();
}

TEST_P(CassandraServer, LargeTablesAreReadOnceByAllThreads) {
  cql("create table wide (p int, a int, b text, v text, st text static, primary key (p, a, b)) with "
      "clustering order by (a desc)");
  std::vector<TObject> documents;
  std::set<std::string> all;
  for (int p = 0; p < 12; ++p)
    for (int i = 0; i < 40; ++i) {
      const std::string v = std::to_string(p) + "/" + std::to_string(i);
      documents.push_back(TObject{{"p", p}, {"a", i / 4}, {"b", std::to_string(i % 4)}, {"v", v}});
      all.insert(v);
    }
  write("wide", documents, 100);
  ASSERT_EQ(sink.storedCount, 480);
  cql("insert into wide (p, st) values (99, 'only static')");
  EXPECT_EQ(connector->count(options(), source("wide", "SELECT v FROM wide")), 481);
  for (const char* query : {"select v from wide", "select a, v from wide where v > '' allow filtering"})
    for (const int degree : {1, 3}) {
      if (!modern && std::string(query).find("filtering") != std::string::npos) continue;
      std::set<std::string> found;
      std::size_t statics = 0;
      for (int number = 1; number <= degree; ++number) {
        const auto reader = connector->connectSource(options());
        reader->openRoot(source("wide", query), {number, degree, (number - 1) * 160, 160});
        while (const auto row = reader->next()) {
          if (row->find("v")->isNull())
            ++statics;
          else
            EXPECT_TRUE(found.insert(row->find("v")->asText()).second);
        }
      }
      EXPECT_EQ(found, all) << query << degree;
      EXPECT_EQ(statics, std::string(query).find("where") == std::string::npos ? 1U : 0U);
    }
  EXPECT_EQ(read("wide", "select * from wide where p = 3").size(), 40U);
  EXPECT_EQ(read("wide", "select * from wide where p in (3, 4) limit 50").size(), 50U);
}

/// Whatever a query is, read in pieces it gives what it gives at once, in its order; in shares each row once.
TEST_P(CassandraServer, PiecesGiveWhatTheWholeGives) {
  cql("create table parts (p int, q text, a int, b text, c int, v text, n int, st int static, "
      "primary key ((p, q), a, b, c)) with clustering order by (a desc, b asc, c desc)");
  cql("create index by_v on parts (v)");
  std::vector<TObject> documents;
  for (int i = 0; i < 120; ++i)
    documents.push_back(TObject{{"p", i % 3},
                                {"q", i % 2 == 0 ? "even" : "odd"},
                                {"a", i / 30},
                                {"b", std::to_string(i % 5)},
                                {"c", i},
                                {"v", i % 4 == 0 ? "fourth" : "other"},
                                {"n", i}});
  write("parts", documents, 100);
  ASSERT_EQ(sink.storedCount, 120);
  cql("insert into parts (p, q, st) values (9, 'static', 1)");
  struct TQuery {
    const char* cql;
    std::size_t rows;
    bool pages = true;
    bool modern = false;
  };
  const std::vector<TQuery> queries = {
      {"select * from parts", 121},
      {"select n, st from s.parts -- and no key", 121},
      {"select n as c, c as n from parts", 121},
      {"select n, token(p, q), now() as t from parts", 121},
      {"select n from parts where v = 'fourth'", 30},
      {"select n from parts where p = 1 and q = 'odd'", 20},
      {"select n from parts where q = 'even' and p = 0 and v = 'fourth'", 10},
      {"select n from parts where p = 1 and q = 'odd' limit 11", 11},
      {"select n from parts where n >= 60 allow filtering", 60, true, true},
      {"select n from parts where p = 1 and q = 'odd' and a >= 2", 10, false},
      {"select n from parts where p = 1 and q in ('even', 'odd')", 40, false},
      {"select n from parts where token(p, q) > -9223372036854775807", 121, false},
      {"select n from parts where p = 1 and q = 'odd' order by a asc, b desc, c asc", 20, false},
      {"select distinct p, q from parts", 7, false},
      {"select count(*) from parts", 1, false},
      {"select json n from parts", 121, false, true},
      {"select max(n) from parts", 1, false, true},
      {"select p, max(n) from parts group by p, q", 7, false, true},
      {"select n from parts per partition limit 2", 13, false, true}};
  for (const TQuery& query : queries) {
    if (query.modern && !modern) continue;
    SCOPED_TRACE(query.cql);
    // What differs from call to call is only that it is there.
    const bool changes = std::string(query.cql).find("now()") != std::string::npos;
    const auto rowsBy = [&](std::int64_t fetch, const TShare& share) {
      std::vector<std::string> remarks, rows;
      TStoreOptions made = options();
      made.fetchLimit = fetch;
      made.remark = [&](const std::string& line) { remarks.push_back(line); };
      const auto reader = connector->connectSource(made);
      reader->openRoot(source("parts", query.cql), share);
      EXPECT_EQ(remarks.empty(), query.pages) << (remarks.empty() ? "" : remarks[0]);
      while (auto row = reader->next()) {
        if (changes) row->set("t", nullptr);
        rows.push_back(toJson(*row));
      }
      return rows;
    };
    const std::vector<std::string> whole = rowsBy(100000, {});
    EXPECT_EQ(whole.size(), query.rows);
    const std::int64_t count = connector->count(options(), source("parts", query.cql));
    EXPECT_EQ(count, std::string(query.cql).find("count(*)") == std::string::npos
                         ? static_cast<std::int64_t>(query.rows)
                         : 1);
    for (const std::int64_t fetch : {1, 4, 10}) {
      const std::vector<std::string> rows = rowsBy(fetch, {});
      ASSERT_EQ(rows.size(), whole.size());
      for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i], whole[i]) << i << " by " << fetch;
    }
    if (count < 3) continue;
    std::multiset<std::string> shares;
    for (int number = 1; number <= 3; ++number) {
      const std::int64_t each = count / 3, start = (number - 1) * each;
      for (std::string& row : rowsBy(4, {number, 3, start, number < 3 ? each : count - start}))
        shares.insert(std::move(row));
    }
    EXPECT_TRUE(shares == (std::multiset<std::string>{whole.begin(), whole.end()}));
  }
}

TEST_P(CassandraServer, NothingIsAllowedThatTheUserDidNotAllow) {
  cql("create table plain (p int, a int, v text, primary key (p, a))");
  write("plain", {TObject{{"p", 1}, {"a", 1}, {"v", "x"}}});
  const TDataSource filtering = source("plain", "select * from plain where v = 'x'");
  for (const bool counting : {false, true})
    EXPECT_NE(faultOf(TStoreErrorKind::DataSource,
                      [&] {
                        if (counting)
                          connector->count(options(), filtering);
                        else
                          connector->connectSource(options())->openRoot(filtering, {});
                      }),
              "");
}

TEST_P(CassandraServer, NestedQueriesAndTheirParameters) {
  cql("create table orders (customer text, number int, what text, primary key (customer, number))");
  write("orders", {TObject{{"customer", "O'Hara"}, {"number", 1}, {"what", "tea"}},
                   TObject{{"customer", "O'Hara"}, {"number", 2}, {"what", "pot"}},
                   TObject{{"customer", "x' or 'a'='a"}, {"number", 3}, {"what", "none"}}});
  const auto reader = connector->connectSource(options());
  const auto found = [&](const std::string& query, const TObject& parent) {
    std::string all;
    reader->nested(source("orders", query), parent, [&](TObject&& row) {
      all += row.find("what")->asText() + " ";
      return true;
    });
    return all;
  };
  EXPECT_EQ(found("select what from orders where customer = :name", TObject{{"NAME", "O'Hara"}}), "tea pot ");
  EXPECT_EQ(faultOf(TStoreErrorKind::Read, [&] { found("select nothing from orders", TObject{}); }) != "",
            true);
}

TEST_P(CassandraServer, TheSchemaIsRead) {
  cql("create table described (b int, a text, c timeuuid, d map<text, frozen<list<int>>>, \"E x\" inet, f "
      "set<timeuuid>, "
      "primary key ((b, a), c)) with clustering order by (c desc)");
  cql("create index by_e on described (\"E x\")");
  TCassSchema schema(client);
  const std::vector<std::string> keyspaces = schema.keyspaces();
  EXPECT_NE(std::find(keyspaces.begin(), keyspaces.end(), "s"), keyspaces.end());
  EXPECT_EQ(schema.tables("s"), std::vector<std::string>{"described"});
  std::string columns;
  for (const TCassColumn& c : schema.columns("s", "described"))
    columns += c.name + ":" + c.type + ":" + std::to_string(static_cast<int>(c.role)) +
               (c.descending ? "desc " : " ");
  EXPECT_EQ(
      columns,
      modern
          ? "b:int:0 a:text:0 c:timeuuid:1desc E x:inet:3 d:map<text, frozen<list<int>>>:3 f:set<timeuuid>:3 "
          : "b:int:0 a:text:0 c:timeuuid:1desc E x:inet:3 d:map<text,list<int>>:3 f:set<timeuuid>:3 ");
  const std::vector<TCassIndex> indexes = schema.indexes("s", "described");
  ASSERT_EQ(indexes.size(), 1U);
  EXPECT_EQ(indexes[0].name, "by_e");
  EXPECT_EQ(indexes[0].target, modern ? "\"E x\"" : "E x");
  EXPECT_EQ(schema.columnType("s", "described", "b"), "int");
  EXPECT_EQ(schema.columnType("s", "described", "zzz"), "text");
  EXPECT_EQ(schema.columnKind("s", "described", "c"), TKeyRole::Clustering);
  EXPECT_EQ(schema.columnKind("s", "described", "a"), TKeyRole::Partition);
  EXPECT_EQ(schema.columnKind("s", "described", "d"), TKeyRole::Regular);
}

TEST_P(CassandraServer, CompactTablesAndOddNames) {
  cql("create table compact (k int primary key, v text) with compact storage");
  cql("create table odd (\"From\" int primary key, \"a \"\"b\"\"\" text, \"token\" int)");
  write("compact", {TObject{{"k", 1}, {"v", "x"}}, TObject{{"k", 2}, {"v", "y"}}}, 10);
  write("odd", {TObject{{"From", 1}, {"a \"b\"", "q"}, {"token", 3}}});
  EXPECT_EQ(sink.storedCount, 3);
  EXPECT_EQ(read("compact").size(), 2U);
  EXPECT_EQ(toJson(read("odd")[0]), R"({"From":1,"a \"b\"":"q","token":3})");
  EXPECT_EQ(connector->count(options(), source("compact", "select * from compact limit 1")), 1);
  cql("create table dense (p int, a int, b text, primary key (p, a, b)) with compact storage");
  for (int i = 0; i < 20; ++i)
    write("dense", {TObject{{"p", i % 2}, {"a", i / 4}, {"b", std::to_string(i)}}});
  EXPECT_EQ(read("dense").size(), 20U);
  EXPECT_EQ(TCassSchema(client).columns("s", "dense").size(), 3U);
}

TEST_P(CassandraServer, StatementsThatAreLostAndRowsThatAreTooLarge) {
  cql("create table altered (id int primary key, v text)");
  const auto writer = connector->connectTarget(options(10));
  writer->openTarget({"t", "s.altered", {}});
  for (int i = 0; i < 20; ++i) writer->write(TObject{{"id", i}, {"v", "x"}}, sink);
  writer->flush(sink);
  cql("alter table altered add w text");
  for (int i = 20; i < 40; ++i) writer->write(TObject{{"id", i}, {"v", "x"}}, sink);
  writer->write(TObject{{"id", 100}, {"v", std::string(20'000'000, 'x')}}, sink);
  writer->write(TObject{{"id", 101}, {"v", "y"}}, sink);
  writer->flush(sink);
  EXPECT_EQ(sink.storedCount, 41);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_NE(sink.refusals[0].second.find("servers take 15 MiB"), std::string::npos)
      << sink.refusals[0].second;
}

TEST_P(CassandraServer, ConsistencyLevelsAreSent) {
  TStoreOptions with = options();
  with.connection.asObject().set("readlevel", "ANY");
  EXPECT_NE(faultOf(TStoreErrorKind::Connect, [&] { connector->connectSource(with); }).find("ANY"),
            std::string::npos);
  with.connection.asObject().set("readlevel", "any");
  EXPECT_EQ(faultOf(TStoreErrorKind::Connect, [&] { connector->connectSource(with); }), "");
  cql("create table three (id int primary key)");
  with.connection.asObject().set("writelevel", "THREE");
  const auto writer = connector->connectTarget(with);
  writer->openTarget({"t", "s.three", {}});
  writer->write(TObject{{"id", 1}}, sink);
  writer->flush(sink);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_EQ(sink.refusals[0].second,
            "The server cannot reach as many replicas as the consistency level asks for.");
}

INSTANTIATE_TEST_SUITE_P(Releases, CassandraServer, testing::ValuesIn(releases()),
                         [](const auto& kind) { return "Release" + std::to_string(numberOf(kind.param)); });

TEST(CassandraLogin, ARealServerWantsThePassword) {
  const std::uint16_t port = sharedCassandra("3.11 --auth").port();
  const auto connector = makeCassandraConnector();
  const auto fault = [&](const std::string& user, const std::string& password) {
    return faultOf(TStoreErrorKind::Connect,
                   [&] { connector->checkTarget(optionsFor(cassandraRecord(port, user, password))); });
  };
  const std::string text = "Unable to connect to target Cassandra. ";
  const std::string none = text +
                           "Authentication error. You must supply valid username and password to login to "
                           "Cassandra database.";
  EXPECT_EQ(fault("cassandra", "cassandra"), "");
  EXPECT_EQ(fault("cassandra", "wrong secret"),
            text + "Error occurred: Provided username cassandra and/or password are incorrect");
  EXPECT_EQ(fault("", ""), none);
  EXPECT_EQ(fault("cassandra", ""), none);
  // Where the server has its other protocol.
  EXPECT_EQ(
      faultOf(TStoreErrorKind::Connect,
              [&] {
                connector->checkTarget(optionsFor(cassandraRecord(static_cast<std::uint16_t>(port - 118))));
              }),
      text + "Error occurred: 127.0.0.1:" + std::to_string(port - 118) +
          " answers in Cassandra's native protocol; the Thrift interface is on another port (9160).");
}

}  // namespace

}  // namespace hollowmere
