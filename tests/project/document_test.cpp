#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "json/json.h"
#include "project/projectdocument.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

namespace fs = std::filesystem;

std::string trimmedEnd(std::string text) {
  while (text.ends_with('\n')) text.pop_back();
  return text;
}

std::string readAndWrite(const std::string& json) {
  try {
    return toJson(toDocument(fromDocument(parseJson(json))));
  } catch (const std::exception& error) {
    return error.what();
  }
}

/// Each *.in is a document to read; *.out beside it is what is written then, or the error. A case that is a
/// change of the whole document says so in its first line: "change <JSON merge of members>"; a null removes.
std::string documentOf(const std::string& text) {
  constexpr std::string_view change = "change ";
  if (!text.starts_with(change)) return text;
  TValue document = parseJson(readBytes(std::string(HOLLOWMERE_TESTS_DIR) + "/cases/project/whole.in"));
  const TValue changes = parseJson(text.substr(change.size()));
  for (const TMember& member : changes.asObject())
    if (member.value.isNull())
      document.asObject().remove(member.name);
    else
      document.asObject().set(member.name, member.value);
  return toJson(document);
}

TEST(ProjectDocument, Cases) {
  std::vector<fs::path> cases;
  for (const auto& entry : fs::directory_iterator(std::string(HOLLOWMERE_TESTS_DIR) + "/cases/project"))
    if (entry.path().extension() == ".in") cases.push_back(entry.path());
  std::ranges::sort(cases);
  EXPECT_GE(cases.size(), 20U);
  for (const fs::path& input : cases) {
    const std::string output = fs::path(input).replace_extension(".out").string();
    EXPECT_EQ(readAndWrite(documentOf(readBytes(input.string()))), trimmedEnd(readBytes(output)))
        << input.filename();
  }
}

TEST(ProjectDocument, NothingConfiguredIsWrittenWithItsDefaults) {
  EXPECT_EQ(toJson(toDocument(TProject())),
            R"({"vgGeneralProjectName":"","vgGeneralProjectComment":"","vgGeneralSourceFetchLimit":100,)"
            R"("vgGeneralBulkInsert":0,"vgGeneralTargetDegree":1,"vgGeneralLoadNum":0,)"
            R"("vgGeneralIgnoreNulls":false,"vgGeneralNestedPLSQL":false,"vgGeneralSkipCount":false,)"
            R"("vgGeneralDiscNum":0,"vgGeneralSkipNum":0,"vgGeneralLogFile":"","vgGeneralDiscFile":"",)"
            R"("vgGeneralCategorySourceDB":{"vgGeneralSourceDBType":"","vgGeneralSourceConn":{}},)"
            R"("vgGeneralCategoryTargetDB":{"vgGeneralTargetDBType":"","vgGeneralTargetConn":{}},)"
            R"("datasourcelist":[],"datatargetlist":[],"datamaplist":[]})");
}

TEST(ProjectDocument, WhatIsNotConfiguredIsLeftOut) {
  TProject project;
  project.source = {"MongoDB", "{}"};
  project.target = {"HBase", R"({"dbtype":"HBase"})"};
  project.dataSources = {{"", TObject{{"query", "x"}}}, {"a", TObject()}, {"b", "{}"}, {"c", ""},
                         {"d", R"({"query":"y"})"},     {"e", "{ }"}};
  project.dataTargets = {{"", "t", ""}, {"n", "", ""}, {"n", "t", ""}};
  project.mapping = {{"", "s", "String", {}}, {"t", "", "", {{"", "", "Number", {}}}}};
  const TObject document = toDocument(project);
  const auto text = [&document](const char* name) { return toJson(*document.find(name)); };
  EXPECT_EQ(text("vgGeneralCategorySourceDB"),
            R"({"vgGeneralSourceDBType":"MongoDB","vgGeneralSourceConn":{}})");
  EXPECT_EQ(text("vgGeneralCategoryTargetDB"),
            R"({"vgGeneralTargetDBType":"HBase","vgGeneralTargetConn":{"dbtype":"HBase"}})");
  EXPECT_EQ(text("datasourcelist"), R"([{"name":"d","datasource":{"query":"y"},"count":0}])");
  EXPECT_EQ(text("datatargetlist"), R"([{"name":"n","datatarget":"t","saslpwd":""}])");
  EXPECT_EQ(text("datamaplist"),
            R"([{"target":"t","source":null,"children":[{"target":"","source":null,"targettype":"Number"}],)"
            R"("targettype":"String"}])");
}

TEST(ProjectDocument, CountsBytesOfFilesAndRowsWhenAsked) {
  const TTempFolder temp;
  const std::string file = temp.file("2024");
  writeBytes(file, "12345");
  TProject project;
  project.source.dbType = "JSON File";
  project.dataSources = {{"JSON File", file}, {"gone", file + "x"}, {"folder", temp.file("")}};
  const auto never = [](const TDataSource&) -> std::int64_t { throw std::runtime_error("asked"); };
  const auto counts = [&project](const TSourceCounter& counter) {
    std::vector<std::int64_t> all;
    const TObject document = toDocument(project, counter);
    for (const TValue& record : document.find("datasourcelist")->asList())
      all.push_back(record.asObject().find("count")->asInt());
    return all;
  };
  EXPECT_EQ(counts(never), (std::vector<std::int64_t>{5, 0, 0}));

  project.source.dbType = "HBase";
  project.dataSources = {{"rows", TObject{{"table", "t"}}, 9}};
  EXPECT_EQ(counts({}), (std::vector<std::int64_t>{0}));
  EXPECT_EQ(counts([](const TDataSource& source) { return static_cast<std::int64_t>(source.name.size()); }),
            (std::vector<std::int64_t>{4}));
  try {
    toDocument(project, never);
    FAIL() << "was built";
  } catch (const TProjectError& error) {
    EXPECT_STREQ(error.what(), "Data source rows caused the following error: asked");
  }
}

TEST(ProjectDocument, CellTextsAndDefinitionsAreTheSame) {
  for (const char* text :
       {"data.json", "2024", "true", "[1]", "\"x\"", R"({"query":"select 1"})", "{broken", "{}"})
    EXPECT_EQ(definitionText(definitionFromText(text)), text);
  EXPECT_TRUE(definitionFromText("2024").is(TKind::Text));
  EXPECT_EQ(definitionText(definitionFromText("")), "{}");
}

TEST(ProjectDocument, ANewProjectTakesTheSettings) {
  const TTempFolder temp;
  const TDataFolder folder(temp.file("data"));
  TSettings settings;
  settings.fetchLimit = 2;
  settings.loadDegree = 3;
  settings.loadNum = 4;
  settings.discardNum = 5;
  settings.skipNum = 6;
  settings.ignoreNulls = false;
  settings.logFile = "elsewhere.txt";
  const TProject project = newProject(settings, folder);
  TProject expected;
  expected.projectName = "NewProject";
  expected.fetchLimit = 2;
  expected.degree = 3;
  expected.loadNum = 4;
  expected.discNum = 5;
  expected.skipNum = 6;
  expected.logFile = temp.file("data/logs/log.txt");
  expected.discFile = temp.file("data/logs/discard.txt");
  EXPECT_EQ(project, expected);
  EXPECT_TRUE(newProject(TSettings(), folder).ignoreNulls);
}

}  // namespace
}  // namespace hollowmere
