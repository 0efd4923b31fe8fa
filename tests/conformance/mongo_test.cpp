// What is MongoDB's own.
#include "conformance/bed.h"
#include "connectors/mongodb/mongoconnector.h"
#include "connectors/nosqlcommon.h"
#include "support/mongowire/driverclient.h"
#include "support/mongowire/standin.h"
#include "support/typedjson.h"

namespace hollowmere {

namespace {

using mongowire::TBson;
using mongowire::TDriverClient;
using mongowire::TMongoStandIn;

std::unique_ptr<TTargetWriter> openWriter(std::uint16_t port, const std::string& collection,
                                          std::int64_t bulkSize = 0) {
  TStoreOptions options = optionsFor(mongoRecord(port));
  options.bulkSize = bulkSize;
  auto writer = makeMongoConnector()->connectTarget(options);
  writer->openTarget({"target", collection, {}});
  return writer;
}

std::unique_ptr<TSourceReader> openReader(std::uint16_t port) {
  return makeMongoConnector()->connectSource(optionsFor(mongoRecord(port)));
}

TEST(Mongo, StoresTheTypesThatTextsStandFor) {
  TMongoStandIn server;
  TRecordingSink sink;
  TValue document = typedJson(
      R"({"_id":1,"t":"TRUE","f":"false","b":"&base64;AAE=","d":"2026-01-02T03:04:05Z","q":"a&quot;b&str;",
          "l":["true","&base64;AAE="],"n":"12","i":2147483648,"j":2147483647,"x":1.0})");
  openWriter(server.port(), "c")->write(std::move(document.asObject()), sink);
  ASSERT_EQ(sink.storedCount, 1);
  EXPECT_EQ(
      server.documentsJson("shop", "c")[0],
      R"({ "_id" : 1, "t" : true, "f" : false, "b" : { "$binary" : { "base64" : "AAE=", "subType" : "00" } }, )"
      R"("d" : { "$date" : "2026-01-02T03:04:05Z" }, "q" : "a\"b", "l" : [ true, "&base64;AAE=" ], "n" : "12", )"
      R"("i" : 2147483648, "j" : 2147483647, "x" : 1.0 })");
}

TEST(Mongo, ReadsEveryTypeOfTheServer) {
  TMongoStandIn server;
  server.fillJson("shop", "c",
                  {R"j({"_id":1,"re":{"$regex":"a/b","$options":"i"},"ts":{"$timestamp":{"t":5,"i":1}},
      "min":{"$minKey":1},"max":{"$maxKey":1},"code":{"$code":"f()"},"scope":{"$code":"g()","$scope":{"a":1}},
      "sym":{"$symbol":"s"},"undef":{"$undefined":true},"long":{"$numberLong":"5"},"nan":{"$numberDouble":"NaN"},
      "uuid":{"$binary":{"base64":"AAECAwQFBgcICQoLDA0ODw==","subType":"04"}},"inf":{"$numberDecimal":"Infinity"},
      "ref":{"$dbPointer":{"$ref":"c","$id":{"$oid":"0123456789abcdef01234567"}}}})j"});
  const auto reader = openReader(server.port());
  reader->openRoot(mongoSource("c"), {});
  TObject row = reader->next().value();
  EXPECT_EQ(toJson(row),
            R"j({"_id":1,"re":"/a/b/i","ts":"1970-01-01T00:00:05.000Z","min":"MinKey","max":"MaxKey",)j"
            R"j("code":"f()","scope":"g()","sym":"s","undef":null,"long":5,"nan":"NaN",)j"
            R"j("uuid":"&base64;AAECAwQFBgcICQoLDA0ODw==","inf":"Infinity",)j"
            R"j("ref":"DBRef(\"c\", \"0123456789abcdef01234567\")"})j");
  EXPECT_EQ(reader->rowText().find("\\\""), std::string::npos) << "quotes are marked";
  // Binary keeps its subtype and a long stays one on the way back.
  TRecordingSink sink;
  row.set("_id", 2);
  openWriter(server.port(), "c")->write(std::move(row), sink);
  const std::string stored = server.documentsJson("shop", "c").at(1);
  EXPECT_NE(stored.find(R"("subType" : "04")"), std::string::npos) << stored;
}

TEST(Mongo, MakesAnIdentifierWhereThereIsNone) {
  TMongoStandIn server;
  TRecordingSink sink;
  for (const std::int64_t bulkSize : {0, 10}) {
    const auto writer = openWriter(server.port(), "c", bulkSize);
    writer->write(TObject{{"a", 1}}, sink);
    writer->flush(sink);
  }
  const auto stored = server.documentsJson("shop", "c");
  ASSERT_EQ(stored.size(), 2U);
  for (const std::string& document : stored)
    EXPECT_TRUE(document.starts_with("{ \"_id\" : { \"$oid\" : ")) << document;
  EXPECT_NE(stored[0], stored[1]);
}

TEST(Mongo, RefusesWhatItCannotHold) {
  TMongoStandIn server;
  for (const std::int64_t bulkSize : {0, 10}) {
    SCOPED_TRACE(bulkSize);
    TRecordingSink sink;
    const auto writer = openWriter(server.port(), "c" + std::to_string(bulkSize), bulkSize);
    writer->write(TObject{{"_id", 1}}, sink);
    writer->write(TObject{{"_id", 2}, {"x", std::string(17 * 1024 * 1024, 'x')}}, sink);
    writer->write(TObject{{"_id", 3}, {std::string("a\0b", 3), 1}}, sink);
    writer->write(TObject{{"_id", 4}, {"n", TValue::decimal(std::string(40, '9'))}}, sink);
    writer->write(TObject{{"_id", 5}, {"b", "&base64;???"}}, sink);
    writer->write(TObject{{"_id", 6}, {"", 1}}, sink);
    writer->write(TObject{{"_id", 7}}, sink);
    writer->flush(sink);
    EXPECT_EQ(sink.storedCount, 2);
    ASSERT_EQ(sink.refusals.size(), 5U);
    EXPECT_EQ(sink.refusals[0].second,
              "The document is 17825814 bytes long; MongoDB takes at most 16777216.");
    EXPECT_EQ(sink.refusals[0].first.size(), 17U * 1024 * 1024 + 16);
    EXPECT_EQ(sink.refusals[1].second,
              "The value of \"a\" has a name with a zero byte, which BSON cannot hold");
    EXPECT_EQ(sink.refusals[2].second,
              "The value of \"n\" has more digits than MongoDB can hold: " + std::string(40, '9'));
    EXPECT_NE(sink.refusals[3].second.find("not Base64"), std::string::npos);
    EXPECT_EQ(sink.refusals[4].second, "The value of \"\" has an empty name");
    EXPECT_EQ(sink.refusals[4].first, R"({"_id":6,"":1})");
  }
}

TEST(Mongo, QueriesReadAsTheyAreWritten) {
  TMongoStandIn server;
  server.fillJson("shop", "c",
                  {R"({"_id":{"$oid":"0123456789abcdef01234567"},"a":true,"at":{"$date":0}})",
                   R"({"_id":2,"a":"true","at":"1970-01-01T00:00:00Z"})"});
  const auto reader = openReader(server.port());
  const auto count = [&](const std::string& query) {
    int rows = 0;
    reader->openRoot(mongoSource("c", query), {});
    while (reader->next()) ++rows;
    return rows;
  };
  EXPECT_EQ(count(""), 2);
  EXPECT_EQ(count(" {} "), 2);
  EXPECT_EQ(count(R"({"_id":{"$oid":"0123456789abcdef01234567"}})"), 1);
  EXPECT_EQ(count(R"({"at":{"$date":"1970-01-01T00:00:00Z"}})"), 1);
  EXPECT_EQ(count(R"({"at":{"$date":{"$numberLong":"0"}}})"), 1);
  EXPECT_EQ(count(R"({"_id":{"$numberLong":"2"}})"), 1);
  for (const char* query : {"{", "[]", "{a:1}", "5"}) {
    const std::string fault = faultOf(TStoreErrorKind::DataSource, [&] { count(query); });
    EXPECT_TRUE(fault.starts_with("Invalid MongoDB JSON query.")) << fault;
  }
  // A text of the parent row stays a text, also one that looks like something else.
  std::string found;
  const auto ids = [&](TObject&& row) {
    found += textForm(*row.find("_id")) + " ";
    return true;
  };
  reader->nested(mongoSource("c", R"({"a": :A})"), TObject{{"a", "true"}}, ids);
  reader->nested(mongoSource("c", R"({"a": :A})"), TObject{{"a", true}}, ids);
  EXPECT_EQ(found, "2 0123456789abcdef01234567 ");
}

TEST(Mongo, ANestedQueryMustBeAnObject) {
  TMongoStandIn server;
  const auto reader = openReader(server.port());
  const std::string fault = faultOf(TStoreErrorKind::Read, [&] {
    reader->nested(mongoSource("c", "{\"a\": :A"), TObject{{"A", 1}}, [](TObject&&) { return true; });
  });
  EXPECT_TRUE(fault.starts_with("Invalid nested MongoDB JSON query: {\"a\": :A (")) << fault;
  const TDataSource unnamed{"d", TObject{{"database", "shop"}}, 0};
  const std::string text = "Data source d names no MongoDB database and collection.";
  EXPECT_EQ(faultOf(TStoreErrorKind::DataSource, [&] { reader->openRoot(unnamed, {}); }), text);
  // Below a parent row it is that row's fault.
  EXPECT_EQ(faultOf(TStoreErrorKind::Read,
                    [&] { reader->nested(unnamed, TObject(), [](TObject&&) { return true; }); }),
            text);
}

TEST(Mongo, OnlySharesAreSorted) {
  TMongoStandIn server;
  server.fillJson("shop", "c", {"{\"_id\":2}", "{\"_id\":1}", "{\"_id\":3}"});
  const auto reader = openReader(server.port());
  const auto first = [&](const TShare& share) {
    reader->openRoot(mongoSource("c"), share);
    return reader->next()->find("_id")->asInt();
  };
  EXPECT_EQ(first({}), 2);
  EXPECT_EQ(first({1, 2, 0, 1}), 1);
  EXPECT_EQ(first({2, 2, 1, 2}), 2);
  const auto finds = server.requests("find");
  ASSERT_EQ(finds.size(), 3U);
  EXPECT_EQ(finds[0].body.json().find("sort"), std::string::npos);
  EXPECT_NE(finds[2].body.json().find(R"("sort" : { "_id" : 1 }, "skip" : 1, "limit" : 2)"),
            std::string::npos)
      << finds[2].body.json();
}

TEST(Mongo, AConnectionRecordIsReadLeniently) {
  TMongoStandIn server;
  const auto connect = [&](const TValue& record) {
    return faultOf(TStoreErrorKind::Connect, [&] { makeMongoConnector()->checkSource(optionsFor(record)); });
  };
  EXPECT_EQ(connect(mongoRecord(server.port(), " ", "", "", "admin")), "") << "no user: no login";
  TValue record = mongoRecord(server.port());
  record.asObject().set("host", " 127.0.0.1 ");
  EXPECT_EQ(connect(record), "");
  EXPECT_EQ(connect("text"), "Unable to connect to source MongoDB: unable to parse connection string.");
  EXPECT_NE(connect(mongoRecord(server.port(), "u", "p", "NO-SUCH")).find("source MongoDB"),
            std::string::npos);
}

TEST(MongoServer, LogsInByEveryMechanism) {
  const TLocalServer server("--auth");
  const auto connector = makeMongoConnector();
  for (const char* mechanism : {"", "SCRAM-SHA-1", "SCRAM-SHA-256", "scram-sha-256"}) {
    SCOPED_TRACE(mechanism);
    EXPECT_EQ(faultOf(TStoreErrorKind::Connect,
                      [&] {
                        connector->checkSource(
                            optionsFor(mongoRecord(server.port(), " root ", "secret", mechanism, " admin ")));
                      }),
              "");
    const std::string fault = faultOf(TStoreErrorKind::Connect, [&] {
      connector->connectTarget(
          optionsFor(mongoRecord(server.port(), "root", "wrong%pw", mechanism, "admin")));
    });
    EXPECT_TRUE(fault.starts_with("Unable to connect to target MongoDB. ")) << fault;
    EXPECT_EQ(fault.find("wrong%pw"), std::string::npos) << fault;
  }
  // Without a login the connection opens, and the first use of it tells.
  const auto writer = connector->connectTarget(optionsFor(mongoRecord(server.port())));
  writer->openTarget({"t", "c", {}});
  TRecordingSink sink;
  writer->write(TObject{{"_id", 1}}, sink);
  ASSERT_EQ(sink.refusals.size(), 1U);
  EXPECT_TRUE(sink.refusals[0].second.starts_with("Error Code: 13\rError Message: "))
      << sink.refusals[0].second;
}

TEST(MongoServer, NestedQueriesMayHoldOperators) {
  const std::uint16_t port = sharedServer().port();
  TRecordingSink sink;
  const auto writer = openWriter(port, "operators", 10);
  for (int i = 1; i <= 5; ++i) writer->write(TObject{{"_id", i}, {"at", TValue::dateTime(i * 1000)}}, sink);
  writer->flush(sink);
  ASSERT_EQ(sink.storedCount, 5);
  const auto reader = openReader(port);
  const auto found = [&](const std::string& query) {
    std::string ids;
    TDataSource source = mongoSource("operators", query);
    source.name = query;
    reader->nested(source, TObject{{"From", 2}, {"list", TList{1, 4}}, {"at", TValue::dateTime(3000)}},
                   [&](TObject&& row) {
                     ids += std::to_string(row.find("_id")->asInt());
                     return true;
                   });
    return ids;
  };
  EXPECT_EQ(found(R"({"_id":{"$gt": :FROM}})"), "345");
  EXPECT_EQ(found(R"({"_id":{"$in": ":LIST"}})"), "14");
  EXPECT_EQ(found(R"({"at":{"$lt": :at}})"), "12");
  EXPECT_EQ(found(R"({"$or":[{"_id": :from},{"at":{"$date":"1970-01-01T00:00:05Z"}}]})"), "25");
  const std::string fault = faultOf(TStoreErrorKind::Read, [&] { found(R"({"_id":{"$nosuch":1}})"); });
  EXPECT_TRUE(fault.starts_with("Error Code: ")) << fault;
}

TEST(MongoServer, BatchesOfEverySizeAreStoredWhole) {
  const std::uint16_t port = sharedServer().port();
  for (const std::int64_t bulkSize : {2, 7, 1000}) {
    TRecordingSink sink;
    const std::string name = "batch" + std::to_string(bulkSize);
    {
      const auto writer = openWriter(port, name, bulkSize);
      for (int i = 0; i < 1234; ++i) writer->write(TObject{{"_id", i}, {"x", std::string(100, 'x')}}, sink);
      writer->flush(sink);
    }
    EXPECT_EQ(sink.storedCount, 1234);
    EXPECT_EQ(makeMongoConnector()->count(optionsFor(mongoRecord(port)), mongoSource(name)), 1234);
    EXPECT_EQ(makeMongoConnector()->count(optionsFor(mongoRecord(port)),
                                          mongoSource(name, R"({"_id":{"$lt":10}})")),
              10);
  }
}

TEST(MongoQuery, IsCheckedByItsTextAlone) {
  const auto store = makeMongoConnector();
  const auto check = [&](const char* query, const char* collection = "c") {
    return store->checkQuery(TObject{{"database", "d"}, {"collection", collection}, {"query", query}});
  };
  for (const char* good : {"", "{}", R"({"a": {"$gt": 5}})", R"({"a": :name})"})
    EXPECT_EQ(check(good), "") << good;
  for (const char* bad : {"{", "[]", "{a}", R"({"a" 1})"})
    EXPECT_TRUE(check(bad).starts_with("Invalid MongoDB JSON query. (")) << bad << ": " << check(bad);
  EXPECT_EQ(check("{}", ""), "The data source names no MongoDB database and collection.");
}

}  // namespace

}  // namespace hollowmere
