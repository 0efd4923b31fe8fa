#include "settings/connectionexport.h"

#include <gtest/gtest.h>

#include "json/json.h"

namespace hollowmere {
namespace {

constexpr const char* oracle = R"({"dbtype":"Oracle","user":"u","password":"hidden","database":"d"})";
constexpr const char* couch =
    R"({"dbtype":"CouchDB","host":"h","port":5984,"proxypwd":"veiled","password":""})";

TConnectionList listOf(std::initializer_list<const char*> records) {
  TConnectionList list;
  for (const char* record : records) list.add(parseJson(record).asObject());
  return list;
}

std::string refusal(std::string_view bytes, std::string_view phrase = {}) {
  try {
    importConnections(bytes, phrase);
  } catch (const TConnectionExportError& error) {
    return error.what();
  }
  return "taken";
}

TEST(ConnectionExport, WithoutAPassPhraseNoPasswordLeaves) {
  const std::string text = exportConnections(listOf({oracle, couch}));
  EXPECT_EQ(text.find("hidden"), std::string::npos);
  EXPECT_EQ(text.find("veiled"), std::string::npos);
  EXPECT_FALSE(isSealedExport(text));
  EXPECT_EQ(importConnections(text),
            listOf({R"({"dbtype":"Oracle","user":"u","password":"","database":"d"})",
                    R"({"dbtype":"CouchDB","host":"h","port":5984,"proxypwd":"","password":""})"}));
}

TEST(ConnectionExport, SealedItComesBackWholeUnderItsPhraseOnly) {
  const TConnectionList list = listOf({oracle, couch});
  const std::string text = exportConnections(list, "long enough");
  EXPECT_EQ(text.find("hidden"), std::string::npos);
  EXPECT_TRUE(isSealedExport(text));
  EXPECT_EQ(importConnections(text, "long enough"), list);
  const char* const wrong = "The pass phrase is wrong, or the file is damaged.";
  EXPECT_EQ(refusal(text, "long enougH"), wrong);
  EXPECT_EQ(refusal(text), wrong);
  EXPECT_NE(text, exportConnections(list, "long enough")) << "salt and vector are new each time";
}

TEST(ConnectionExport, ForeignAndDamagedFilesAreNamedAsSuch) {
  const char* const foreign = "The file holds no exported connections.";
  for (const char* bytes :
       {"", "hidden", "[]", "{}", R"({"connections":{}})", "{\"connections\":[", "\xff\xfe"})
    EXPECT_EQ(refusal(bytes), foreign) << bytes;
  EXPECT_EQ(refusal(R"({"sealed":2})"), "The file was exported by a newer version of the program.");
  EXPECT_EQ(refusal(R"({"sealed":1})"), "The file is damaged: its member \"salt\" cannot be read.");
  EXPECT_EQ(refusal(R"({"sealed":1,"salt":"AAAA","content":7})"),
            "The file is damaged: its member \"content\" cannot be read.");
  EXPECT_EQ(refusal(R"({"connections":[{"dbtype":"HBase"},{"dbtype":"hidden"}]})"),
            "Connection 2 of the file is of no database type that this program knows.");
  EXPECT_EQ(refusal(R"({"connections":[7]})"),
            "Connection 1 of the file is of no database type that this program knows.");
}

TEST(ConnectionExport, ImportAddsOnlyWhatIsMissing) {
  TConnectionList list = listOf({oracle});
  EXPECT_EQ(addMissing(list, importConnections(exportConnections(listOf({oracle, couch})))), 1U)
      << "the same connection without its password is there already";
  EXPECT_EQ(addMissing(list, listOf({couch})), 1U) << "with a password it is another";
  EXPECT_EQ(addMissing(list, list), 0U);
  EXPECT_EQ(importSummary(1, 1), "Connections imported: 1.");
  EXPECT_EQ(importSummary(1, 3), "Connections imported: 1. Already in the list: 2.");
}

TEST(ConnectionExport, PassPhrasesAreChecked) {
  EXPECT_EQ(checkPassPhrase("", ""), "Please type a pass phrase.");
  EXPECT_EQ(checkPassPhrase("1234567", "1234567"), "Please type a pass phrase of at least 8 characters.");
  EXPECT_EQ(checkPassPhrase("12345678", "12345679"), "The two pass phrases differ.");
  EXPECT_EQ(checkPassPhrase("12345678", "12345678"), "");
}

}  // namespace
}  // namespace hollowmere
