#include <gtest/gtest.h>

#include "json/json.h"
#include "settings/connectionlist.h"
#include "support/failingfiles.h"
#include "support/scriptedprompt.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

const TConnectionType& typeOf(std::string_view dbType) { return *findConnectionType(dbType); }

ConnectionConfig recordOf(const char* json) { return parseJson(json).asObject(); }

/// Fills each row with its own member name unless it has a default.
std::string built(std::string_view dbType) {
  TFieldValues values = newConnectionValues(typeOf(dbType));
  for (auto& [member, text] : values)
    if (text.empty() && member != "timeout") text = member;
  EXPECT_EQ(checkConnection(typeOf(dbType), values), "");
  return toJson(buildConnection(typeOf(dbType), values));
}

TEST(ConnectionRecord, MembersStandInTheirOrder) {
  EXPECT_EQ(built("MongoDB"),
            R"({"dbtype":"MongoDB","host":"host","port":27017,"database":"database","user":"user",)"
            R"("password":"password","mechanism":"mechanism","authdb":"authdb"})");
  EXPECT_EQ(built("Cassandra"),
            R"({"dbtype":"Cassandra","host":"host","port":9160,"user":"user","password":"password",)"
            R"("encoding":"Default","readlevel":"ONE","writelevel":"ANY"})");
  EXPECT_EQ(built("HBase"),
            R"({"dbtype":"HBase","host":"host","port":9090,"infoport":60010,"encoding":"Default"})");
  EXPECT_EQ(built("CouchDB"),
            R"({"dbtype":"CouchDB","host":"host","port":5984,"protocol":"http","proxyauthtype":"None",)"
            R"("proxyhost":"proxyhost","proxyport":0,"proxyuser":"proxyuser","proxypwd":"proxypwd",)"
            R"("user":"user","password":"password"})");
  EXPECT_EQ(built("Oracle"),
            R"({"dbtype":"Oracle","user":"user","password":"password","database":"database"})");
  EXPECT_EQ(built("Couchbase"),
            R"({"dbtype":"Couchbase","host":"host","port":8091,"restport":8092,"protocol":"http",)"
            R"("proxyauthtype":"None","proxyhost":"proxyhost","proxyport":0,"proxyuser":"proxyuser",)"
            R"("proxypwd":"proxypwd","user":"user","password":"password"})");
  EXPECT_EQ(toJson(buildConnection(typeOf("HBase"), {{"host", "h"}})),
            R"({"dbtype":"HBase","host":"h","port":0,"infoport":0,"encoding":""})");
  const char* const patient =
      R"({"dbtype":"HBase","host":"h","port":1,"infoport":2,"encoding":"x","timeout":120})";
  EXPECT_EQ(toJson(buildConnection(typeOf("HBase"), connectionValues(typeOf("HBase"), recordOf(patient)))),
            patient);
}

TEST(ConnectionRecord, TheDialogsRowsNameEveryMemberOnce) {
  for (const TConnectionType& type : connectionTypes()) {
    if (type.rows.empty()) continue;
    EXPECT_EQ(type.rows.size(), type.fields.size());
    for (const TConnectionField& field : type.fields)
      EXPECT_EQ(std::ranges::count(type.rows, field.member), 1) << type.dbType << " " << field.member;
  }
}

TEST(ConnectionRecord, ChecksComeInOrderWithTheirTexts) {
  const auto messages = [](std::string_view dbType) {
    std::string all;
    TFieldValues values;
    for (const TConnectionField& field : typeOf(dbType).fields) {
      if (field.required.empty()) continue;
      all += checkConnection(typeOf(dbType), values) + "|";
      values[std::string(field.member)] = "x";
    }
    return all + checkConnection(typeOf(dbType), values);
  };
  EXPECT_EQ(messages("MongoDB"),
            "Please specify MongoDB instance host.|Please specify MongoDB database name.|");
  EXPECT_EQ(messages("Cassandra"), "Please specify Cassandra database host.|");
  EXPECT_EQ(messages("HBase"), "Please specify HBase database host.|");
  EXPECT_EQ(messages("CouchDB"), "Please specify CouchDB database host.|Please specify protocol.|");
  EXPECT_EQ(messages("Couchbase"), "Please specify Couchbase database host.|Please specify protocol.|");
  EXPECT_EQ(messages("Oracle"),
            "Please specify Oracle database user.|Please specify Oracle database user password.|"
            "Please specify Oracle database service name.|");

  const char* const noProtocol = "Do not use http: or https: protocol prefixes in the host name.";
  for (const char* host : {"http://x", "HTTPS://x", "Http:", "x https:"})
    EXPECT_EQ(checkConnection(typeOf("HBase"), {{"host", host}}), noProtocol) << host;
  EXPECT_EQ(checkConnection(typeOf("MongoDB"), {{"host", "http://x"}}),
            "Please specify MongoDB database name.");
  EXPECT_EQ(checkConnection(typeOf("HBase"), {{"host", "https.example"}}), "");
  for (const char* port : {"-1", "65536", "1x", "99999999999"})
    EXPECT_EQ(checkConnection(typeOf("HBase"), {{"host", "h"}, {"infoport", port}}),
              "Info Port must be a whole number from 0 to 65535.");
}

TEST(ConnectionRecord, ARecordComesBackThroughTheDialog) {
  const ConnectionConfig record = recordOf(
      R"({"dbtype":"CouchDB","host":"h","port":1,"protocol":"https","proxyauthtype":"Ntlm","proxyhost":"",)"
      R"("proxyport":0,"proxyuser":"","proxypwd":"","user":"ü","password":"p\"w"})");
  EXPECT_EQ(buildConnection(typeOf("CouchDB"), connectionValues(typeOf("CouchDB"), record)), record);
}

TEST(ConnectionRecord, ListRowsDependOnTheType) {
  const auto row = [](const char* json) {
    const TConnectionRow cells = connectionRow(recordOf(json));
    return cells[0] + "|" + cells[1] + "|" + cells[2] + "|" + cells[3] + "|" + cells[4];
  };
  const auto* const mongodb = R"({"dbtype":"MongoDB","host":"h","port":1,"database":"d","user":"u"})";
  EXPECT_EQ(row(mongodb), std::string("h@d/u|1|MongoDB||") + mongodb);
  const auto* const oracle = R"({"dbtype":"Oracle","user":"u","password":"p","database":"x:1:s"})";
  EXPECT_EQ(row(oracle), std::string("u@x:1:s||Oracle||") + oracle);
  const auto* const hbase = R"({"dbtype":"HBase","host":"h","port":"9090"})";
  EXPECT_EQ(row(hbase), std::string("h|9090|HBase||") + hbase);
  EXPECT_EQ(row("{}"), "||||{}");
}

TEST(ConnectionRecord, SecretsAreMaskedAtAnyDepth) {
  const TValue value = parseJson(
      R"([{"password":"a","user":"password","c":{"ProxyPwd":"b","list":[{"saslpwd":""}]}},{"password":{"x":1}}])");
  EXPECT_EQ(toJson(maskSecrets(value)),
            R"([{"password":"********","user":"password","c":{"ProxyPwd":"********",)"
            R"("list":[{"saslpwd":"********"}]}},{"password":"********"}])");
}

class TConnectionListTest : public testing::Test {
 protected:
  [[nodiscard]] std::string loadError() const {
    try {
      static_cast<void>(file_.load());
    } catch (const TConnectionListError& error) {
      EXPECT_EQ(error.reason().find("hidden"), std::string::npos) << error.reason();
      return error.what();
    }
    return "no error";
  }

  TTempFolder temp_;
  std::string path_ = temp_.file("connlist.dat");
  TCipher cipher_;
  TDiskFiles files_;
  TConnectionListFile file_{path_, cipher_, files_};
  ConnectionConfig record_ =
      recordOf(R"({"dbtype":"Oracle","user":"Ärger","password":"hidden","database":"d"})");
};

TEST_F(TConnectionListTest, ComesBackFromItsFileEnciphered) {
  EXPECT_EQ(file_.load(), TConnectionList()) << "a missing file is an empty list";
  TConnectionList list;
  list.add(recordOf(R"({"dbtype":"HBase","host":"h"})"));
  list.add(record_);
  EXPECT_EQ(file_.save(list), std::nullopt);
  EXPECT_EQ(file_.load(), list);
  EXPECT_EQ(readBytes(path_).find("hidden"), std::string::npos);
  EXPECT_EQ(permissionsOf(path_), 0600U);
  list.remove(0);
  list.replace(0, recordOf("{}"));
  EXPECT_EQ(file_.save(list), std::nullopt);
  EXPECT_EQ(toJson(file_.load().records().at(0)), "{}");
}

TEST_F(TConnectionListTest, FindsTheWholeTextWhateverItsCase) {
  TConnectionList list;
  list.add(record_);
  EXPECT_TRUE(list.connListFind(R"({"DBTYPE":"oracle","user":"ärger","password":"HIDDEN","database":"d"})"));
  EXPECT_FALSE(list.connListFind(R"({"dbtype":"Oracle","user":"Ärger","password":"hidden","database":"d)"));
}

TEST_F(TConnectionListTest, ACutFileOfAnyLengthIsRefusedAndKept) {
  TConnectionList list;
  list.add(record_);
  file_.save(list);
  const std::string whole = readBytes(path_);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    writeBytes(path_, whole.substr(0, length));
    EXPECT_EQ(loadError(), "Failed to load database connection list from " + path_) << length;
    EXPECT_EQ(readBytes(path_), whole.substr(0, length));
  }
  const auto kept = file_.save(TConnectionList());
  ASSERT_EQ(kept, path_ + ".bad");
  EXPECT_EQ(readBytes(*kept), whole.substr(0, whole.size() - 1));
  EXPECT_EQ(file_.load(), TConnectionList());
}

TEST_F(TConnectionListTest, EncipheredContentThatIsNoListIsRefused) {
  for (const char* content :
       {"", "hidden", "[]", "{}", R"({"connections":{}})", R"({"connections":["hidden"]})"}) {
    writeBytes(path_, cipher_.encryptStream(content));
    EXPECT_EQ(loadError(), "Failed to load database connection list from " + path_) << content;
  }
  writeBytes(path_, TCipher("another").encryptStream(R"({"connections":[]})"));
  EXPECT_EQ(loadError(), "Failed to load database connection list from " + path_);
}

TEST_F(TConnectionListTest, AFailedSaveLeavesTheOldList) {
  TConnectionList list;
  list.add(record_);
  file_.save(list);
  TFailingFiles full(20);
  const TConnectionListFile file(path_, cipher_, full);
  TScriptedPrompt prompt;
  prompt.expect(TPromptKind::Confirmation, "Would you like to save this database connection for future use?",
                TAnswer::Yes);
  prompt.expect(TPromptKind::Error, "Failed to save database connection list to " + path_);
  TConnectionList longer = list;
  EXPECT_TRUE(offerToKeep(longer, file, recordOf("{}"), prompt));
  EXPECT_EQ(file_.load(), list);
}

TEST_F(TConnectionListTest, AConnectionIsOfferedOnce) {
  TConnectionList list;
  TScriptedPrompt prompt;
  const char* const question = "Would you like to save this database connection for future use?";
  prompt.expect(TPromptKind::Confirmation, question, TAnswer::No);
  EXPECT_FALSE(offerToKeep(list, file_, record_, prompt));
  EXPECT_FALSE(fileExists(path_));
  prompt.expect(TPromptKind::Confirmation, question, TAnswer::Yes);
  EXPECT_TRUE(offerToKeep(list, file_, record_, prompt));
  EXPECT_FALSE(offerToKeep(list, file_, record_, prompt)) << "and asks nothing";
  EXPECT_EQ(file_.load().records().size(), 1U);
}

}  // namespace
}  // namespace hollowmere
