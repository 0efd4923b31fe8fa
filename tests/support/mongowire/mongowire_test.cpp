#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <thread>

#include "support/mongowire/driverclient.h"
#include "support/mongowire/rawpeer.h"
#include "support/mongowire/standin.h"

namespace hollowmere::mongowire {
namespace {

using TTexts = std::vector<std::string>;

TEST(MongoStandIn, InsertsAndFindsThroughTheDriver) {
  TMongoStandIn server;
  TDriverClient client(server.uri());
  ASSERT_TRUE(client.insertOne("{\"_id\":1,\"name\":\"a\"}").ok);
  ASSERT_TRUE(client.insertOne("{\"_id\":{\"$oid\":\"0123456789abcdef01234567\"},\"name\":\"b\"}").ok);
  ASSERT_TRUE(client.insertOne("{\"_id\":\"k\",\"name\":\"b\"}").ok);
  ASSERT_TRUE(client.insertOne("{\"name\":\"c\"}").ok);

  EXPECT_EQ(client.find().size(), 4u);
  EXPECT_EQ(client.find("{\"_id\":1.0}"), TTexts{"{ \"_id\" : 1, \"name\" : \"a\" }"});
  EXPECT_EQ(client.find("{\"_id\":{\"$oid\":\"0123456789abcdef01234567\"}}").size(), 1u);
  EXPECT_EQ(client.find("{\"_id\":\"k\",\"name\":\"b\"}").size(), 1u);
  EXPECT_EQ(client.find("{\"_id\":\"k\",\"name\":\"a\"}").size(), 0u);
  EXPECT_EQ(client.find("{\"missing\":null}").size(), 4u);
  EXPECT_EQ(client.count(), 4);
  EXPECT_EQ(client.count("{\"name\":\"b\"}"), 2);
  EXPECT_EQ(client.count("{\"name\":\"z\"}"), 0);
  EXPECT_EQ(
      mongoc_collection_estimated_document_count(client.collection(), nullptr, nullptr, nullptr, nullptr), 4);
  EXPECT_EQ(server.documents("shop", "rows").size(), 4u);
  EXPECT_EQ(server.requestCount("insert"), 4u);
  EXPECT_EQ(server.requests("insert").front().collection, "rows");
  EXPECT_EQ(server.server().violations(), 0u);
}

TEST(MongoStandIn, CursorsHonourSortSkipLimitAndBatches) {
  TMongoStandIn server;
  std::vector<TBson> rows = numberedRows(0, 250);
  std::reverse(rows.begin(), rows.end());
  server.fill("shop", "rows", rows);
  TDriverClient client(server.uri());
  const auto ids = [&](const std::string& options) {
    std::vector<int> found;
    for (const std::string& row : client.find("{}", options)) found.push_back(std::stoi(row.substr(10)));
    return found;
  };
  const auto run = [](int first, int count) {
    std::vector<int> expected(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) expected[static_cast<std::size_t>(i)] = first + i;
    return expected;
  };
  EXPECT_EQ(ids("{\"sort\":{\"_id\":1}}"), run(0, 250));
  EXPECT_EQ(server.requestCount("getMore"), 1u);  // 101 documents first, the rest in one
  EXPECT_EQ(ids("{\"sort\":{\"_id\":1},\"batchSize\":100}"), run(0, 250));
  EXPECT_EQ(server.requestCount("getMore"), 3u);
  EXPECT_EQ(ids("{\"sort\":{\"_id\":1},\"skip\":40,\"limit\":130,\"batchSize\":50}"), run(40, 130));
  EXPECT_EQ(ids("{\"sort\":{\"_id\":1},\"skip\":249}"), run(249, 1));
  EXPECT_EQ(ids("{\"skip\":1000}"), run(0, 0));
  EXPECT_EQ(ids("{\"limit\":1}"), run(249, 1));  // unsorted: as inserted
}

TEST(MongoStandIn, AbandonedCursorsAreKilled) {
  TMongoStandIn server;
  server.fill("shop", "rows", numberedRows(0, 10));
  TDriverClient client(server.uri());
  const TBson filter;
  const TBson options = TBson::fromJson("{\"batchSize\":2}");
  mongoc_cursor_t* cursor = mongoc_collection_find_with_opts(client.collection(), filter.view().get(),
                                                             options.view().get(), nullptr);
  const bson_t* row = nullptr;
  ASSERT_TRUE(mongoc_cursor_next(cursor, &row));
  mongoc_cursor_destroy(cursor);
  EXPECT_EQ(server.requestCount("killCursors"), 1u);
  const auto gone = client.command("{\"getMore\":{\"$numberLong\":\"5000000001\"},\"collection\":\"rows\"}");
  EXPECT_EQ(gone.error.code, 43u);
}

TEST(MongoStandIn, DuplicateKeysBecomeWriteErrors) {
  TMongoStandIn server;
  server.fillJson("shop", "rows", {"{\"_id\":2}", "{\"_id\":\"x\"}"});
  TDriverClient client(server.uri());
  std::vector<TBson> rows = numberedRows(1, 4);
  rows.push_back(TBson::fromJson("{\"_id\":\"x\"}"));

  const auto unordered = client.bulk(rows, false);
  EXPECT_FALSE(unordered.ok);
  EXPECT_EQ(unordered.error.code, 11000u);
  EXPECT_EQ(
      unordered.text(),
      "Multiple write errors: \"E11000 duplicate key error collection: shop.rows index: _id_ dup key: "
      "{ _id: 2 }\", \"E11000 duplicate key error collection: shop.rows index: _id_ dup key: { _id: \"x\" "
      "}\"");
  const TBsonView reply = unordered.reply.view();
  EXPECT_EQ(integerField(reply.get(), "nInserted", -1), 3);
  EXPECT_NE(unordered.reply.json().find("\"index\" : 4"), std::string::npos);

  std::vector<TBson> more = numberedRows(10, 1);
  more.push_back(TBson::fromJson("{\"_id\":{\"$numberLong\":\"2\"}}"));
  more.push_back(TBson::fromJson("{\"_id\":12}"));
  EXPECT_FALSE(client.bulk(more, true).ok);
  EXPECT_EQ(client.count("{\"_id\":10}"), 1);
  EXPECT_EQ(client.count("{\"_id\":12}"), 0) << "an ordered command stops at its first error";
}

TEST(MongoStandIn, ReplacesUpsertsDeletesAndDrops) {
  TMongoStandIn server;
  server.fillJson("shop", "rows", {"{\"_id\":1,\"v\":1}", "{\"_id\":2,\"v\":1}", "{\"_id\":3,\"v\":1}"});
  TDriverClient client(server.uri());
  const TBson upsert = TBson::fromJson("{\"upsert\":true}");
  const auto replace = [&](const char* filter, const char* document) {
    const TBson f = TBson::fromJson(filter);
    const TBson d = TBson::fromJson(document);
    bson_t reply;
    const bool ok = mongoc_collection_replace_one(client.collection(), f.view().get(), d.view().get(),
                                                  upsert.view().get(), &reply, nullptr);
    const TBson copy(&reply);
    bson_destroy(&reply);
    return ok ? copy.json() : std::string();
  };
  EXPECT_EQ(replace("{\"_id\":2}", "{\"v\":9}"),
            "{ \"modifiedCount\" : 1, \"matchedCount\" : 1, \"upsertedCount\" : 0 }");
  EXPECT_NE(replace("{\"_id\":4}", "{\"v\":4}").find("\"upsertedId\" : 4"), std::string::npos);
  EXPECT_EQ(client.find("{\"v\":9}"), TTexts{"{ \"_id\" : 2, \"v\" : 9 }"});
  EXPECT_EQ(client.count(), 4);
  const TBson one = TBson::fromJson("{\"v\":1}");
  EXPECT_TRUE(mongoc_collection_delete_one(client.collection(), one.view().get(), nullptr, nullptr, nullptr));
  EXPECT_EQ(client.count("{\"v\":1}"), 1);
  const TBson all;
  EXPECT_TRUE(
      mongoc_collection_delete_many(client.collection(), all.view().get(), nullptr, nullptr, nullptr));
  EXPECT_EQ(client.count(), 0);
  EXPECT_TRUE(client.insertOne("{\"_id\":1}").ok) << "a deleted _id is free again";
  EXPECT_TRUE(mongoc_collection_drop(client.collection(), nullptr));
  EXPECT_FALSE(mongoc_collection_drop(client.collection(), nullptr));
}

TEST(MongoStandIn, ListsDatabasesAndCollections) {
  TMongoStandIn server;
  server.fillJson("b", "two", {"{}"});
  server.fillJson("a", "one", {"{}"});
  server.fillJson("b", "one.more", {"{}"});
  TDriverClient client(server.uri());
  const auto take = [](char** names) {
    TTexts texts;
    for (char** at = names; at && *at; ++at) texts.emplace_back(*at);
    bson_strfreev(names);
    return texts;
  };
  EXPECT_EQ(take(mongoc_client_get_database_names_with_opts(client.client(), nullptr, nullptr)),
            (TTexts{"a", "b"}));
  mongoc_database_t* database = mongoc_client_get_database(client.client(), "b");
  EXPECT_EQ(take(mongoc_database_get_collection_names_with_opts(database, nullptr, nullptr)),
            (TTexts{"one.more", "two"}));
  EXPECT_TRUE(mongoc_database_has_collection(database, "two", nullptr));
  EXPECT_FALSE(mongoc_database_has_collection(database, "three", nullptr));
  mongoc_database_destroy(database);
}

TEST(MongoStandIn, RefusesWhatItCannotDo) {
  TMongoStandIn server;
  TDriverClient client(server.uri());
  const auto unknown = client.command("{\"frobnicate\":1}");
  EXPECT_EQ(unknown.error.code, 59u);
  EXPECT_EQ(unknown.text(), "no such command: 'frobnicate'");
  bson_error_t error;
  client.find("{\"v\":{\"$gt\":1}}", "{}", &error);
  EXPECT_EQ(error.code, 2u);
  client.find("{}", "{\"projection\":{\"v\":1}}", &error);
  EXPECT_EQ(error.code, 40415u);
  client.find("{}", "{\"limit\":-1}", &error);
  EXPECT_EQ(error.code, 51024u);
  EXPECT_TRUE(client.command("{\"ping\":1}").ok);
}

TEST(MongoStandIn, ServesSeveralClientsAtOnce) {
  TMongoStandIn server;
  std::vector<std::thread> threads;
  for (int worker = 0; worker < 4; ++worker)
    threads.emplace_back([&server, worker] {
      TDriverClient client(server.uri());
      for (int round = 0; round < 10; ++round)
        EXPECT_TRUE(client.bulk(numberedRows(worker * 1000 + round * 20, 20), false).ok);
    });
  for (std::thread& thread : threads) thread.join();
  TDriverClient client(server.uri());
  std::set<std::string> rows;
  for (const std::string& row : client.find("{}", "{\"batchSize\":7}")) rows.insert(row);
  EXPECT_EQ(rows.size(), 800u);
  EXPECT_EQ(server.server().violations(), 0u);
}

TEST(MongoStandIn, StopsWithClientsConnectedAndStuck) {
  TMongoStandIn server;
  server.faults().onCommand("ping", 1, fault::silence());
  TRawPeer idle(server.port());
  TRawPeer halfway(server.port());
  halfway.send("\x40");
  std::thread stuck([uri = server.uri()] {
    TDriverClient client(uri);
    EXPECT_FALSE(client.command("{\"ping\":1}").ok);
  });
  while (server.requestCount("ping") == 0) std::this_thread::yield();
  server.stop();
  stuck.join();
  EXPECT_EQ(idle.receiveAll(), "");
  EXPECT_FALSE(TRawPeer(server.port()).connected());
  server.stop();
}

struct TBadFrame {
  const char* name;
  std::string bytes;
  const char* complaint;
};

TEST(MongoWireFraming, CountsEveryViolationAndClosesTheConnection) {
  const std::string flags = littleEndian(0);
  const std::string body = std::string(1, '\0') + TBson::fromJson("{\"ping\":1,\"$db\":\"a\"}").bytes();
  const std::string doc = TBson::fromJson("{\"_id\":1}").bytes();
  const auto section = [](const std::string& rest, int extra = 0) {
    return "\x01" + littleEndian(static_cast<std::int32_t>(rest.size()) + 4 + extra) + rest;
  };
  const std::string name("documents\0", 10);
  std::string untidy = doc;
  untidy.back() = 'x';
  std::string nested = TBson::fromJson("{\"v\":{\"w\":1}}").bytes();
  nested[7] = 99;  // behind the outer length, the type and the name
  const TBadFrame frames[] = {
      {"short length", frameOf(2013, "", 15), "claims a length of 15"},
      {"huge length", frameOf(2013, "", 0x7fffffff), "claims a length of 2147483647"},
      {"opcode", frameOf(2002, flags + body), "opcode 2002"},
      {"flags", frameOf(2013, littleEndian(4) + body), "unknown flags 4"},
      {"no body", frameOf(2013, flags + section(name + doc)), "without a body"},
      {"two bodies", frameOf(2013, flags + body + body), "two bodies"},
      {"section kind", frameOf(2013, flags + body + "\x02"), "section of kind 2"},
      {"section too long", frameOf(2013, flags + body + section(name + doc, 1)), "past the end"},
      {"section too short", frameOf(2013, flags + body + section(name + doc, -1)), "past the end"},
      {"nameless section", frameOf(2013, flags + body + section(std::string(1, '\0') + doc)), "no name"},
      {"document length", frameOf(2013, flags + body + section(name + littleEndian(4) + "x")), "length of 4"},
      {"document end", frameOf(2013, flags + body + section(name + untidy)), "zero byte"},
      {"trailing byte", frameOf(2013, flags + body + "\x01"), "a section size runs past"},
      {"no $db", frameOf(2013, flags + std::string(1, '\0') + TBson::fromJson("{\"ping\":1}").bytes()),
       "$db"},
      {"invalid text",
       frameOf(2013, flags + body + section(name + TBsonBuilder().text("v", "\xff").take().bytes())),
       "not valid UTF-8"},
      {"nested length", frameOf(2013, flags + body + section(name + nested)), "not valid BSON"},
      {"cut off", frameOf(2013, flags + body).substr(0, 20), "ended inside a message"},
  };
  TMongoStandIn server;
  std::uint64_t expected = 0;
  for (const TBadFrame& frame : frames) {
    SCOPED_TRACE(frame.name);
    TRawPeer peer(server.port());
    ASSERT_TRUE(peer.send(frame.bytes));
    peer.endSending();
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(server.server().violations(), ++expected);
    ASSERT_FALSE(server.server().violationTexts().empty());
    EXPECT_NE(server.server().violationTexts().back().find(frame.complaint), std::string::npos)
        << server.server().violationTexts().back();
  }
  TRawPeer good(server.port());
  good.send(frameOf(2013, flags + section(name + doc) + body));
  good.endSending();
  EXPECT_GT(good.receiveAll().size(), 21u);
  EXPECT_EQ(server.server().violations(), expected);
}

TEST(MongoWireFraming, MessagesMayArriveInPiecesOrTogether) {
  TMongoStandIn server;
  const std::string ping = frameOf(
      2013, littleEndian(0) + std::string(1, '\0') + TBson::fromJson("{\"ping\":1,\"$db\":\"a\"}").bytes());
  TRawPeer together(server.port());
  together.send(ping + ping + ping);
  together.endSending();
  const std::size_t three = together.receiveAll().size();
  TRawPeer pieces(server.port());
  for (const char byte : ping) pieces.send({&byte, 1});
  pieces.endSending();
  EXPECT_EQ(pieces.receiveAll().size() * 3, three);
  EXPECT_EQ(server.requestCount("ping"), 4u);
  EXPECT_EQ(server.server().violations(), 0u);
}

}  // namespace
}  // namespace hollowmere::mongowire
