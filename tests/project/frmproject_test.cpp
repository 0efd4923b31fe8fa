#include "project/ui/frmproject.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

#include "connectors/jsonfile/jsonfileconnector.h"
#include "project/edittexts.h"
#include "project/runtexts.h"
#include "project/ui/datasourcedialog.h"
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
  project.mapping.push_back({"t", "People", "Data Source (JSON List)", {{"n", "name", "Number", {}}}});
  TfrmProject window(context, project);
  window.show();
  showPage(window, 3);
  auto* fault = &child<QLabel>(window, "lPreviewFault");
  ASSERT_TRUE(QTest::qWaitFor([&] { return fault->text().contains("\"name\""); }))
      << fault->text().toStdString();
  EXPECT_TRUE(fault->text().contains("row 1")) << "the value that is no number";
  click(window, "bNextRow");
  click(window, "bNextRow");
  EXPECT_FALSE(fault->text().contains("\"name\"")) << "row 3 cannot even be read";
  EXPECT_FALSE(fault->text().isEmpty());
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
