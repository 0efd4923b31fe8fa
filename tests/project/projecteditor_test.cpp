#include "project/projecteditor.h"

#include <gtest/gtest.h>

#include "project/edittexts.h"

namespace hollowmere {
namespace {

TValue fileConnection() { return "in.json"; }
TValue mongoConnection() { return TObject{{"dbtype", "MongoDB"}, {"host", "h"}}; }

TProjectEditor makeEditor(const std::string& targetType = "MongoDB") {
  TProject project;
  project.projectName = "p";
  TProjectEditor editor(project);
  editor.setSide(TSide::Source, {"MongoDB", mongoConnection()}, false);
  editor.setSide(TSide::Target,
                 {targetType, targetType == "JSON File" ? fileConnection() : mongoConnection()}, false);
  return editor;
}

const TMapNode& node(const TProjectEditor& editor, const TNodePath& path) {
  return *nodeAt(editor.project().mapping, path);
}

/// The targets of a level, joined, as a picture of its order.
std::string order(const std::vector<TMapNode>& nodes) {
  std::string text;
  for (const TMapNode& one : nodes) {
    text += one.target;
    if (!one.children.empty()) text += "(" + order(one.children) + ")";
    text += " ";
  }
  return text;
}

TEST(ProjectEditor, ListsNeedAConfiguredSideAndUniqueNames) {
  TProjectEditor empty{TProject()};
  EXPECT_EQ(empty.connectionRefusal(TSide::Source), edittexts::noSourceType);
  EXPECT_EQ(empty.connectionRefusal(TSide::Target), edittexts::noTargetType);
  EXPECT_EQ(empty.addDataSource(), edittexts::sourceNotConfigured);
  EXPECT_EQ(empty.addDataTarget(), edittexts::targetNotConfigured);
  EXPECT_EQ(empty.addRoot(), edittexts::noSources);

  TProjectEditor editor = makeEditor();
  EXPECT_EQ(editor.addDataSource(), "");
  EXPECT_EQ(editor.addDataSource(), "");
  EXPECT_EQ(editor.project().dataSources[1].name, "Data Source 2");
  EXPECT_EQ(editor.renameDataSource(0, " "), edittexts::noSourceName);
  EXPECT_EQ(editor.renameDataSource(0, "Parent"), edittexts::reservedSourceName);
  EXPECT_EQ(editor.renameDataSource(0, "data source 2"), edittexts::sourceNameExists);
  EXPECT_EQ(editor.renameDataSource(1, "DATA SOURCE 2"), "") << "its own name in another letter case";
  // After a deletion the next free number is taken, never a name twice.
  editor.deleteDataSource(0);
  EXPECT_EQ(editor.addDataSource(), "");
  EXPECT_EQ(editor.project().dataSources[1].name, "Data Source 3");

  EXPECT_EQ(editor.addDataTarget(), "");
  EXPECT_EQ(editor.project().dataTargets[0].target, "TargetObject");
  EXPECT_EQ(editor.setTargetObject(0, ""), edittexts::noTargetObject);
  EXPECT_EQ(editor.renameDataTarget(0, ""), edittexts::noTargetName);
}

TEST(ProjectEditor, ChangingASideAsksOnlyWhenSomethingWouldBeLost) {
  TProjectEditor editor = makeEditor();
  EXPECT_EQ(editor.resetQuestion(TSide::Source), "");
  editor.addDataSource();
  editor.addRoot();
  EXPECT_EQ(editor.resetQuestion(TSide::Source), edittexts::resetSources);
  EXPECT_EQ(editor.resetQuestion(TSide::Target), edittexts::resetTargets);
  editor.setSide(TSide::Source, {"JSON File", fileConnection()}, true);
  ASSERT_EQ(editor.project().dataSources.size(), 1U);
  EXPECT_EQ(editor.project().dataSources[0].name, "JSON File");
  EXPECT_EQ(editor.project().dataSources[0].definition, fileConnection());
  EXPECT_TRUE(editor.project().mapping.empty());
  EXPECT_EQ(editor.addDataSource(), "");
  EXPECT_EQ(editor.project().dataSources.size(), 1U) << "a file has no further rows";
  EXPECT_FALSE(editor.asksToClearDataSources());
  editor.undo();
  EXPECT_EQ(editor.project().source.dbType, "MongoDB") << "the side comes back with its lists";
  EXPECT_EQ(editor.project().mapping.size(), 1U);
}

TEST(ProjectEditor, RootsFollowTheirRules) {
  TProjectEditor editor = makeEditor("JSON File");
  editor.addDataSource();
  EXPECT_EQ(editor.addRoot(), "");
  EXPECT_EQ(editor.addRoot(), edittexts::oneTargetFile);
  EXPECT_EQ(editor.setSource({0}, ""), edittexts::noRootSource);
  EXPECT_EQ(editor.setSource({0}, "a, b"), edittexts::oneRootSource);
  EXPECT_EQ(editor.setType({0}, "String"), edittexts::rootType);
  EXPECT_EQ(editor.addAttribute({7}), edittexts::noNode);
}

TEST(ProjectEditor, FlatStoresTakeNoNestedTypesAndKeepTheirKeys) {
  TProjectEditor editor = makeEditor("HBase");
  editor.addDataSource();
  editor.addRoot();
  editor.addFields({0}, {{"rowkey"}, {"a", TTargetType::JsonList}});
  EXPECT_EQ(editor.project().mapping[0].children[1].targetType, "String") << "a list goes there as a text";
  EXPECT_EQ(editor.setType({0, 1}, "JSON List"), edittexts::noNested + std::string("JSON List"));
  EXPECT_EQ(editor.setType({0, 1}, "Number"), "");
  EXPECT_NE(editor.deleteNode({0, 0}), "");
  EXPECT_EQ(editor.deleteNode({0, 1}), "");
  EXPECT_TRUE(editor.isRowKey({0, 0}, TSide::Target));
  EXPECT_FALSE(editor.isRowKey({0, 0}, TSide::Source)) << "a field of that name in another store";

  TProjectEditor cassandra = makeEditor("Cassandra");
  cassandra.addDataSource();
  cassandra.addRoot();
  cassandra.addFields({0}, {{"a"}});
  EXPECT_EQ(cassandra.setTarget({0, 0}, "b"), edittexts::columnName);
}

TEST(ProjectEditor, NodesMoveWithAllBelowThem) {
  TProjectEditor editor = makeEditor();
  editor.addDataSource();
  editor.addRoot();
  editor.setTarget({0}, "r");
  editor.addFields({0}, {{"a"}, {"b"}, {"c"}});
  editor.addFields({0, 1}, {{"x"}, {"y"}});
  EXPECT_EQ(order(editor.project().mapping), "r(a b(x y ) c ) ");
  editor.moveUp({0, 0});
  editor.moveDown({0, 1});
  EXPECT_EQ(order(editor.project().mapping), "r(a c b(x y ) ) ");
  EXPECT_EQ(editor.current(), (TNodePath{0, 2}));
  // Into another level, in front of a node, behind the last one, and within one level both ways.
  EXPECT_EQ(editor.moveNode({0, 0}, {0, 2, 1}), "");
  EXPECT_EQ(order(editor.project().mapping), "r(c b(x a y ) ) ");
  EXPECT_EQ(node(editor, editor.current()).target, "a");
  EXPECT_EQ(editor.moveNode({0, 1, 1}, {0, 0}), "");
  EXPECT_EQ(order(editor.project().mapping), "r(a c b(x y ) ) ");
  EXPECT_EQ(editor.moveNode({0, 0}, {0, 3}), "");
  EXPECT_EQ(order(editor.project().mapping), "r(c b(x y ) a ) ");
  EXPECT_EQ(node(editor, editor.current()).target, "a");
  const auto before = editor.project().mapping;
  EXPECT_NE(editor.moveNode({0, 1}, {0, 1, 0}), "") << "into itself";
  EXPECT_NE(editor.moveNode({0, 1}, {0}), "") << "an attribute to the top";
  EXPECT_EQ(editor.project().mapping, before);
}

TEST(ProjectEditor, EveryChangeOfListsAndTreeCanBeTakenBack) {
  TProjectEditor editor = makeEditor();
  std::vector<TProject> seen;
  const auto remember = [&] { seen.push_back(editor.project()); };
  remember();
  editor.addDataSource(), remember();
  editor.addDataTarget(), remember();
  editor.addRoot(), remember();
  editor.addFields({0}, {{"a"}, {"b"}}), remember();
  editor.setType({0, 0}, "Number"), remember();
  editor.deleteNode({0, 1}), remember();
  EXPECT_EQ(editor.addFields({0}, {{"a"}}), "") << "there already: no change";
  for (std::size_t i = seen.size(); i-- > 1;) {
    EXPECT_EQ(editor.project().mapping, seen[i].mapping) << i;
    EXPECT_EQ(editor.project().dataTargets, seen[i].dataTargets) << i;
    ASSERT_TRUE(editor.canUndo());
    editor.undo();
  }
  for (std::size_t i = 1; i < seen.size(); ++i) editor.redo();
  EXPECT_EQ(editor.project().mapping, seen.back().mapping);
  EXPECT_FALSE(editor.canRedo());
}

TEST(ProjectEditor, FieldsKeepTheKindThatWasSampled) {
  const std::vector<TSampledField> fields = sampledFields(
      {{{"n", TValue()}, {"o", TObject{{"in", true}}}}, {{"n", 1}, {"l", TList{}}, {"t", "1"}}});
  TProjectEditor editor = makeEditor();
  editor.addDataSource();
  editor.addRoot();
  editor.addFields({0}, fields);
  std::string types;
  for (const TMapNode& node : editor.project().mapping[0].children)
    types += node.source + " " + node.targetType + ", ";
  EXPECT_EQ(types, "n Number, o JSON Object, o.in Boolean, l JSON List, t String, ");
}

TEST(ProjectEditor, FindGoesRoundTheTree) {
  TProjectEditor editor = makeEditor();
  editor.addDataSource();
  editor.addRoot();
  editor.addFields({0}, {{"price"}, {"name"}, {"PriceList"}});
  const auto& tree = editor.project().mapping;
  EXPECT_EQ(findNode(tree, "price", {}), (TNodePath{0, 0}));
  EXPECT_EQ(findNode(tree, "price", {0, 0}), (TNodePath{0, 2}));
  EXPECT_EQ(findNode(tree, "price", {0, 2}), (TNodePath{0, 0}));
  EXPECT_EQ(findNode(tree, "nothing", {0, 1}), TNodePath());
}

TEST(ProjectEditor, SettingsAreCheckedByTheirType) {
  TProjectEditor editor = makeEditor();
  const auto field = [](std::string_view key) {
    for (const TProjectField& one : projectFields())
      if (one.key == key) return one;
    throw std::runtime_error("no field");
  };
  EXPECT_EQ(editor.setField(field("vgGeneralProjectName"), " "), edittexts::noProjectName);
  EXPECT_NE(editor.setField(field("vgGeneralTargetDegree"), "0"), "");
  EXPECT_EQ(editor.setField(field("vgGeneralTargetDegree"), "4"), "");
  EXPECT_EQ(editor.setField(field("vgGeneralIgnoreNulls"), "True"), "");
  EXPECT_EQ(editor.project().degree, 4);
  EXPECT_TRUE(editor.project().ignoreNulls);
  EXPECT_TRUE(editor.project().changed);
  editor.markSaved("f");
  EXPECT_FALSE(editor.project().changed);
}

}  // namespace
}  // namespace hollowmere
