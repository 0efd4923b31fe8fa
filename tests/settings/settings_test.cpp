#include "settings/settings.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <cstdlib>
#include <map>

#include "support/scriptedprompt.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

using TTexts = std::map<std::string, std::string>;

class TSettingsTest : public testing::Test {
 protected:
  TSettingsTest() { qputenv("HOLLOWMERE_SETTINGS", QByteArray::fromStdString(file_)); }
  ~TSettingsTest() override { qunsetenv("HOLLOWMERE_SETTINGS"); }

  TSettings load() {
    TSettings settings = defaultSettings(folder_);
    loadSettings(settings, *openSettingsStore(), prompt_);
    EXPECT_TRUE(prompt_.done());
    return settings;
  }

  /// What stands in the file, read by other means.
  [[nodiscard]] TTexts stored() const {
    TTexts texts;
    std::ifstream lines(file_);
    for (std::string line; std::getline(lines, line);)
      if (const std::size_t at = line.find('='); at != std::string::npos)
        texts[line.substr(0, at)] = line.substr(at + 1);
    return texts;
  }

  TTempFolder temp_;
  std::string file_ = temp_.file("settings.ini");
  TDataFolder folder_{temp_.file("home")};
  TScriptedPrompt prompt_;
};

TEST_F(TSettingsTest, FirstStartWritesEveryDefault) {
  const std::string home = temp_.file("home");
  const TTexts expected = {{"SoftwareVersion", "2.0.72"},
                           {"warnVersion", "2.0.72"},
                           {"MongoDBshellExe", ""},
                           {"rowAutoHeight", "false"},
                           {"colAutoWidth", "true"},
                           {"ignoreNulls", "true"},
                           {"fetchSize", "100"},
                           {"fetchLimit", "100"},
                           {"httpTimeout", "5"},
                           {"loadDegree", "1"},
                           {"loadNum", "0"},
                           {"discardNum", "0"},
                           {"skipNum", "0"},
                           {"logFile", home + "/logs/log.txt"},
                           {"discFile", home + "/logs/discard.txt"},
                           {"showConnWindow", "false"},
                           {"bit64Warn", "true"},
                           {"bufLen", "1000000"},
                           {"sqlMemoHeight", "150"},
                           {"maxfetchSize", "100000"},
                           {"showJsonIcon", "N"},
                           {"shellTimeout", "300"}};
  EXPECT_EQ(load(), defaultSettings(folder_));
  EXPECT_EQ(stored(), expected);
  EXPECT_EQ(permissionsOf(file_), 0600U);
  EXPECT_EQ(load(), defaultSettings(folder_)) << "read back unchanged";
}

TEST_F(TSettingsTest, SavedValuesComeBackWhateverTheyHold) {
  TSettings settings = load();
  settings.mongoDBshellExe = "C:\\Program Files\\Möngo, \"shell\"=1;x";
  settings.rowAutoHeight = true;
  settings.colAutoWidth = false;
  settings.fetchSize = 7;
  settings.maxfetchSize = 2147483647;
  settings.showJsonIcon = "Y";
  settings.logFile = " @leading, and trailing ";
  std::filesystem::permissions(file_, std::filesystem::perms(0644));
  saveSettings(settings, *openSettingsStore(), prompt_);
  EXPECT_EQ(load(), settings);
  EXPECT_EQ(permissionsOf(file_), 0600U);
}

TEST_F(TSettingsTest, ADeletedValueIsMadeAgainAndTheOthersStay) {
  load();
  writeBytes(file_, "[General]\nfetchLimit=55\nshowConnWindow=1\nunknown=x\n");
  const TSettings settings = load();
  EXPECT_EQ(settings.fetchLimit, 55);
  EXPECT_TRUE(settings.showConnWindow);
  EXPECT_EQ(settings.fetchSize, 100);
  EXPECT_EQ(stored()["fetchSize"], "100");
  EXPECT_EQ(stored()["fetchLimit"], "55");
  EXPECT_EQ(stored()["unknown"], "x");
}

TEST_F(TSettingsTest, AWrongTypeIsReportedAndTheDefaultUsed) {
  writeBytes(file_,
             "[General]\nfetchSize=many\nloadDegree=0\nloadNum=99999999999999999999\nskipNum=-1\nbufLen=\n"
             "discardNum=1.5\ncolAutoWidth=perhaps\nlogFile=a, b\nfetchLimit=12\n");
  prompt_.expect(TPromptKind::Warning,
                 "These settings hold a value of a wrong type, their defaults are used: "
                 "colAutoWidth (true or false), fetchSize (a whole number from 1 to 2147483647), "
                 "loadDegree (a whole number from 1 to 1024), loadNum (a whole number from 0 to 2147483647), "
                 "discardNum (a whole number from 0 to 2147483647), "
                 "skipNum (a whole number from 0 to 2147483647), logFile (text), "
                 "bufLen (a whole number from 1 to 1073741824).");
  TSettings expected = defaultSettings(folder_);
  expected.fetchLimit = 12;
  EXPECT_EQ(load(), expected);
}

TEST_F(TSettingsTest, AStoreThatCannotBeUsedIsReportedAndTheProgramGoesOn) {
  writeBytes(file_, "");
  qputenv("HOLLOWMERE_SETTINGS", QByteArray::fromStdString(file_ + "/below.ini"));
  prompt_.expect(TPromptKind::Error,
                 "Unable to create or read the registry key \\Software\\TamsburySoftware\\Hollowmere\\");
  EXPECT_EQ(load(), defaultSettings(folder_));
  prompt_.expect(TPromptKind::Error,
                 "Unable to write to the registry key \\Software\\TamsburySoftware\\Hollowmere\\");
  saveSettings(TSettings(), *openSettingsStore(), prompt_);
}

TEST_F(TSettingsTest, TheOptionsDialogShowsAndTakesTexts) {
  TSettings settings = defaultSettings(folder_);
  TTexts shown;
  for (const TSetting& setting : settingTable())
    if (!setting.caption.empty())
      shown[std::string(setting.group) + "/" + std::string(setting.caption)] = settingText(settings, setting);
  EXPECT_EQ(shown.size(), 16U);
  EXPECT_EQ(shown["Data Grid Properties/Auto Column Width"], "True");
  EXPECT_EQ(shown["Default Project Settings/Fetch Limit"], "100");
  EXPECT_EQ(shown["/JSON File Buffer Size (bytes)"], "1000000");
  const TSetting& width = settingTable()[4];
  EXPECT_TRUE(setSettingText(settings, width, "False"));
  EXPECT_FALSE(settings.colAutoWidth);
  EXPECT_FALSE(setSettingText(settings, width, "no"));
  EXPECT_FALSE(settings.colAutoWidth);
}

TEST(SettingsStore, IsTheUsersOwnUnlessMoved) {
  qunsetenv("HOLLOWMERE_SETTINGS");
  const auto store = openSettingsStore();
  EXPECT_TRUE(store->fileName().endsWith("/TamsburySoftware/Hollowmere.conf"))
      << store->fileName().toStdString();
  EXPECT_EQ(store->scope(), QSettings::UserScope);
}

TEST(DataFolder, IsMadeWithItsSubfoldersAndPrivate) {
  const TTempFolder temp;
  qputenv("HOLLOWMERE_DATA", QByteArray::fromStdString(temp.file("a/b/")));
  const TDataFolder folder = TDataFolder::open();
  EXPECT_EQ(folder.path(), temp.file("a/b") + "/");
  EXPECT_EQ(folder.connectionListFile(), temp.file("a/b/templates/connlist.dat"));
  for (const char* name : {"data", "logs", "templates"})
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() + name)) << name;
  EXPECT_EQ(permissionsOf(folder.path()), 0700U);
  EXPECT_NO_THROW(TDataFolder::open()) << "it is there already";
  qunsetenv("HOLLOWMERE_DATA");

  qputenv("XDG_DATA_HOME", QByteArray::fromStdString(temp.file("share")));
  EXPECT_EQ(TDataFolder::open().path(), temp.file("share/TamsburySoftware/Hollowmere/"));
  qunsetenv("XDG_DATA_HOME");
}

TEST(DataFolder, OneThatCannotBeMadeIsNamed) {
  const TTempFolder temp;
  writeBytes(temp.file("a"), "");
  try {
    TDataFolder folder(temp.file("a/b"));
    FAIL() << "was made";
  } catch (const TDataFolderError& error) {
    EXPECT_EQ(error.what(), "Unable to use the data folder " + temp.file("a/b") + ": Not a directory");
  }
}

}  // namespace
}  // namespace hollowmere
