#include <gtest/gtest.h>

#include "json/json.h"
#include "settings/connectionedit.h"
#include "settings/connectionhelp.h"
#include "settings/optionrows.h"
#include "settings/rtftext.h"
#include "support/failingfiles.h"
#include "support/scriptedprompt.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

TEST(OptionRows, StandByGroupAndComeBack) {
  TSettings settings;
  settings.showJsonIcon = "Y";
  std::string shown;
  for (const TOptionRow& row : optionRows(settings))
    shown += std::string(row.group) + " / " + std::string(row.caption) + " = " + row.text + "\n";
  EXPECT_EQ(shown,
            "Data Grid Properties / Auto Row Height = False\n"
            "Data Grid Properties / Auto Column Width = True\n"
            "Data Grid Properties / Fetch Limit = 100\n"
            "Data Grid Properties / Max Fetch Limit = 100000\n"
            "Data Grid Properties / Show JSON Icon In Grid? = True\n"
            "Default Project Settings / Ignore NULLs? = True\n"
            "Default Project Settings / Fetch Limit = 100\n"
            "Default Project Settings / Parallel Degree = 1\n"
            "Default Project Settings / Documents To Load = 0\n"
            "Default Project Settings / Stop When Rows/Documents Discarded = 0\n"
            "Default Project Settings / Stop When Rows/Documents Skipped = 0\n"
            "Default Project Settings / Log File = \n"
            "Default Project Settings / Discard File = \n"
            "General / HTTP Timeout = 5\n"
            "General / Show Connection List At Startup = False\n"
            "General / JSON File Buffer Size (bytes) = 1000000\n");
  TSettings copy;
  for (const TOptionRow& row : optionRows(settings)) EXPECT_EQ(setOption(copy, row.name, row.text), "");
  EXPECT_EQ(copy, settings);
  EXPECT_EQ(setOption(copy, "loadDegree", "0"), "Parallel Degree must be a whole number from 1 to 1024.");
  EXPECT_EQ(setOption(copy, "ignoreNulls", "maybe"), "Ignore NULLs? must be True or False.");
  EXPECT_EQ(setOption(copy, "showJsonIcon", "False"), "");
  EXPECT_EQ(copy.showJsonIcon, "N");
}

TEST(FieldChoices, KeepTheDefaultAndWhatStandsThere) {
  using TTexts = std::vector<std::string>;
  const auto& fields = findConnectionType(dbtype::mongodb)->fields;
  const auto& mechanism = fields[5];
  EXPECT_EQ(fieldChoices(mechanism, "SCRAM-SHA-1"), (TTexts{"", "MONGODB-CR", "SCRAM-SHA-1"}));
  EXPECT_EQ(fieldChoices(mechanism, "PLAIN"), (TTexts{"PLAIN", "", "MONGODB-CR", "SCRAM-SHA-1"}));
  const auto& protocol = findConnectionType(dbtype::couchdb)->fields[2];
  EXPECT_EQ(fieldChoices(protocol, "http"), (TTexts{"http", "https"}));
}

class TConnectionEditTest : public testing::Test {
 protected:
  [[nodiscard]] TConnectionListFile file(TSafeFiles& files) const { return {path_, cipher_, files}; }

  TTempFolder temp_;
  std::string path_ = temp_.file("connlist.dat");
  TCipher cipher_;
  TDiskFiles disk_;
  TScriptedPrompt prompt_;
  ConnectionConfig record_ = parseJson(R"({"dbtype":"HBase","host":"h"})").asObject();
};

TEST_F(TConnectionEditTest, WritesAtItsEndAndOnlyWhatChanged) {
  TConnectionEdit edit(file(disk_), prompt_);
  edit.list().add(record_);
  EXPECT_FALSE(fileExists(path_));
  EXPECT_TRUE(edit.close());
  const std::string written = readBytes(path_);
  TConnectionEdit again(file(disk_), prompt_);
  EXPECT_EQ(again.list().records().size(), 1U);
  EXPECT_TRUE(again.close());
  EXPECT_EQ(readBytes(path_), written) << "each writing makes other bytes";
  again.list().remove(0);
  EXPECT_TRUE(again.close());
  EXPECT_TRUE(file(disk_).load().records().empty());
}

TEST_F(TConnectionEditTest, AFileThatCannotBeLoadedSurvives) {
  writeBytes(path_, "foreign");
  prompt_.expect(TPromptKind::Error, "Failed to load database connection list from " + path_);
  TConnectionEdit edit(file(disk_), prompt_);
  EXPECT_TRUE(edit.close());
  EXPECT_EQ(readBytes(path_), "foreign") << "an empty list is not worth the file";
  edit.list().add(record_);
  prompt_.expect(TPromptKind::Information, "The file that could not be loaded was kept as " + path_ + ".bad");
  EXPECT_TRUE(edit.close());
  EXPECT_EQ(readBytes(path_ + ".bad"), "foreign");
  EXPECT_EQ(file(disk_).load(), edit.list());
}

TEST_F(TConnectionEditTest, AListThatCannotBeSavedIsNotLostUnasked) {
  TFailingFiles full(3);
  TConnectionEdit edit(file(full), prompt_);
  edit.list().add(record_);
  for (const TAnswer answer : {TAnswer::No, TAnswer::Yes}) {
    prompt_.expect(TPromptKind::Error, "Failed to save database connection list to " + path_);
    prompt_.expect(TPromptKind::Confirmation,
                   "Would you like to close the connection list without saving it?", answer);
    EXPECT_EQ(edit.close(), answer == TAnswer::Yes);
  }
}

TEST_F(TConnectionEditTest, KeepsAProjectsConnectionAtOnceAndAsksOnce) {
  TConnectionEdit edit(file(disk_), prompt_);
  prompt_.expect(TPromptKind::Confirmation, "Would you like to save this database connection for future use?",
                 TAnswer::Yes);
  EXPECT_TRUE(edit.offerToKeep(record_));
  EXPECT_FALSE(edit.offerToKeep(record_));
  const std::string written = readBytes(path_);
  EXPECT_TRUE(edit.close());
  EXPECT_EQ(readBytes(path_), written);
}

TEST(ConnectionRows, AreShownAndSearchedWithoutPasswords) {
  const auto record =
      parseJson(R"({"dbtype":"Oracle","user":"Scott","password":"tiger","database":"d"})").asObject();
  const TConnectionRow row = shownRow(record);
  EXPECT_EQ(row[4], R"({"dbtype":"Oracle","user":"Scott","password":"********","database":"d"})");
  EXPECT_TRUE(rowMatches(row, "sCOTT@"));
  EXPECT_TRUE(rowMatches(row, ""));
  EXPECT_FALSE(rowMatches(row, "tiger"));
}

TEST(ConnectionHelp, IsTheTextOfTheFileBesideTheProgram) {
  const TTempFolder temp;
  const TConnectionType& type = *findConnectionType(dbtype::hbase);
  const std::string path = temp.file("Help/hbase.rtf");
  const std::string program = path.substr(0, path.rfind("/Help/"));
  EXPECT_EQ(connectionHelp(type, program), "No help file found: " + path);
  std::filesystem::create_directory(temp.file("Help"));
  writeBytes(path, R"({\rtf1 About \b HBase})");
  EXPECT_EQ(connectionHelp(type, program), "About HBase");
}

TEST(RtfText, ShowsTheTextAndNothingElse) {
  EXPECT_EQ(
      rtfText(
          R"({\rtf1\ansi{\fonttbl{\f0 Arial;}}{\*\generator X;}{\colortbl;\red0;}\f0\fs20 One \b two\b0\par
Caf\'e9 \'80 \u8364? \{x\}\tab y\line z})"),
      "One two\nCafé € € {x}\ty\nz");
  EXPECT_EQ(rtfText(R"({\rtf1\uc2 a\u252\'fc\'fcb\uc0\u-10179\u-8704 c})"), "aüb😀c");
  for (const char* damaged : {"", "{", "}", "}}}a", "\\", "\\'", "\\'g", "\\u", "\\u99999999999 ",
                              "\\bin9999999 a", "{\\bin-1 ", "\\u-10179"})
    (void)rtfText(damaged);
  EXPECT_EQ(rtfText("}}a"), "a");
  EXPECT_EQ(rtfText(std::string(100000, '{') + "a"), "a");
}

}  // namespace
}  // namespace hollowmere
