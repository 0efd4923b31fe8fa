#include "project/projectfile.h"

#include <gtest/gtest.h>

#include "json/json.h"
#include "project/projectdocument.h"
#include "project/recentprojects.h"
#include "support/failingfiles.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

class TProjectFileTest : public testing::Test {
 protected:
  static TProject sample() {
    TProject project;
    project.projectName = "Größe \"1\"\n";
    project.degree = 4;
    project.ignoreNulls = true;
    project.source = {"MongoDB", TObject{{"dbtype", "MongoDB"}, {"host", "h"}, {"password", "hidden"}}};
    project.target = {"JSON File", "out.json"};
    project.dataSources = {
        {"Data Source 1", TObject{{"database", "d"}, {"collection", "c"}, {"query", "{}"}}}};
    project.dataTargets = {{"t", "TargetObject", "hidden"}};
    project.mapping = {{"t",
                        "Data Source 1",
                        "Data Source (JSON Object)",
                        {{"a", "_id", "Number", {}}, {"b", "", "JSON List", {{"c", "d", "String", {}}}}}}};
    return project;
  }

  std::string openError(const std::string& content) {
    writeBytes(path_, content);
    return openError();
  }
  [[nodiscard]] std::string openError() const {
    try {
      static_cast<void>(file_.open(path_));
    } catch (const TProjectError& error) {
      return error.what();
    }
    return "no error";
  }

  TTempFolder temp_;
  std::string path_ = temp_.file("a.prj");
  TCipher cipher_;
  TDiskFiles files_;
  TProjectFile file_{cipher_, files_};
};

TEST_F(TProjectFileTest, ComesBackEncipheredAndForItsOwnerOnly) {
  TProject project = sample();
  project.changed = true;
  file_.save(project, path_);
  EXPECT_EQ(project.fileName, path_);
  EXPECT_FALSE(project.changed);
  EXPECT_EQ(file_.open(path_), project);
  EXPECT_EQ(permissionsOf(path_), 0600U);
  const std::string content = readBytes(path_);
  EXPECT_EQ(content.find('\n'), content.size() - 1) << "one line";
  EXPECT_EQ(cipher_.decryptString(content.substr(0, content.size() - 1)), toJson(toDocument(project)));
  file_.save(project, path_);
  EXPECT_NE(readBytes(path_), content) << "a vector of its own each time";
  writeBytes(path_, " \r\n" + content + "\n ");
  EXPECT_EQ(file_.open(path_), project);
}

TEST_F(TProjectFileTest, WhatIsNoProjectFileIsRefused) {
  EXPECT_EQ(openError(), "Unable to find file " + path_);
  TProject project = sample();
  file_.save(project, path_);
  const std::string content = readBytes(path_);
  for (std::size_t length = 0; length + 1 < content.size(); ++length)
    EXPECT_EQ(openError(content.substr(0, length)), "Invalid project file.") << length;
  for (std::size_t at = 0; at + 1 < content.size(); ++at) {
    std::string flipped = content;
    flipped[at] = static_cast<char>(flipped[at] ^ 1);
    EXPECT_EQ(openError(flipped), "Invalid project file.") << at;
  }
  EXPECT_EQ(openError(TCipher("another").encryptString("{}")), "Invalid project file.");
  EXPECT_EQ(openError(toJson(toDocument(project))), "Invalid project file.") << "not enciphered";
  const std::string deep = "{\"datamaplist\":" + std::string(10000, '[') + std::string(10000, ']') + "}";
  for (const std::string& text : {std::string(), std::string("[]"), std::string("7"), std::string("{"), deep})
    EXPECT_EQ(openError(cipher_.encryptString(text)), "Invalid project file.") << text.substr(0, 40);
  EXPECT_EQ(openError(cipher_.encryptString("{}")), "Invalid project file. vgGeneralProjectName is missing.");
}

TEST_F(TProjectFileTest, AFailedSaveLeavesTheOldFile) {
  TProject old = sample();
  file_.save(old, path_);
  const std::string content = readBytes(path_);
  const auto saveError = [this](TProject project, TSafeFiles& files) -> std::string {
    project.changed = true;
    try {
      TProjectFile(cipher_, files).save(project, path_);
    } catch (const TProjectError& error) {
      EXPECT_TRUE(project.changed);
      return error.what();
    }
    return "no error";
  };
  TFailingFiles full(content.size() - 1);
  EXPECT_EQ(saveError(sample(), full), "Unable to write file " + path_ + ": No space left on device");

  TProject wrong = sample();
  wrong.degree = 0;
  EXPECT_EQ(saveError(wrong, files_),
            "Unable to save the project: vgGeneralTargetDegree is not from 1 to 1024.");
  TProject deep = sample();
  for (int level = 0; level < 150; ++level) deep.mapping = {{"t", "", "JSON Object", deep.mapping}};
  TProject broken = sample();
  broken.comment = "\xff";
  for (const TProject& project : {deep, broken})
    EXPECT_EQ(saveError(project, files_),
              "Unable to save the project: a text in it is not UTF-8, or it is nested too deep.");
  EXPECT_EQ(readBytes(path_), content);
  EXPECT_EQ(temp_.entries(), 1);
}

TEST(RecentProjects, NewestFirstWithoutRepeatsOrMissingFiles) {
  const TTempFolder temp;
  TDiskFiles files;
  const std::string list = temp.file("projectFiles.txt");
  const TRecentProjects recent(list, files);
  EXPECT_TRUE(recent.menu().empty());
  std::vector<std::string> names;
  for (int i = 0; i < 12; ++i) {
    names.push_back(temp.file("p" + std::to_string(i) + ".prj"));
    writeBytes(names.back(), "");
    recent.add(names.back());
  }
  EXPECT_EQ(recent.menu().size(), 10U);
  EXPECT_EQ(recent.menu().front(), names[11]);

  std::filesystem::remove(names[10]);
  const std::string other = temp.file("P3.PRJ");
  writeBytes(other, "");
  EXPECT_EQ(recent.menu()[1], names[9]) << "a missing one is not shown";
  recent.add(other);
  EXPECT_EQ(recent.menu().front(), other);
  const std::string content = readBytes(list);
  EXPECT_EQ(content.find(names[10]), std::string::npos) << "nor kept";
  EXPECT_EQ(content.find(names[3] + "\n"), std::string::npos) << "the same name in other letters";
  EXPECT_TRUE(content.starts_with(other + "\n" + names[11] + "\n" + names[9] + "\n"));
  EXPECT_EQ(std::ranges::count(content, '\n'), 11);
}

}  // namespace
}  // namespace hollowmere
