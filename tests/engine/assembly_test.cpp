#include "engine/assembly.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <vector>

#include "engine/preview.h"
#include "support/toystore.h"
#include "support/typedjson.h"

namespace hollowmere {

namespace {

/// One case of tests/cases/assembly: what stands behind "map:", "nulls:", "source NAME:" and then any number
/// of "row:" lines, each with its "expect:" or "error:".
struct TCase {
  std::string title;
  TMapNode mapping;
  bool ignoreNulls = true;
  std::vector<TDataSource> sources;
  std::vector<TObject> rows;
  std::vector<std::string> outcomes;  ///< the document's text, or "error: " + text
  std::shared_ptr<TToyServer> server = std::make_shared<TToyServer>();
};

/// ["SOURCE", "target", "Type", [children]], the last two optional.
TMapNode nodeFrom(const TList& parts) {
  TMapNode node;
  node.source = parts.at(0).asText();
  node.target = parts.at(1).asText();
  for (std::size_t i = 2; i < parts.size(); ++i) {
    if (parts[i].is(TKind::Text)) node.targetType = parts[i].asText();
    if (!parts[i].is(TKind::List)) continue;
    for (const TValue& child : parts[i].asList()) node.children.push_back(nodeFrom(child.asList()));
  }
  return node;
}

/// "source emp {query}: [rows]"
void addSource(TCase& at, const std::string& head, const std::string& rows) {
  const std::size_t blank = std::min(head.find(' '), head.size());
  const std::string name = head.substr(0, blank);
  at.sources.push_back(toySource(name, name, head.substr(blank)));
  std::vector<TObject> documents;
  const TValue list = typedJson(rows);
  for (const TValue& row : list.asList()) documents.push_back(row.asObject());
  at.server->fill(name, documents);
}

void addLine(TCase& at, const std::string& key, const std::string& value) {
  const TValue map = key == "map" ? parseJson(value) : TValue(TList());
  for (const TValue& child : map.asList()) at.mapping.children.push_back(nodeFrom(child.asList()));
  if (key == "map") return;
  if (key == "nulls")
    at.ignoreNulls = value != "keep";
  else if (key.starts_with("source "))
    addSource(at, key.substr(7), value);
  else if (key == "row")
    at.rows.push_back(typedJson(value).asObject());
  else if (key == "expect")
    at.outcomes.push_back(typedText(typedJson(value)));
  else if (key == "error")
    at.outcomes.push_back("error: " + value);
  else
    throw std::invalid_argument("unknown line " + key);
}

std::vector<TCase> readCases(const std::filesystem::path& file) {
  std::vector<TCase> cases;
  std::ifstream in(file);
  std::string line;
  bool fresh = true;
  while (std::getline(in, line)) {
    if (line.empty()) {
      fresh = true;
    } else if (line.starts_with('#')) {
      if (fresh) cases.emplace_back().title = line.substr(2);
      fresh = false;
    } else {
      // The head of a source may hold a query, which holds colons, too.
      const std::size_t colon = line.starts_with("source ") ? line.find(": [") : line.find(':');
      if (cases.empty() || colon == std::string::npos) throw std::invalid_argument("no case line: " + line);
      addLine(cases.back(), line.substr(0, colon), line.substr(std::min(colon + 2, line.size())));
    }
  }
  return cases;
}

void runCase(TCase& at) {
  at.mapping.source = "root";
  at.mapping.target = "out";
  at.sources.push_back(toySource("root", "root"));
  ASSERT_FALSE(at.rows.empty());
  ASSERT_EQ(at.rows.size(), at.outcomes.size());
  at.server->fill("root", at.rows);
  const auto reader = makeToyConnector(at.server)->connectSource({});
  std::vector<std::string> outcomes;
  try {
    previewMapping(*reader, at.sources, at.mapping, at.ignoreNulls, TDateTimeText("C"), 1000,
                   [&](TPreviewRow&& row) {
                     outcomes.push_back(row.error.empty() ? typedText(row.document) : "error: " + row.error);
                     return true;
                   });
  } catch (const TStoreError& error) {
    outcomes.push_back(std::string("error: ") + error.what());
  }
  EXPECT_EQ(outcomes, at.outcomes);
}

TEST(Assembly, Cases) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(HOLLOWMERE_TESTS_DIR "/cases/assembly"))
    for (TCase& at : readCases(entry.path())) {
      SCOPED_TRACE(entry.path().filename().string() + ": " + at.title);
      runCase(at);
      ++count;
    }
  EXPECT_GE(count, 50);
}

TEST(Assembly, NodeWithoutChildrenLeavesTheRow) {
  const TDateTimeText dates("C");
  TAssembler assembler(true, dates, {});
  TObject row{{"a", 1}, {"b", nullptr}};
  assembler.process(makePlan({"root", "out", "String", {}}), "root", row);
  EXPECT_EQ(toJson(row), R"({"a":1,"b":null})");
}

TEST(Assembly, RefusesAnUnknownTargetType) {
  try {
    makePlan({"root", "out", "String", {{"t", "s", "Strnig", {}}}});
    ADD_FAILURE();
  } catch (const TStoreError& error) {
    EXPECT_STREQ(error.what(), "Unknown target type \"Strnig\" of t");
    EXPECT_EQ(error.kind(), TStoreErrorKind::DataSource);
  }
}

}  // namespace

}  // namespace hollowmere
