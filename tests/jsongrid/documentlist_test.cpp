#include "jsongrid/documentlist.h"

#include <gtest/gtest.h>

#include "json/json.h"
#include "settings/safefile.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

std::string all(std::string_view text) { return toJson(TValue(parseDocuments(text))); }

TEST(DocumentList, IsAListADocumentOrLines) {
  EXPECT_EQ(all(" [ {\"a\":1},\n {\"b\":2}, 3 ]\n"), R"([{"a":1},{"b":2},3])");
  EXPECT_EQ(all("\xEF\xBB\xBF{\n \"a\": 1\n}\n"), R"([{"a":1}])");
  EXPECT_EQ(all("{\"a\":1}\r\n\r\n{\"b\":[]}"), R"([{"a":1},{"b":[]}])");
  EXPECT_EQ(all("[1]\n[2]"), "[[1],[2]]") << "the second line shows that the first is not all";
  EXPECT_EQ(all("[]"), "[]");
}

std::string fault(std::string_view text) {
  try {
    parseDocuments(text);
  } catch (const TDocumentTextError& error) {
    EXPECT_STREQ(error.what(), "Invalid JSON document.");
    return error.detail();
  }
  return "none";
}

TEST(DocumentList, SaysWhereABadTextIsBad) {
  EXPECT_EQ(fault(" \n "), "the text is empty");
  EXPECT_EQ(fault("42"), "it is neither an object nor a list");
  EXPECT_NE(fault("{\"a\": 1,\n \"ä\" 2}").find("(line 2, column 6)"), std::string::npos)
      << fault("{\"a\": 1,\n \"ä\" 2}");
  EXPECT_NE(fault("{\"a\":1}\n\n{\"b\":}\n").find("(line 3, column 6)"), std::string::npos)
      << fault("{\"a\":1}\n\n{\"b\":}\n");
  EXPECT_NE(fault(std::string("PK\x03\x04\0\0", 6)).find("line 1"), std::string::npos);
}

TEST(DocumentList, StopsAmongTheLinesAndNamesAFileThatIsNotThere) {
  TStopFlag stop;
  stop.set();
  EXPECT_TRUE(parseDocuments("{}\n{}\n", &stop).empty());
  const TTempFolder temp;
  EXPECT_THROW(readDocuments(temp.file("none.json")), TFileError);
  writeBytes(temp.file("a.json"), "{}\n{}");
  EXPECT_EQ(readDocuments(temp.file("a.json")).size(), 2U);
}

}  // namespace
}  // namespace hollowmere
