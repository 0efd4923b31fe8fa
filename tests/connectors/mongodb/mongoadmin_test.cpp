#include "connectors/mongodb/mongoadmin.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "connectors/mongodb/mongocopy.h"
#include "connectors/mongodb/mongostats.h"
#include "connectors/mongodb/mongousers.h"
#include "json/json.h"
#include "support/mongorecords.h"
#include "support/mongowire/standin.h"

namespace hollowmere {

namespace {

using mongowire::TMongoStandIn;
namespace fault = mongowire::fault;

std::string faultOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const TStoreError& error) {
    return error.what();
  }
  return {};
}

template <typename T>
bool contains(const std::vector<T>& all, const T& one) {
  return std::find(all.begin(), all.end(), one) != all.end();
}

TEST(MongoAdmin, MakesListsAndDropsDatabasesCollectionsAndIndexes) {
  TMongoAdmin admin(rootOptions());
  EXPECT_EQ(admin.serverVersion().substr(0, 2), "8.");
  EXPECT_EQ(faultOf([&] { admin.createDatabase(""); }), "Database name is not specified.");
  EXPECT_EQ(faultOf([&] { admin.createDatabase("admin"); }), "Database already exists.");
  admin.createDatabase("fresh");
  admin.createCollection("fresh", "plain");
  admin.createCollection("fresh", "ring", {{"capped", true}, {"size", 4096}});
  admin.createCollection("fresh", "seen", {{"viewOn", "plain"}, {"pipeline", TList()}});
  EXPECT_EQ(faultOf([&] { admin.createCollection("fresh", "ring"); }), "Collection already exists.");
  EXPECT_EQ(faultOf([&] { admin.createCollection("fresh", ""); }), "Collection name is not specified.");
  EXPECT_TRUE(contains(admin.databases(), std::string("fresh")));
  const auto collections = admin.collections("fresh");
  std::string kinds;
  for (const auto& each : collections)
    if (!each.name.starts_with("system.")) kinds += each.name + ":" + each.kind + " ";
  EXPECT_EQ(kinds, "plain:collection ring:collection seen:view ");
  EXPECT_EQ(*collections[1].options.find("capped"), TValue(true));

  admin.createIndex("fresh", "plain", "by_a", {{"a", 1}, {"b", -1}}, {{"unique", true}});
  EXPECT_EQ(faultOf([&] {
              admin.createIndex("fresh", "plain", "", {{"a", 1}});
            }),
            "Index name is not specified.");
  EXPECT_EQ(faultOf([&] { admin.createIndex("fresh", "plain", "x", {}); }), "No index keys are specified.");
  const auto indexes = admin.indexes("fresh", "plain");
  ASSERT_EQ(indexes.size(), 2U);
  EXPECT_EQ(toJson(*indexes[1].find("key")), R"({"a":1,"b":-1})");
  admin.dropIndex("fresh", "plain", "by_a");
  EXPECT_NE(faultOf([&] { admin.dropIndex("fresh", "plain", "by_a"); }).find("Error Code: 27\r"),
            std::string::npos);
  admin.dropAllIndexes("fresh", "plain");
  EXPECT_EQ(admin.indexes("fresh", "plain").size(), 1U);

  admin.renameCollection("fresh", "plain", "renamed");
  EXPECT_EQ(faultOf([&] { admin.dropCollection("fresh", "system.views"); }),
            "Unable to drop system MongoDB collection.");
  admin.dropCollection("fresh", "renamed");
  for (const char* kept : {"local", "admin"})
    EXPECT_EQ(faultOf([&] { admin.dropDatabase(kept); }), "Unable to drop this database.");
  admin.dropDatabase("fresh");
  EXPECT_FALSE(contains(admin.databases(), std::string("fresh")));
}

TEST(MongoAdmin, FindsAndChangesDocuments) {
  TMongoAdmin admin(rootOptions());
  for (int i = 0; i < 10; ++i)
    admin.insert("test", "rows",
                 {{"_id", i}, {"n", TValue()}, {"b", i % 2 == 0}, {"sub", TObject{{"x", i}}}});
  const TValue made = admin.insert("test", "rows", {{"n", 1.5}, {"when", "2024-03-05T14:22:07Z"}});
  EXPECT_TRUE(made.is(TKind::ObjectId));
  TMongoQuery query{"test", "rows", {{"b", true}}, {{"_id", -1}}, {{"sub", 0}, {"n", 0}}, 1, 2, 1, "nearest"};
  std::string rows;
  const auto found = admin.find(query);
  while (const auto row = found->next()) rows += toJson(*row);
  EXPECT_EQ(rows, R"({"_id":6,"b":true}{"_id":4,"b":true})");
  EXPECT_EQ(admin.count(query), 5);
  query.readPreference = "any";
  EXPECT_EQ(faultOf([&] { admin.find(query); }), "There is no read preference any.");

  std::string attributes;
  for (const TMongoAttribute& each : admin.attributes("test", "rows"))
    attributes += each.name + ":" + each.type + " ";
  EXPECT_EQ(attributes, "_id:Integer n:Double b:Boolean sub:Nested Object when:DateTime ");

  EXPECT_TRUE(admin.replace("test", "rows", {{"_id", made}, {"new", 1}}));
  EXPECT_FALSE(admin.replace("test", "rows", {{"_id", 77}, {"new", 1}}));
  EXPECT_EQ(faultOf([&] { admin.replace("test", "rows", {{"new", 1}}); }), "The document has no _id.");
  EXPECT_TRUE(admin.remove("test", "rows", made));
  EXPECT_FALSE(admin.remove("test", "rows", made));
  // An identifier that looks like a date is none.
  admin.runCommand("test", {{"insert", "rows"}, {"documents", TList{TObject{{"_id", "1/2/2024"}}}}});
  EXPECT_TRUE(admin.replace("test", "rows", {{"_id", "1/2/2024"}, {"n", 2}}));
  EXPECT_TRUE(admin.remove("test", "rows", "1/2/2024"));
  EXPECT_EQ(faultOf([&] {
              admin.insert("test", "rows", {{"_id", 1}});
            }).find("Error Code: 11000\rError Message: "),
            0U);

  const TInfoRows info = collectionInfo(admin.collectionStats("test", "rows"));
  EXPECT_EQ(info.front(), std::make_pair(std::string("Document Count"), std::string("10")));
  EXPECT_EQ(info.back().first, "Size of Index: _id_");
  EXPECT_EQ(databaseInfo(admin.databaseStats("test")).front().first, "Collection Count");
}

TEST(MongoAdmin, SavesUsersAndRoles) {
  TMongoAdmin admin(rootOptions());
  TMongoUsers users(admin, "test");
  users.createRole(
      {"looker", false, {{"read", "test"}}, {{{{"db", "test"}, {"collection", "c"}}, {"find"}}}});
  users.saveRole({"looker", false, {}, {{{{"db", "test"}, {"collection", "c"}}, {"insert"}}}});
  const auto roles = users.roles();
  const auto looker =
      std::find_if(roles.begin(), roles.end(), [](const auto& r) { return r.name == "looker"; });
  ASSERT_NE(looker, roles.end());
  EXPECT_TRUE(looker->roles.empty());
  ASSERT_EQ(looker->privileges.size(), 1U);
  EXPECT_EQ(looker->privileges[0].actions, std::vector<std::string>{"insert"});
  EXPECT_TRUE(std::any_of(roles.begin(), roles.end(), [](const auto& r) { return r.isBuiltin; }));
  EXPECT_FALSE(std::any_of(roles.begin(), roles.end(), [](const auto& r) { return r.name == "__system"; }));

  users.createUser({"ann", {{"read", "test"}}}, "secret");
  users.saveUser({"ann", {{"readWrite", "test"}, {"looker", "test"}}}, "secret");
  std::vector<TMongoRoleName> has;
  for (const TMongoUser& user : users.users())
    if (user.name == "ann") has = user.roles;
  EXPECT_EQ(has.size(), 2U);
  EXPECT_TRUE(contains(has, {"readWrite", "test"}));
  // The new login works, and may not do what it was not granted.
  TMongoAdmin ann(mongoOptions(realServer().port(), "ann", "test"));
  const std::string refused = faultOf([&] { TMongoUsers(ann, "test").users(); });
  EXPECT_EQ(refused.find("An error occurred during accessing user information: Error Code: 13\r"), 0U)
      << refused;
  EXPECT_TRUE(refused.ends_with(" Verify that the current user has necessary privileges.")) << refused;
  users.dropUser("ann");
  users.dropRole("looker");
  EXPECT_NE(faultOf([&] { users.dropUser("ann"); }), "");
}

TEST(MongoAdmin, RemovedCommandsNameWhatReplacesThem) {
  TMongoAdmin admin(rootOptions());
  for (const char* command : {"group", "eval", "filemd5"}) {
    const std::string text = faultOf([&] { admin.runCommand("test", {{command, 1}}); });
    EXPECT_EQ(text.find("Error Code: 59\rError Message: "), 0U) << text;
    EXPECT_NE(text.find("The server no longer has the command " + std::string(command) + "; use "),
              std::string::npos)
        << text;
  }
  EXPECT_EQ(faultOf([&] {
              admin.runCommand("test", {{"nosuch", 1}});
            }),
            "Error Code: 59\rError Message: no such command: 'nosuch'");
  EXPECT_EQ(faultOf([&] {
              admin.commands();
            }).find("An error occurred during accessing database commands information: "),
            0U);
}

TEST(MongoAdmin, ListsTheCommandsOfAServerThatTells) {
  TMongoStandIn server;
  server.faults().onCommand(
      "listCommands", 1,
      fault::answer(mongowire::TBson::fromJson(
          R"({"commands":{"ping":{"help":"a way","adminOnly":false},"shutdown":{"adminOnly":true}},"ok":1})")));
  const auto commands = TMongoAdmin(mongoOptions(server.port())).commands();
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_EQ(commands[0].help, "a way");
  EXPECT_TRUE(commands[1].adminOnly);
}

TEST(MongoAdmin, LostConnectionsAreErrors) {
  for (const auto& loss : {fault::close(), fault::halfThenClose(), fault::garbageFrame()}) {
    TMongoStandIn server;
    server.fillJson("test", "c", {"{\"_id\":1}", "{\"_id\":2}", "{\"_id\":3}"});
    server.faults().onCommand("getMore", 1, loss);
    server.faults().onCommand("listCollections", mongowire::TFaultScript::kEvery, loss);
    TMongoAdmin admin(mongoOptions(server.port()));
    TMongoQuery query;
    query.database = "test";
    query.collection = "c";
    query.batchSize = 2;
    const auto rows = admin.find(query);
    EXPECT_TRUE(rows->next());
    EXPECT_TRUE(rows->next());
    EXPECT_THROW(rows->next(), TMongoError);
    EXPECT_THROW(admin.collections("test"), TMongoError);
  }
}

TCopyOrder order(std::uint16_t port, const std::string& target) {
  return {{rootOptions(), "test", "source"}, {mongoOptions(port), "shop", target}, {}};
}

TEST(MongoCopy, CopiesBetweenServersWithProgressAndStop) {
  TMongoAdmin admin(rootOptions());
  TMongoStandIn other;
  TList documents;
  for (int i = 0; i < 2500; ++i)
    documents.emplace_back(TObject{{"_id", i}, {"l", TValue::wideInt(i)}, {"d", TValue::decimal("1.50")}});
  admin.runCommand("test", {{"insert", "source"}, {"documents", documents}});

  std::vector<std::int64_t> seen;
  TCopyResult result = copyCollection(order(other.port(), "all"), [&](std::int64_t done, std::int64_t total) {
    EXPECT_EQ(total, 2500);
    seen.push_back(done);
  });
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.copied, 2500);
  EXPECT_EQ(seen, (std::vector<std::int64_t>{1000, 2000, 2500}));
  ASSERT_EQ(other.documents("shop", "all").size(), 2500U);
  EXPECT_EQ(other.documentsJson("shop", "all")[7],
            R"({ "_id" : 7, "l" : 7, "d" : { "$numberDecimal" : "1.50" } })");

  TCopyOrder some = order(other.port(), "some");
  some.attributes = {"l"};
  EXPECT_EQ(copyCollection(some).copied, 2500);
  EXPECT_EQ(other.documentsJson("shop", "some")[3].find("\"d\""), std::string::npos);

  TStopFlag stop;
  TCopyOrder stopped = order(other.port(), "stopped");
  stopped.source.options.stop = stopped.target.options.stop = &stop;
  result = copyCollection(stopped, [&](std::int64_t, std::int64_t) { stop.set(); });
  EXPECT_EQ(result.error, "The operation was cancelled.");
  EXPECT_EQ(result.copied, 1000);

  other.faults().onCommand("insert", 2, fault::refuseAt({5}));
  result = copyCollection(order(other.port(), "refusing"));
  EXPECT_EQ(result.copied, 1005);
  EXPECT_EQ(result.error, "Error Code: 121\rError Message: Document failed validation");

  TCopyOrder empty = order(other.port(), "none");
  empty.source.collection = "nosuch";
  EXPECT_EQ(copyCollection(empty).error, "Source collection does not contain documents.");
  EXPECT_EQ(copyCollection(order(1, "x")).error.find("Unable to connect to target database."), 0U);
}

TEST(MongoCopy, ChecksInOrder) {
  TCopyOrder made = order(27017, "c");
  EXPECT_EQ(checkCopy(made, false), "No document attributes specified to copy.");
  EXPECT_EQ(checkCopy(made, true), "");
  made.target.collection = "system.users";
  EXPECT_EQ(checkCopy(made, true), "Unable to copy data to system collection");
  made.target = made.source;
  EXPECT_EQ(checkCopy(made, true), "Source and target collections must be different.");
  made.target.collection.clear();
  EXPECT_EQ(checkCopy(made, true), "Target collection name is not specified.");
  made.target.options.connection = TValue();
  EXPECT_EQ(checkCopy(made, true), "Target MongoDB connection is not specified.");
  made.source.collection.clear();
  EXPECT_EQ(checkCopy(made, true), "Source collection name is not specified.");
}

}  // namespace

}  // namespace hollowmere
