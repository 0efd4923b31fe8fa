#include "jsondoc/ui/frmviewjson.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTreeView>

#include "json/json.h"
#include "jsondoc/binaryvalue.h"
#include "jsondoc/ui/blobpanel.h"
#include "jsondoc/ui/jsontreeview.h"
#include "jsondoc/ui/viewjson.h"
#include "support/dialogwalk.h"
#include "support/failingfiles.h"
#include "support/windowworld.h"
#include "ui/codeeditor.h"
#include "ui/printing.h"

namespace hollowmere {
namespace {

constexpr const char* sample =
    R"({"_id":"5f1","name":"Ada","tags":["a","b",true],"address":{"city":"Leiden","zip":null},"n":12.5})";

std::string picture() {
  QImage image(20, 10, QImage::Format_RGB32);
  image.fill(Qt::red);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes.toStdString();
}

class TViewJsonTest : public testing::Test {
 protected:
  using TCall = std::function<void(QDialog&)>;

  /// Opens the window on a text, does that with it, and gives what came back.
  std::optional<std::string> view(const std::string& text, const TCall& call, bool readOnly = false) {
    whenDialog(QStringLiteral("frmViewJSON"), call);
    return viewJsonText(world_.context, nullptr, text, {readOnly, {}});
  }

  static QTreeView& tree(QDialog& dialog) { return child<QTreeView>(dialog, "tlJSON"); }
  static TCodeEditor& text(QDialog& dialog) { return child<TCodeEditor>(dialog, "mText"); }
  static void trigger(QDialog& dialog, const char* name) {
    auto* action = dialog.findChild<QAction*>(QLatin1String(name));
    ASSERT_NE(action, nullptr) << name;
    ASSERT_TRUE(action->isEnabled()) << name;
    action->trigger();
    QCoreApplication::processEvents();
  }
  static void showPage(QDialog& dialog, int page) {
    child<QTabWidget>(dialog, "pcDocument").setCurrentIndex(page);
    QCoreApplication::processEvents();
  }
  static void select(QDialog& dialog, std::initializer_list<int> rows, int column = 0) {
    QModelIndex index;
    for (const int row : rows) index = tree(dialog).model()->index(row, 0, index);
    ASSERT_TRUE(index.isValid());
    tree(dialog).setCurrentIndex(index.siblingAtColumn(column));
    QCoreApplication::processEvents();
  }
  /// Types over what the open editor of a cell holds.
  static void type(const char* given) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(given));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCoreApplication::processEvents();
  }

  TWindowWorld world_;
};

TEST_F(TViewJsonTest, OwesUsersNothing) {
  TfrmViewJSON window(world_.context, parseJson(sample), {});
  walkWindow(window, "frmviewjson");
  child<QTabWidget>(window, "pcDocument").setCurrentIndex(1);
  walkWindow(window, "frmviewjson_text");
}

TEST_F(TViewJsonTest, TreeIsEditedByKeysAndComesBack) {
  const auto edited = view(sample, [](QDialog& dialog) {
    QTreeView& view = tree(dialog);
    EXPECT_TRUE(view.isExpanded(view.model()->index(2, 0))) << "a small document is open as it was loaded";
    select(dialog, {1}, 1);
    QTest::keyClick(&view, Qt::Key_Return);
    type("42");
    select(dialog, {4}, 1);
    QTest::keyClick(&view, Qt::Key_F2);
    type("13");
    select(dialog, {2, 1});
    QTest::keyClick(&view, Qt::Key_Up, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Insert);
    EXPECT_EQ(view.currentIndex().data().toString(), QStringLiteral("<List Item 4>"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    select(dialog, {3});
    trigger(dialog, "actNestedList");
    type("<extra>");
    select(dialog, {0});
    QTest::keyClick(&view, Qt::Key_Delete);
    click(dialog, "bOK");
  });
  EXPECT_EQ(
      edited,
      R"({"name":"42","tags":["b","a",true,null],"address":{"city":"Leiden","zip":null,"<extra>":[]},"n":13.0})");
}

TEST_F(TViewJsonTest, UndoRedoClearAndCancel) {
  const auto edited = view(sample, [this](QDialog& dialog) {
    select(dialog, {0});
    trigger(dialog, "actDelete");
    world_.prompt.expect(TPromptKind::Confirmation, "Are you sure to delete all JSON document data?",
                         TAnswer::No);
    trigger(dialog, "actClear");
    EXPECT_EQ(tree(dialog).model()->rowCount(), 4);
    world_.prompt.expect(TPromptKind::Confirmation, "Are you sure to delete all JSON document data?",
                         TAnswer::Yes);
    trigger(dialog, "actClear");
    EXPECT_EQ(tree(dialog).model()->rowCount(), 0);
    trigger(dialog, "actUndoEdit");
    trigger(dialog, "actUndoEdit");
    EXPECT_EQ(tree(dialog).model()->rowCount(), 5);
    trigger(dialog, "actRedoEdit");
    EXPECT_EQ(tree(dialog).model()->rowCount(), 4);
    click(dialog, "bCancel");
  });
  EXPECT_EQ(edited, std::nullopt);
}

TEST_F(TViewJsonTest, PagesCarryEditsOverAndBadTextStays) {
  const auto edited = view(R"({"a":1})", [this](QDialog& dialog) {
    showPage(dialog, 1);
    EXPECT_EQ(text(dialog).text(), "{\n  \"a\": 1\n}");
    text(dialog).replaceText("{\"a\":1,\n\"b\" 2}");
    for (const char* way : {"page", "format", "ok"}) {
      world_.prompt.expect(TPromptKind::Error, "Invalid JSON document.");
      if (way == std::string_view("page")) showPage(dialog, 0);
      if (way == std::string_view("format")) trigger(dialog, "actFormat");
      if (way == std::string_view("ok")) click(dialog, "bOK");
      EXPECT_EQ(child<QTabWidget>(dialog, "pcDocument").currentIndex(), 1) << way;
      EXPECT_TRUE(child<QLabel>(dialog, "lState").text().startsWith(QStringLiteral("Line 2, column 5")))
          << way;
    }
    EXPECT_EQ(tree(dialog).model()->rowCount(), 1) << "the tree is as it was";
    text(dialog).replaceText("{\"a\":1,\"b\":[2]}");
    trigger(dialog, "actFormat");
    EXPECT_EQ(text(dialog).text(), "{\n  \"a\": 1,\n  \"b\": [\n    2\n  ]\n}");
    showPage(dialog, 0);
    EXPECT_EQ(tree(dialog).model()->rowCount(), 2);
    select(dialog, {0});
    trigger(dialog, "actDelete");
    showPage(dialog, 1);
    EXPECT_EQ(text(dialog).text(), "{\n  \"b\": [\n    2\n  ]\n}");
    text(dialog).replaceText("[true]");
    click(dialog, "bOK");
  });
  EXPECT_EQ(edited, "[true]") << "OK takes the page that is seen";
}

TEST_F(TViewJsonTest, KindsOutliveTheTextPage) {
  const TValue document = TObject{{"when", TValue::dateTime(5)}, {"id", TObjectId{1}}, {"n", 1}};
  whenDialog(QStringLiteral("frmViewJSON"), [](QDialog& dialog) {
    showPage(dialog, 1);
    std::string changed = text(dialog).text();
    changed.replace(changed.find(": 1\n") + 2, 1, "2");
    text(dialog).replaceText(changed);
    click(dialog, "bOK");
  });
  const auto edited = viewJsonDocument(world_.context, nullptr, document);
  EXPECT_EQ(edited, TValue(TObject{{"when", TValue::dateTime(5)}, {"id", TObjectId{1}}, {"n", 2}}));
}

TEST_F(TViewJsonTest, FilesAreLoadedAndSaved) {
  const std::string good = world_.temp.file("good.json"), bad = world_.temp.file("bad.json"),
                    saved = world_.temp.file("saved.json");
  writeBytes(good, R"({"from":"file"})");
  writeBytes(bad, R"({"from":"fi)");
  view(sample, [&](QDialog& dialog) {
    whenFileDialog(bad);
    world_.prompt.expect(TPromptKind::Error, "Invalid JSON document.");
    trigger(dialog, "actLoad");
    EXPECT_EQ(tree(dialog).model()->rowCount(), 5);
    whenFileDialog(good);
    trigger(dialog, "actLoad");
    EXPECT_EQ(tree(dialog).model()->rowCount(), 1);
    whenFileDialog(saved);
    trigger(dialog, "actSave");
    dialog.reject();
  });
  EXPECT_EQ(readBytes(saved), "{\n  \"from\": \"file\"\n}\n");
  whenDialog(QStringLiteral("frmViewJSON"), [](QDialog& dialog) {
    trigger(dialog, "actAdd");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    click(dialog, "bOK");
  });
  EXPECT_TRUE(viewJsonFile(world_.context, nullptr, QString::fromStdString(saved)));
  EXPECT_EQ(readBytes(saved), "{\n  \"from\": \"file\",\n  \"Attribute2\": null\n}\n");
  world_.prompt.expect(
      TPromptKind::Error,
      "Invalid JSON document.\nLine 1, column 12: Missing a closing quotation mark in string.");
  EXPECT_FALSE(viewJsonFile(world_.context, nullptr, QString::fromStdString(bad)));
}

TEST_F(TViewJsonTest, BinaryValuesAreShownLoadedSavedAndOpened) {
  const std::string png = picture(), file = world_.temp.file("saved.png");
  const std::string document =
      R"({"n":null,"pic":")" + textOfBytes(png) + R"(","odd":"&base64;iVBORw0KGgoAAA=="})";
  const auto edited = view(document, [&](QDialog& dialog) {
    select(dialog, {1}, 1);
    auto& panel = child<TBlobPanel>(dialog, "blobPanel");
    EXPECT_TRUE(panel.isVisible()) << "comes up by itself";
    EXPECT_EQ(child<QTabWidget>(panel, "pcBlob").currentIndex(), 0);
    EXPECT_EQ(child<QLabel>(panel, "imgBlob").pixmap().size(), QSize(20, 10));
    whenFileDialog(file);
    click(panel, "bBlobSave");
    EXPECT_EQ(readBytes(file), png);
    click(panel, "bBlobOpen");
    EXPECT_EQ(world_.opened, QStringList{QString::fromStdString(world_.folder.file("data", "data.png"))});
    EXPECT_EQ(readBytes(world_.folder.file("data", "data.png")), png);
    child<QComboBox>(panel, "cbBlobType").setEditText({});
    world_.prompt.expect(TPromptKind::Error, "Please specify binary data type.");
    click(panel, "bBlobOpen");
    child<QComboBox>(panel, "cbBlobType").setEditText(QStringLiteral("../png"));
    world_.prompt.expect(TPromptKind::Error, "\"/png\" is not a file type such as png or pdf.");
    click(panel, "bBlobOpen");
    click(panel, "bBlobClear");
    select(dialog, {2}, 1);
    EXPECT_EQ(child<QLabel>(panel, "imgBlob").text(),
              QStringLiteral("These bytes are no picture that can be shown."));
    child<QTabWidget>(panel, "pcBlob").setCurrentIndex(2);
    EXPECT_TRUE(child<QPlainTextEdit>(panel, "mBlobHex")
                    .toPlainText()
                    .startsWith(QStringLiteral("00000000   89 50")));
    select(dialog, {0}, 1);
    whenFileDialog(file);
    click(panel, "bBlobLoad");
    click(dialog, "bOK");
  });
  EXPECT_EQ(edited, R"({"n":")" + textOfBytes(png) + R"(","pic":"","odd":"&base64;iVBORw0KGgoAAA=="})");
}

TEST_F(TViewJsonTest, DataFolderThatTakesNothingIsReported) {
  TFailingFiles files(0);
  TWindowContext context{world_.settings,
                         world_.store,
                         world_.folder,
                         world_.stores,
                         world_.cipher,
                         files,
                         world_.clock,
                         world_.dates,
                         world_.prompt,
                         world_.mainThread,
                         world_.context.openOutside};
  TBlobPanel panel(context);
  panel.showBytes("some text");
  world_.prompt.expect(TPromptKind::Error, "Unable to write file " + world_.folder.file("data", "data.txt") +
                                               ": No space left on device");
  panel.openOutside();
  EXPECT_TRUE(world_.opened.isEmpty());
}

TEST_F(TViewJsonTest, LongValuesAreEditedWholeInTheirOwnWindow) {
  const std::string longText = std::string(1000, 'x') + "\nsecond line";
  const auto edited = view(toJson(TObject{{"t", longText}}), [&](QDialog& dialog) {
    select(dialog, {0}, 1);
    EXPECT_LT(tree(dialog).currentIndex().data().toString().size(), 300);
    whenDialog(QStringLiteral("valueDialog"), [&](QDialog& value) {
      EXPECT_EQ(child<TCodeEditor>(value, "mValue").text(), longText);
      child<TCodeEditor>(value, "mValue").replaceText(longText + "\nthird");
      click(value, "bOK");
    });
    QTest::keyClick(&tree(dialog), Qt::Key_Return);
    click(dialog, "bOK");
  });
  EXPECT_EQ(edited, toJson(TObject{{"t", longText + "\nthird"}}));
}

TEST_F(TViewJsonTest, FindsCopiesAndTellsThePlace) {
  view(sample, [](QDialog& dialog) {
    QTest::keyClick(&tree(dialog), Qt::Key_F, Qt::ControlModifier);
    auto& find = child<QLineEdit>(dialog, "eFind");
    EXPECT_TRUE(find.hasFocus());
    QTest::keyClicks(&find, QStringLiteral("LEI"));
    EXPECT_EQ(child<QLabel>(dialog, "lFindCount").text(), QStringLiteral("1 found"));
    QTest::keyClick(&find, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(child<QLabel>(dialog, "lState").text(),
              QString::fromUtf8("$.address.city — text, characters: 6"));
    tree(dialog).setFocus();
    QTest::keyClick(&tree(dialog), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("Leiden"));
    trigger(dialog, "actCopyPath");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("$.address.city"));
    dialog.reject();
  });
}

TEST_F(TViewJsonTest, PrintsIntoAFile) {
  const std::string pdf = world_.temp.file("tree.pdf");
  const auto toFile = [](QDialog& dialog, const std::string& name) {
    dialog.findChild<QLineEdit*>(QStringLiteral("filename"))->setText(QString::fromStdString(name));
    dialog.accept();
  };
  view(sample, [&](QDialog& dialog) {
    whenDialog(QStringLiteral("printDialog"), [&](QDialog& print) { toFile(print, pdf); });
    world_.prompt.expect(TPromptKind::Information, "JSON document has been printed.");
    trigger(dialog, "actPrint");
    whenDialog(QStringLiteral("printDialog"), [&](QDialog& print) { print.reject(); });
    trigger(dialog, "actPrint");
    dialog.reject();
  });
  EXPECT_TRUE(readBytes(pdf).starts_with("%PDF-"));
}

TEST_F(TViewJsonTest, ReadOnlyShowsAndChangesNothing) {
  const auto edited = view(
      sample,
      [](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QPushButton*>(QStringLiteral("bOK")), nullptr);
        for (const char* name : {"actAdd", "actDelete", "actClear", "actUp", "actLoad", "actFormat"})
          EXPECT_FALSE(dialog.findChild<QAction*>(QLatin1String(name))->isEnabled()) << name;
        select(dialog, {1}, 1);
        QTest::keyClick(&tree(dialog), Qt::Key_F2);
        EXPECT_EQ(QApplication::focusWidget(), &tree(dialog));
        showPage(dialog, 1);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("x"));
        EXPECT_EQ(text(dialog).text().front(), '{');
        click(dialog, "bCancel");
      },
      true);
  EXPECT_EQ(edited, std::nullopt);
}

TEST_F(TViewJsonTest, BadTextsAreRefusedAndDeepOnesShown) {
  for (const char* text : {"no JSON", "{\"a\":", "17"}) {
    world_.prompt.expect(TPromptKind::Error, "Invalid JSON document.\n" + readDocument(text).fault.reason);
    EXPECT_EQ(viewJsonText(world_.context, nullptr, text), std::nullopt);
  }
  std::string deep;
  for (int i = 0; i < 200; ++i) deep += '[';
  for (int i = 0; i < 200; ++i) deep += ']';
  EXPECT_EQ(view(deep, [](QDialog& dialog) { click(dialog, "bOK"); }), deep);
}

}  // namespace
}  // namespace hollowmere
