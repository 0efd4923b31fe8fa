#include <gtest/gtest.h>

#include <chrono>

#include "support/mongowire/driverclient.h"
#include "support/mongowire/rawpeer.h"
#include "support/mongowire/standin.h"

namespace hollowmere::mongowire {
namespace {

using std::chrono::milliseconds;

class MongoFaults : public testing::Test {
 protected:
  /// A client that gives up after a third of a second.
  TDriverClient client(const std::string& options = "") {
    return TDriverClient(server.uri() + "?socketTimeoutMS=300&connectTimeoutMS=300" + options);
  }
  TFaultScript& faults() { return server.faults(); }
  TMongoStandIn server;
};

milliseconds timed(const std::function<void()>& what) {
  const auto start = std::chrono::steady_clock::now();
  what();
  return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

TEST_F(MongoFaults, TheNthCommandGetsTheGivenAnswer) {
  faults().onCommand("insert", 2, fault::error(13, "Unauthorized", "not authorized on shop"));
  TDriverClient driver = client();
  EXPECT_TRUE(driver.insertOne("{\"_id\":1}").ok);
  const auto refused = driver.insertOne("{\"_id\":2}");
  EXPECT_EQ(refused.error.domain, static_cast<std::uint32_t>(MONGOC_ERROR_SERVER));
  EXPECT_EQ(refused.error.code, 13u);
  EXPECT_EQ(refused.text(), "not authorized on shop");
  EXPECT_TRUE(driver.insertOne("{\"_id\":3}").ok);
  EXPECT_EQ(server.documents("shop", "rows").size(), 2u) << "an answered command is not carried out";

  faults().onCommand("*", 1, fault::answer(TBson::fromJson("{\"ok\":1,\"extra\":7}")));
  EXPECT_NE(driver.command("{\"ping\":1}").reply.json().find("\"extra\" : 7"), std::string::npos);
  EXPECT_EQ(driver.command("{\"ping\":1}").reply.json().find("extra"), std::string::npos);
}

TEST_F(MongoFaults, RowsAreRefusedByPlaceCountAndContent) {
  TDriverClient driver = client();
  const auto inserted = [](const TDriverClient::TAnswer& answer) {
    const TBsonView reply = answer.reply.view();
    return integerField(reply.get(), "nInserted", -1);
  };
  faults().onCommand("insert", 1, fault::refuseAt({0, 3}));
  const auto byPlace = driver.bulk(numberedRows(0, 5), false);
  EXPECT_EQ(inserted(byPlace), 3);
  EXPECT_EQ(byPlace.error.code, 121u);
  EXPECT_NE(byPlace.text().find("Document failed validation"), std::string::npos);

  faults().clear();
  faults().onCommand("insert", TFaultScript::kEvery, fault::refuseEvery(10, 64, "slow disk"));
  EXPECT_EQ(inserted(driver.bulk(numberedRows(100, 15), false)), 14);
  EXPECT_EQ(inserted(driver.bulk(numberedRows(200, 15), false)), 13) << "the count runs on over commands";

  faults().clear();
  const auto odd = [](std::size_t, const TBsonView& row) {
    return integerField(row.get(), "_id", 0) % 2 == 1;
  };
  faults().onCommand("insert", TFaultScript::kEvery, fault::refuseIf(odd, 121, "odd"));
  EXPECT_EQ(inserted(driver.bulk(numberedRows(300, 9), false)), 5);
  EXPECT_EQ(inserted(driver.bulk(numberedRows(400, 9), true)), 1);
}

TEST_F(MongoFaults, DelaysAddToAnyOtherFault) {
  faults().onCommand("ping", TFaultScript::kEvery, fault::delay(milliseconds(60)));
  faults().onCommand("ping", 2, fault::delay(milliseconds(60)));
  faults().onCommand("ping", 2, fault::error(1, "InternalError", "late and wrong"));
  TDriverClient driver = client();
  EXPECT_GE(timed([&] { EXPECT_TRUE(driver.command("{\"ping\":1}").ok); }), milliseconds(60));
  EXPECT_GE(timed([&] { EXPECT_EQ(driver.command("{\"ping\":1}").text(), "late and wrong"); }),
            milliseconds(120));
}

struct TBrokenAnswer {
  const char* name;
  TFault fault;
  bool timesOut;
};

TEST_F(MongoFaults, BrokenAnswersFailTheCommandAndTheNextOneWorks) {
  const TBrokenAnswer cases[] = {
      {"silence", fault::silence(), true},
      {"close", fault::close(), false},
      {"half, then close", fault::halfThenClose(), false},
      {"half, then silence", fault::halfThenSilence(), true},
      {"short length", fault::wrongLength(7), false},
      {"huge length", fault::wrongLength(0x7fffffff), false},
      {"a little too long", fault::wrongLength(100), true},
      {"garbage frame", fault::garbageFrame(), false},
  };
  for (const TBrokenAnswer& broken : cases) {
    SCOPED_TRACE(broken.name);
    faults().clear();
    faults().onCommand("insert", 1, broken.fault);
    TDriverClient driver = client();
    TDriverClient::TAnswer answer;
    const milliseconds took = timed([&] { answer = driver.insertOne("{}"); });
    EXPECT_FALSE(answer.ok);
    EXPECT_NE(answer.text(), "");
    EXPECT_EQ(took >= milliseconds(290), broken.timesOut) << took.count() << " ms: " << answer.text();
    EXPECT_TRUE(driver.insertOne("{}").ok);
  }
  EXPECT_EQ(server.server().violations(), 0u);
}

TEST_F(MongoFaults, AGarbageBodyCountsNothingAsInserted) {
  // libmongoc 1.23 finds no "ok" in it and takes that for success: only the count tells.
  faults().onCommand("insert", 1, fault::garbageBody());
  TDriverClient driver = client();
  const auto answer = driver.bulk(numberedRows(0, 5), false);
  EXPECT_TRUE(answer.ok);
  const TBsonView reply = answer.reply.view();
  EXPECT_EQ(integerField(reply.get(), "nInserted", -1), 0) << answer.reply.json();
  EXPECT_EQ(server.documents("shop", "rows").size(), 5u);
}

TEST_F(MongoFaults, AnAnswerToAnotherRequestNamesIt) {
  faults().onCommand("ping", 1, fault::wrongResponse());
  TRawPeer peer(server.port());
  const std::string ping = frameOf(
      2013, littleEndian(0) + std::string(1, '\0') + TBson::fromJson("{\"ping\":1,\"$db\":\"a\"}").bytes());
  peer.send(ping + ping);
  peer.endSending();
  const std::string answers = peer.receiveAll();
  ASSERT_GT(answers.size(), 40u);
  EXPECT_EQ(answers.substr(8, 4), littleEndian(-12345));
  EXPECT_EQ(answers.substr(answers.size() / 2 + 8, 4), littleEndian(1));
}

TEST_F(MongoFaults, ACursorBreaksInTheMiddle) {
  server.fill("shop", "rows", numberedRows(0, 10));
  faults().onCommand("getMore", 2, fault::halfThenClose());
  bson_error_t error;
  EXPECT_EQ(client().find("{}", "{\"batchSize\":3}", &error).size(), 6u);
  EXPECT_EQ(error.domain, static_cast<std::uint32_t>(MONGOC_ERROR_STREAM));
}

TEST_F(MongoFaults, LoginIsTriedAndRefused) {
  const std::string host = "127.0.0.1:" + std::to_string(server.port());
  for (const char* mechanism : {"", "?authMechanism=SCRAM-SHA-1", "?authMechanism=SCRAM-SHA-256"}) {
    TDriverClient driver("mongodb://ann:secret@" + host + "/" + mechanism);
    const auto refused = driver.command("{\"ping\":1}");
    EXPECT_FALSE(refused.ok);
    EXPECT_EQ(refused.text(), "Authentication failed.");
  }
  EXPECT_EQ(server.requestCount("saslStart"), 3u);
  EXPECT_EQ(server.requestCount("ping"), 0u);
}

TEST_F(MongoFaults, WireVersionsOutOfReach) {
  server.setWireVersions(0, 5);
  EXPECT_NE(client().command("{\"ping\":1}").text().find("reports wire version 5"), std::string::npos);
  server.setWireVersions(18, 30);
  EXPECT_NE(client().command("{\"ping\":1}").text().find("requires wire version 18"), std::string::npos);
  server.setWireVersions(0, 17);
  EXPECT_TRUE(client().command("{\"ping\":1}").ok);
}

TEST_F(MongoFaults, MannersBeforeTheFirstCommand) {
  for (const TManner manner : {TManner::otherProtocol, TManner::closeAtOnce, TManner::neverRead}) {
    faults().setManner(manner);
    const auto answer = client().command("{\"ping\":1}");
    EXPECT_FALSE(answer.ok);
    EXPECT_EQ(answer.error.domain, static_cast<std::uint32_t>(MONGOC_ERROR_SERVER_SELECTION));
    EXPECT_EQ(answer.text().find("socket timeout") != std::string::npos, manner == TManner::neverRead)
        << answer.text();
  }
  faults().setManner(TManner::otherProtocol);
  TRawPeer peer(server.port());
  peer.send("x");
  EXPECT_EQ(peer.receiveAll(), "HTTP/1.1 400 Bad Request\r\n\r\n");
  faults().clear();
  EXPECT_TRUE(client().command("{\"ping\":1}").ok);
  EXPECT_EQ(server.server().violations(), 0u);
}

TEST_F(MongoFaults, TheServerDropsItsConnections) {
  TDriverClient driver = client();
  EXPECT_TRUE(driver.insertOne("{}").ok);
  server.server().dropConnections();
  EXPECT_FALSE(driver.insertOne("{}").ok);
  EXPECT_TRUE(driver.insertOne("{}").ok);
}

TEST_F(MongoFaults, WritesWithoutAnswerAreStored) {
  TDriverClient driver = client();
  for (int round = 0; round < 3; ++round)
    EXPECT_TRUE(driver.bulk(numberedRows(round * 10, 10), false, "{\"w\":0}").ok);
  EXPECT_EQ(driver.count(), 30) << "an answer too many would shift all later ones";
}

}  // namespace
}  // namespace hollowmere::mongowire
