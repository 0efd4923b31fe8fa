#include "project/ui/frmproject.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTest>
#include <QTreeView>
#include <QTreeWidget>

#include "connectors/jsonfile/jsonfileconnector.h"
#include "project/edittexts.h"
#include "project/runtexts.h"
#include "project/ui/datasourcedialog.h"
#include "support/callstore.h"
#include "support/dialogwalk.h"
#include "support/toystore.h"
#include "support/windowworld.h"

namespace hollowmere {
namespace {

class ProjectWindow : public ::testing::Test, protected TWindowWorld {
 protected:
  ProjectWindow() {
    toy->fillNumbered("people", 30);
    stores.add(makeToyConnector(toy));
    stores.add(makeJsonFileConnector());
  }

  /// A project with both sides and a data source; the rest is for the test to build.
  TProject started() {
    TProject project = newProject(settings, folder);
    project.source = {"Toy", TObject{{"dbtype", "Toy"}}};
    project.target = {"Toy", TObject{{"dbtype", "Toy"}}};
    project.dataSources.push_back(toySource("People", "people"));
    return project;
  }

  static QString documentText(TfrmProject& window) {
    return child<QPlainTextEdit>(window, "mPreviewDocument").toPlainText();
  }

  static void showPage(TfrmProject& window, int page) {
    child<QTabWidget>(window, "pages").setCurrentIndex(page);
  }

  std::shared_ptr<TToyServer> toy = std::make_shared<TToyServer>();
};

TEST_F(ProjectWindow, AProjectIsBuiltPreviewedSavedAndRun) {
  TfrmProject window(context, started());
  window.show();
  showPage(window, 2);
  click(window, "bAddTarget");
  auto* targets = &child<QTableWidget>(window, "gDataTargets");
  targets->item(0, 0)->setText("copies");
  QCoreApplication::processEvents();
  targets->item(0, 1)->setText("copy");
  QCoreApplication::processEvents();
  EXPECT_EQ(window.project().dataTargets.at(0), (TDataTarget{"copies", "copy", ""}));

  showPage(window, 3);
  click(window, "bAddMapTarget");
  ASSERT_TRUE(QTest::qWaitFor([&] { return documentText(window).contains("row 1"); })) << "the preview";
  click(window, "bAddAllFields");
  ASSERT_EQ(window.project().mapping.at(0).children.size(), 2U);
  auto* tree = &child<QTreeWidget>(window, "tlMapping");
  tree->topLevelItem(0)->child(1)->setText(0, "label");
  ASSERT_TRUE(QTest::qWaitFor([&] { return documentText(window).contains("\"label\": \"row 1\""); }));
  click(window, "bNextRow");
  EXPECT_TRUE(documentText(window).contains("row 2"));
  int viewed = 0;
  const auto shows = [&](QDialog& dialog) {
    const QAbstractItemModel* model = child<QTreeView>(dialog, "tlJSON").model();
    EXPECT_EQ(model->index(1, 1).data().toString(), QStringLiteral("row 2"));
    EXPECT_FALSE(model->flags(model->index(1, 1)) & Qt::ItemIsEditable) << "a preview is only looked at";
    ++viewed;
    dialog.reject();
  };
  for (const char* button : {"bViewRow", "bViewDocument"}) {
    whenDialog(QStringLiteral("frmViewJSON"), shows);
    click(window, button);
  }
  whenDialog(QStringLiteral("frmViewJSON"), shows);
  QTest::keyClick(&child<QPlainTextEdit>(window, "mPreviewDocument"), Qt::Key_Return);
  EXPECT_EQ(viewed, 3);
  EXPECT_TRUE(toy->documents("copy").empty()) << "a preview writes nothing";

  const std::string file = temp.file("p.hmp");
  TProject named = window.project();
  named.fileName = file;
  TfrmProject saved(context, named);
  saved.show();
  saved.actSave();
  EXPECT_FALSE(saved.project().changed);
  EXPECT_EQ(TProjectFile(cipher, files).open(file).mapping, window.project().mapping);
  EXPECT_EQ(saved.windowTitle().toStdString(), "NewProject :: " + file + "[*]");

  prompt.expect(TPromptKind::Confirmation, runtexts::confirmStart, TAnswer::Yes);
  saved.actStartExecute();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !saved.run()->busy(); }));
  EXPECT_EQ(toy->documents("copy").size(), 30U);
  EXPECT_EQ(child<QLabel>(saved, "lLoaded").text(), "30");
  auto& threads = child<QTableWidget>(saved, "gThreads");
  ASSERT_EQ(threads.rowCount(), 1);
  EXPECT_EQ(threads.item(0, 2)->text(), "100 %");
  EXPECT_EQ(threads.item(0, 3)->text(), "30");
  EXPECT_TRUE(QTest::qWaitFor([&] {
    return child<QPlainTextEdit>(saved, "mLog").toPlainText().contains("Load operation finished.");
  }));
  child<QLineEdit>(saved, "eLogFilter").setText("Thread#1: Loaded");
  EXPECT_EQ(child<QPlainTextEdit>(saved, "mLog").blockCount(), 1);
  click(saved, "bOpenLog");
  EXPECT_EQ(opened, QStringList{QString::fromStdString(saved.project().logFile)});

  prompt.expect(TPromptKind::Confirmation, runtexts::saveChanges, TAnswer::No);
  EXPECT_TRUE(window.close());
  EXPECT_TRUE(saved.close());
}

TEST_F(ProjectWindow, OwesItsUsersWhatEveryWindowDoes) {
  TProject project = started();
  project.dataTargets.push_back({"t", "t", ""});
  project.mapping.push_back({"t", "People", "Data Source (JSON List)", {{"n", "name", "String", {}}}});
  project.logFile = "log.txt";
  project.discFile = "discard.txt";
  TfrmProject window(context, project);
  walkWindow(window, "frmproject");
  TDataSourceDialog dialog(context, project, project.dataSources[0], nullptr);
  walkWindow(dialog, "datasourcedialog");
}

TEST_F(ProjectWindow, TestedRowsAreSeenAsAGrid) {
  const std::string file = temp.file("rows.json");
  writeBytes(file, "{\"a\":1}\n{\"a\":2}\n");
  TProject project = started();
  project.source = {"JSON File", file};
  TDataSourceDialog dialog(context, project, {"JSON File", file, 0}, nullptr);
  dialog.show();
  EXPECT_FALSE(child<QPushButton>(dialog, "bViewGrid").isEnabled());
  click(dialog, "bTest");
  int rows = 0;
  whenDialog("frmJSON", [&rows](QDialog& grid) {
    rows = child<QTableView>(grid, "gDocuments").model()->rowCount();
    click(grid, "bCancel");
  });
  click(dialog, "bViewGrid");
  EXPECT_EQ(rows, 2);
}

TEST_F(ProjectWindow, RefusalsLeaveTheCellsAsTheyWere) {
  TfrmProject window(context, started());
  window.show();
  auto* sources = &child<QTableWidget>(window, "gDataSources");
  prompt.expect(TPromptKind::Warning, edittexts::reservedSourceName);
  sources->item(0, 0)->setText("PARENT");
  QCoreApplication::processEvents();
  EXPECT_EQ(sources->item(0, 0)->text(), "People");
  prompt.expect(TPromptKind::Confirmation, edittexts::clearSources, TAnswer::No);
  click(window, "bClearDS");
  EXPECT_EQ(sources->rowCount(), 1);

  click(window, "bAddMapTarget");
  auto* tree = &child<QTreeWidget>(window, "tlMapping");
  prompt.expect(TPromptKind::Warning, edittexts::oneRootSource);
  tree->topLevelItem(0)->setText(1, "People, Others");
  QCoreApplication::processEvents();
  EXPECT_EQ(tree->topLevelItem(0)->text(1), "People");
  prompt.expect(TPromptKind::Warning, edittexts::rootType);
  tree->topLevelItem(0)->setText(2, "String");
  QCoreApplication::processEvents();
  EXPECT_EQ(tree->topLevelItem(0)->text(2), "Data Source (JSON List)");
}

TEST_F(ProjectWindow, AFailingRowIsShownWhereItIs) {
  toy->faults.unreadableRows = {23};  // 20 rows are read before, for the names of their fields
  TProject project = started();
  project.dataTargets.push_back({"t", "t", ""});
  project.mapping.push_back(
      {"t", "People", "Data Source (JSON List)", {{"id", "_id", "String", {}}, {"n", "name", "Number", {}}}});
  TfrmProject window(context, project);
  window.show();
  showPage(window, 3);
  const QTreeWidgetItem* root = child<QTreeWidget>(window, "tlMapping").topLevelItem(0);
  EXPECT_TRUE(root->toolTip(0).isEmpty()) << "nothing is wrong with the tree itself";
  auto* fault = &child<QLabel>(window, "lPreviewFault");
  ASSERT_TRUE(QTest::qWaitFor([&] { return fault->text().contains("\"name\""); }))
      << fault->text().toStdString();
  EXPECT_TRUE(fault->text().contains("row 1")) << "the value that is no number";
  click(window, "bNextRow");
  click(window, "bNextRow");
  EXPECT_FALSE(fault->text().contains("\"name\"")) << "row 3 cannot even be read";
  EXPECT_FALSE(fault->text().isEmpty());
  // The same in the tree, at the nodes.
  EXPECT_TRUE(root->toolTip(0).startsWith("Row 3: ")) << root->toolTip(0).toStdString();
  EXPECT_TRUE(root->child(0)->icon(0).isNull());
  EXPECT_FALSE(root->child(1)->icon(0).isNull());
  EXPECT_TRUE(root->child(1)->toolTip(1).startsWith("Row 1: Unable to convert the value of \"name\""));
}

TEST_F(ProjectWindow, ASourceThatBreaksIsToldAtItsRoot) {
  toy->faults.cursorBreaksAt = 23;  // the third row of the preview
  TProject project = started();
  project.dataTargets.push_back({"t", "t", ""});
  project.mapping.push_back({"t", "People", "Data Source (JSON List)", {{"n", "name", "String", {}}}});
  TfrmProject window(context, project);
  window.show();
  showPage(window, 3);
  const QTreeWidgetItem* root = child<QTreeWidget>(window, "tlMapping").topLevelItem(0);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !root->toolTip(0).isEmpty(); }));
  EXPECT_EQ(root->toolTip(0), "The toy cursor broke.");
  EXPECT_TRUE(documentText(window).contains("row 1")) << "what was read before is shown";
  EXPECT_TRUE(child<QLabel>(window, "lPreviewRow").text().endsWith(" 2"));
}

TEST_F(ProjectWindow, WhatIsWrongWithAMappingStandsAtItsNode) {
  TProject project = started();
  project.mapping.push_back({"gone",
                             "People",
                             "Data Source (JSON List)",
                             {{"a", "x", "String", {}},
                              {"a", "y", "String", {}},
                              {"list", "Nobody", "Data Source (JSON List)", {{"", "z", "String", {}}}}}});
  TfrmProject window(context, project);
  window.show();
  showPage(window, 3);
  auto* tree = &child<QTreeWidget>(window, "tlMapping");
  const QTreeWidgetItem* root = tree->topLevelItem(0);
  EXPECT_EQ(root->toolTip(0), "Unable to find data target: gone");
  EXPECT_EQ(root->child(0)->toolTip(0), "");
  EXPECT_EQ(
      root->child(1)->toolTip(0),
      "The source attributes \"x\" and \"y\" of \"People\" are both mapped to the target attribute \"a\".");
  EXPECT_EQ(root->child(2)->toolTip(0), "Data source \"Nobody\" is not found or not defined.");
  EXPECT_FALSE(root->child(2)->child(0)->icon(0).isNull()) << "an attribute without a name";
  root->child(1)->treeWidget()->topLevelItem(0)->child(1)->setText(0, "b");
  QCoreApplication::processEvents();
  EXPECT_EQ(root->child(1)->toolTip(0), "") << "mended";
  EXPECT_TRUE(root->child(1)->icon(0).isNull());
}

TEST_F(ProjectWindow, TheTreeFollowsEveryChangeOfItsNodes) {
  TProject project = started();
  for (const char* name : {"r", "s"})
    project.mapping.push_back({name,
                               "People",
                               "Data Source (JSON List)",
                               {{"a", "a", "String", {}},
                                {"b", "b", "JSON Object", {{"c", "c", "String", {}}}},
                                {"d", "d", "String", {}}}});
  TfrmProject window(context, project);
  window.show();
  showPage(window, 3);
  auto* tree = &child<QTreeWidget>(window, "tlMapping");
  const std::function<std::string(const QTreeWidgetItem*)> shownBelow = [&](const QTreeWidgetItem* item) {
    std::string text;
    for (int i = 0; i < item->childCount(); ++i)
      text += item->child(i)->text(0).toStdString() + "(" + shownBelow(item->child(i)) + ")";
    return text;
  };
  const std::function<std::string(const std::vector<TMapNode>&)> heldIn = [&](const auto& nodes) {
    std::string text;
    for (const TMapNode& node : nodes) text += node.target + "(" + heldIn(node.children) + ")";
    return text;
  };
  const auto select = [&](std::vector<int> path) {
    QTreeWidgetItem* item = tree->topLevelItem(path[0]);
    for (std::size_t i = 1; i < path.size(); ++i) item = item->child(path[i]);
    tree->setCurrentItem(item);
  };
  const auto press = [&](std::vector<int> path, const char* button) {
    select(std::move(path));
    click(window, button);
    EXPECT_EQ(shownBelow(tree->invisibleRootItem()), heldIn(window.project().mapping)) << button;
  };
  press({0, 1}, "bDownMap");
  press({0, 2}, "bUpMap");
  press({1}, "bUpMap");
  press({0, 0}, "bDelMap");
  press({1, 1, 0}, "bDelMap");
  press({1, 1}, "bAddAttrMap");
  press({0}, "bAddAttrMap");
  press({0}, "bDelMap");
  for (auto& undo = child<QAction>(window, "actUndoChange"); undo.isEnabled();) {
    undo.trigger();
    EXPECT_EQ(shownBelow(tree->invisibleRootItem()), heldIn(window.project().mapping)) << "undo";
  }
  press({0}, "bClearMap");
}

/// A store that reads the text of its queries.
class TCheckedStore : public TCallStore {
 public:
  TCheckedStore() : TCallStore(std::string(dbtype::mongodb), [](const TStoreOptions&) {}) {}
  [[nodiscard]] std::string checkQuery(const TValue& definition) const override {
    return definition.asObject().find("query")->asText().ends_with('}') ? "" : "The query has no end.";
  }
};

TEST_F(ProjectWindow, AFaultyQueryIsToldWhileItIsWritten) {
  stores.add(std::make_unique<TCheckedStore>());
  TProject project = started();
  project.source.dbType = dbtype::mongodb;
  TDataSourceDialog dialog(context, project, {"People", TObject(), 0}, nullptr);
  auto& fault = child<QLabel>(dialog, "lQueryFault");
  EXPECT_EQ(fault.text(), "") << "nothing was begun yet";
  auto& query = child<QPlainTextEdit>(dialog, "m_query");
  query.setPlainText("{}");
  EXPECT_EQ(fault.text(), "");
  query.setPlainText("{");
  EXPECT_EQ(fault.text(), "The query has no end.");
  const std::string question = "The query has no end.\nWould you like to keep this query all the same?";
  prompt.expect(TPromptKind::Confirmation, question, TAnswer::No);
  click(dialog, "bOk");
  EXPECT_EQ(dialog.result(), QDialog::Rejected);
  prompt.expect(TPromptKind::Confirmation, question, TAnswer::Yes);
  click(dialog, "bOk");
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(ProjectWindow, ARunningLoadHoldsTheWindowUntilItIsStopped) {
  toy->faults.neverAnswers = true;
  TProject project = started();
  project.dataTargets.push_back({"t", "t", ""});
  project.mapping.push_back({"t", "People", "Data Source (JSON List)", {{"n", "name", "String", {}}}});
  TfrmProject window(context, project);
  window.show();
  prompt.expect(TPromptKind::Confirmation, runtexts::confirmStart, TAnswer::Yes);
  window.actStartExecute();
  ASSERT_TRUE(window.run()->busy());
  prompt.expect(TPromptKind::Error, runtexts::stillRunning);
  EXPECT_FALSE(window.close());
  EXPECT_FALSE(window.exitRefusal().isEmpty());
  prompt.expect(TPromptKind::Confirmation, runtexts::confirmStop, TAnswer::Yes);
  click(window, "bStop");
  ASSERT_TRUE(QTest::qWaitFor([&] { return !window.run()->busy(); }));
  EXPECT_TRUE(window.close());
}

TEST_F(ProjectWindow, AFileChangedByAnotherProgramIsNotOverwrittenUnasked) {
  const std::string file = temp.file("p.hmp");
  TProject project = started();
  TProjectFile(cipher, this->files).save(project, file);
  TfrmProject window(context, project);
  QTest::qWait(20);  // file times are coarse
  writeBytes(file, "somebody else's");
  prompt.expect(TPromptKind::Confirmation,
                "The file " + file +
                    " was changed by another program since it was opened. Would you like to replace it?",
                TAnswer::No);
  window.actSave();
  EXPECT_EQ(readBytes(file), "somebody else's");
}

}  // namespace
}  // namespace hollowmere
