#include "jsongrid/ui/frmjson.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QTableView>
#include <QTest>
#include <QTreeView>

#include "json/json.h"
#include "jsondoc/ui/blobpanel.h"
#include "jsongrid/ui/gridpainter.h"
#include "support/dialogwalk.h"
#include "support/failingfiles.h"
#include "support/windowworld.h"
#include "ui/codeeditor.h"
#include "ui/printing.h"

namespace hollowmere {
namespace {

class JsonWindow : public ::testing::Test, protected TWindowWorld {
 protected:
  static TList documents(const char* json) { return std::move(parseJson(json).asList()); }

  static TList numbered(int count) {
    TList list;
    for (int i = 0; i < count; ++i)
      list.emplace_back(TObject{{"n", i}, {"text", "row " + std::to_string(i)}});
    return list;
  }

  static void trigger(const QWidget& window, const char* name) { child<QAction>(window, name).trigger(); }
  static QTableView& table(const TfrmJSON& window) { return child<QTableView>(window, "gDocuments"); }
  static void go(const TfrmJSON& window, int row, int column) {
    table(window).setCurrentIndex(table(window).model()->index(row, column));
  }
  static std::string cell(const TfrmJSON& window, int row, int column) {
    return table(window).model()->index(row, column).data().toString().toStdString();
  }
  static bool edit(const TfrmJSON& window, int row, int column, const char* text) {
    return table(window).model()->setData(table(window).model()->index(row, column), QString(text),
                                          Qt::EditRole);
  }
  static std::string pageText(const TfrmJSON& window) {
    return child<QLabel>(window, "lPage").text().toStdString();
  }
  static std::string copied() { return QGuiApplication::clipboard()->text().toStdString(); }

  /// Chooses an entry of the export menu and the file.
  void exportTo(const TfrmJSON& window, const char* action, const std::string& path) {
    whenFileDialog(path);
    trigger(window, action);
  }
};

constexpr char people[] =
    R"([{"name":"Ann","age":41,"on":true,"tags":["a"]},{"name":"Bo","photo":"&base64;AP8=","age":7},5])";

TEST_F(JsonWindow, RowsAndCellsAreEditedAndComeBack) {
  TfrmJSON window(context, documents(people), {}, nullptr);
  window.show();
  EXPECT_EQ(cell(window, 0, 3), R"(["a"])");
  EXPECT_TRUE(edit(window, 0, 1, "42"));
  prompt.expect(TPromptKind::Error, "\"old\" is not a number.");
  EXPECT_FALSE(edit(window, 1, 1, "old"));
  QCoreApplication::processEvents();
  EXPECT_EQ(table(window).model()->headerData(0, Qt::Vertical).toString(), "1 *");

  prompt.expect(TPromptKind::Error, "Atribute name is not specified.");
  prompt.expect(TPromptKind::Error, "Such attrubute already exists.");
  whenDialog("addAttributeDialog", [](QDialog& dialog) {
    click(dialog, "bOk");
    child<QLineEdit>(dialog, "eAttribute").setText("age");
    click(dialog, "bOk");
    child<QLineEdit>(dialog, "eAttribute").setText("city");
    click(dialog, "bOk");
  });
  trigger(window, "actAddAttribute");
  EXPECT_EQ(table(window).model()->headerData(6, Qt::Horizontal).toString(), "city");
  EXPECT_TRUE(edit(window, 1, 6, "Delft"));
  trigger(window, "actAddRow");
  EXPECT_EQ(table(window).currentIndex().row(), 3);
  EXPECT_EQ(cell(window, 3, 2), "False");
  EXPECT_TRUE(edit(window, 3, 0, "Cy"));
  go(window, 0, 0);
  trigger(window, "actClearData");
  go(window, 2, 0);
  trigger(window, "actDeleteRow");
  EXPECT_EQ(table(window).model()->rowCount(), 3);
  trigger(window, "actUndo");
  EXPECT_EQ(table(window).model()->rowCount(), 4);
  click(window, "bOk");
  EXPECT_EQ(window.result(), QDialog::Accepted);
  EXPECT_EQ(toJson(TValue(window.takeDocuments())),
            R"([{"name":null,"age":42,"on":true,"tags":["a"]},)"
            R"({"name":"Bo","photo":"&base64;AP8=","age":7,"city":"Delft"},5,{"name":"Cy","on":false}])");
}

TEST_F(JsonWindow, TheValueBelowTheGridIsEditedAndFormatted) {
  TfrmJSON window(context, documents(people), {}, nullptr);
  window.show();
  auto& value = child<TCodeEditor>(window, "mValue");
  go(window, 0, 3);
  EXPECT_EQ(value.text(), "[\n  \"a\"\n]");
  value.replaceText("[1,{\"x\":2}]");
  trigger(window, "actFormat");
  EXPECT_EQ(value.text(), "[\n  1,\n  {\n    \"x\": 2\n  }\n]");
  go(window, 0, 0);
  EXPECT_EQ(cell(window, 0, 3), R"([1,{"x":2}])");
  prompt.expect(TPromptKind::Error, "Invalid JSON document.");
  trigger(window, "actFormat");
  EXPECT_EQ(value.text(), "Ann");

  go(window, 0, 3);
  value.replaceText("[1,");
  prompt.expect(TPromptKind::Error, "Invalid JSON document.");
  click(window, "bOk");
  EXPECT_TRUE(window.isVisible()) << "what was typed is not lost";
  value.replaceText("[]");
  click(window, "bOk");
  EXPECT_FALSE(window.isVisible());
}

TEST_F(JsonWindow, BinaryCellsAreLoadedSavedClearedAndOpened) {
  TfrmJSON window(context, documents(people), {}, nullptr);
  window.show();
  go(window, 1, 4);
  auto& blob = child<TBlobPanel>(window, "blobPanel");
  EXPECT_EQ(blob.bytes(), std::string("\0\xFF", 2));
  writeBytes(temp.file("in.bin"), "bytes");
  whenFileDialog(temp.file("in.bin"));
  blob.load();
  EXPECT_EQ(cell(window, 1, 4), "&base64;Ynl0ZXM=");
  whenFileDialog(temp.file("out.bin"));
  blob.save();
  EXPECT_EQ(readBytes(temp.file("out.bin")), "bytes");
  blob.clear();
  EXPECT_EQ(cell(window, 1, 4), "");
  go(window, 1, 2);  // no attribute yet
  whenFileDialog(temp.file("in.bin"));
  blob.load();
  EXPECT_EQ(toJson(TValue(window.takeDocuments().at(1))),
            R"({"name":"Bo","photo":"","age":7,"on":"&base64;Ynl0ZXM="})");
}

TEST_F(JsonWindow, PagesAreTurnedSearchedAndSorted) {
  settings.fetchSize = 10;
  TfrmJSON window(context, numbered(25), {}, nullptr);
  window.show();
  EXPECT_EQ(pageText(window), "Rows 1 to 10 of 25");
  click(window, "bPrevious");
  EXPECT_EQ(cell(window, 0, 0), "0");
  click(window, "bLast");
  EXPECT_EQ(pageText(window), "Rows 21 to 25 of 25");
  EXPECT_FALSE(child<QWidget>(window, "bNext").isEnabled());
  click(window, "bPrevious");
  EXPECT_EQ(cell(window, 0, 0), "10");
  click(window, "bFirst");
  click(window, "bNext");
  EXPECT_EQ(pageText(window), "Rows 11 to 20 of 25");

  child<QLineEdit>(window, "eFind").setText("ROW 7");
  click(window, "bGridFindNext");
  EXPECT_EQ(pageText(window), "Rows 1 to 10 of 25") << "on from the start";
  EXPECT_EQ(table(window).currentIndex().data().toString(), "row 7");
  child<QLineEdit>(window, "eFind").setText("nowhere");
  prompt.expect(TPromptKind::Information, "The text was not found.");
  click(window, "bGridFindPrevious");

  auto* header = table(window).horizontalHeader();
  Q_EMIT header->sectionClicked(0);
  Q_EMIT header->sectionClicked(0);
  click(window, "bFirst");
  EXPECT_EQ(cell(window, 0, 0), "24");
  EXPECT_TRUE(edit(window, 0, 1, "changed"));
  trigger(window, "actCopyAll");
  EXPECT_TRUE(copied().starts_with("n\ttext\n24\tchanged\n23\trow 23\n")) << copied();
  trigger(window, "actAddRow");
  EXPECT_EQ(window.takeDocuments().at(24), TValue(TObject{{"n", 24}, {"text", "changed"}}))
      << "only the view is sorted";
}

TEST_F(JsonWindow, CellsAreCopied) {
  TfrmJSON window(context, documents(people), {}, nullptr);
  window.show();
  go(window, 0, 3);
  trigger(window, "actCopySelected");
  EXPECT_EQ(copied(), R"(["a"])");
  auto* selection = table(window).selectionModel();
  const auto* model = table(window).model();
  selection->select(QItemSelection(model->index(0, 0), model->index(1, 1)),
                    QItemSelectionModel::ClearAndSelect);
  trigger(window, "actCopySelected");
  EXPECT_EQ(copied(), "Ann\t41\nBo\t7\n");
  trigger(window, "actCopySelectedCsv");
  EXPECT_EQ(copied(), "name,age\r\nAnn,41\r\nBo,7\r\n");
  trigger(window, "actCopySelectedJson");
  EXPECT_EQ(toJson(parseJson(copied())), R"([{"name":"Ann","age":41},{"name":"Bo","age":7}])");
  trigger(window, "actCopyAllJson");
  EXPECT_EQ(toJson(parseJson(copied())), people);
}

TEST_F(JsonWindow, TheGridIsExportedInEveryForm) {
  TfrmJSON window(context, documents(people), {}, nullptr);
  window.show();
  const std::vector<std::tuple<const char*, const char*, const char*>> forms{
      {"actExportText", "out.txt", "name  age"},  {"actExportExcel", "out.xlsx", "PK\x03\x04"},
      {"actExportHtml", "out.html", "<!DOCTYPE"}, {"actExportXml", "out.xml", "<?xml"},
      {"actExportPdf", "out.pdf", "%PDF-1"},      {"actExportJson", "out.json", "{\"name\":\"Ann\""},
      {"actExportCsv", "out.csv", "name,age,"}};
  for (const auto& [action, name, start] : forms) {
    exportTo(window, action, temp.file(name));
    EXPECT_TRUE(readBytes(temp.file(name)).starts_with(start))
        << name << readBytes(temp.file(name)).substr(0, 20);
  }

  TFailingFiles full(0);
  TWindowContext noRoom{settings, store, folder, stores, cipher, full, clock, dates, prompt, mainThread, {}};
  TfrmJSON other(noRoom, documents(people), {}, nullptr);
  other.show();
  prompt.expect(TPromptKind::Error,
                "Unable to write file " + temp.file("full.csv") + ": No space left on device");
  exportTo(other, "actExportCsv", temp.file("full.csv"));
  EXPECT_FALSE(fileExists(temp.file("full.csv")));
}

TEST_F(JsonWindow, PdfPagesHoldManyRowsAndStopLeavesTheOldFile) {
  TJsonGrid grid;
  grid.load(numbered(3000));
  const std::string path = temp.file("out.pdf");
  EXPECT_TRUE(exportPdf(grid, files, path, "Title", printedPage(context), {}));
  const std::string bytes = readBytes(path);
  std::size_t pages = 0;
  for (std::size_t at = 0; (at = bytes.find("/Type /Page\n", at)) != std::string::npos; ++at) ++pages;
  EXPECT_GT(pages, 30U);
  EXPECT_LT(pages, 100U);
  EXPECT_TRUE(bytes.ends_with("%%EOF\n"));
  writeBytes(path, "old");
  TStopFlag stop;
  EXPECT_FALSE(exportPdf(grid, files, path, "", printedPage(context),
                         {[&](std::size_t rows) { rows > 1000 ? stop.set() : void(); }, &stop}));
  TFailingFiles full(5'000);
  EXPECT_THROW(exportPdf(grid, full, path, "", printedPage(context), {}), TFileError);
  EXPECT_EQ(readBytes(path), "old");
}

TEST_F(JsonWindow, AFileIsOpenedAndWrittenInItsForm) {
  const std::string lines = temp.file("lines.json"), broken = temp.file("broken.json");
  writeBytes(lines, "{\"a\":1}\n{\"a\":2}\n");
  writeBytes(broken, "{\"a\":1}\n{\"a\":}\n");
  const QString name = QString::fromStdString(lines);
  whenDialog("frmJSON", [](QDialog& dialog) {
    edit(static_cast<TfrmJSON&>(dialog), 1, 0, "3");
    click(dialog, "bOk");
  });
  EXPECT_TRUE(editJsonFile(context, nullptr, name));
  EXPECT_EQ(readBytes(lines), "{\"a\":1}\n{\"a\":3}\n");
  whenDialog("frmJSON", [](QDialog& dialog) { click(dialog, "bOk"); });
  EXPECT_FALSE(editJsonFile(context, nullptr, name)) << "nothing was changed";

  TfrmJSON window(context, documents("[1]"), {}, nullptr);
  window.show();
  const std::string fault = "Invalid JSON document.\n\n" + broken + ": ";
  try {
    readDocuments(broken);
  } catch (const TDocumentTextError& error) {
    prompt.expect(TPromptKind::Error, fault + error.detail());
  }
  EXPECT_FALSE(window.openFile(QString::fromStdString(broken)));
  EXPECT_EQ(cell(window, 0, 0), "1");
  whenFileDialog(lines);
  trigger(window, "actOpenFile");
  EXPECT_EQ(cell(window, 1, 0), "3");
  prompt.expect(TPromptKind::Confirmation, "Are you sure to discard all changes?", TAnswer::No);
  click(window, "bCancel");
  EXPECT_TRUE(window.isVisible());
}

TEST_F(JsonWindow, ARowIsEditedInTheDocumentWindow) {
  TfrmJSON window(context, documents(people), {}, nullptr);
  window.show();
  go(window, 2, 5);
  EXPECT_FALSE(child<QAction>(window, "actViewRow").isEnabled()) << "a single value is no document";
  go(window, 0, 0);
  std::string title;
  whenDialog("frmViewJSON", [&title](QDialog& dialog) {
    title = dialog.windowTitle().toStdString();
    auto& view = child<QTreeView>(dialog, "tlJSON");
    view.model()->setData(view.model()->index(1, 1), "42", Qt::EditRole);
    click(dialog, "bOK");
  });
  trigger(window, "actViewRow");
  EXPECT_EQ(title, "View/Modify JSON Document");
  EXPECT_EQ(cell(window, 0, 1), "42");
  EXPECT_EQ(table(window).model()->headerData(0, Qt::Vertical).toString(), "1 *");
}

TEST_F(JsonWindow, OnlyAnOwnerThatCanSavesANewCollection) {
  TfrmJSON window(context, documents("[{}]"), {}, nullptr);
  EXPECT_FALSE(child<QAction>(window, "actNewCollection").isVisible());
  TList saved;
  TJsonWindowOptions options;
  options.saveAsNewCollection = [&](QWidget*, const TList& rows) { saved = rows; };
  TfrmJSON owned(context, documents(people), options, nullptr);
  EXPECT_TRUE(child<QAction>(owned, "actNewCollection").isVisible());
  edit(owned, 1, 0, "Bob");
  trigger(owned, "actNewCollection");
  EXPECT_EQ(saved.size(), 3U);
  EXPECT_EQ(*saved.at(1).asObject().find("name"), TValue("Bob"));
}

TEST_F(JsonWindow, ReadOnlyChangesNothing) {
  TJsonWindowOptions options;
  options.readOnly = true;
  TfrmJSON window(context, documents(people), options, nullptr);
  window.show();
  for (const char* name :
       {"actAddRow", "actDeleteRow", "actClearData", "actAddAttribute", "actOpenFile", "actFormat"})
    EXPECT_FALSE(child<QAction>(window, name).isEnabled()) << name;
  EXPECT_FALSE(table(window).model()->flags(table(window).model()->index(0, 0)) & Qt::ItemIsEditable);
  EXPECT_FALSE(window.changed());
}

TEST_F(JsonWindow, OwesItsUsersWhatEveryWindowDoes) {
  TfrmJSON window(context, documents(people), {}, nullptr);
  walkWindow(window, "frmjson");
}

}  // namespace
}  // namespace hollowmere
