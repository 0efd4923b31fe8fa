#include "ui/codeeditor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include "support/dialogwalk.h"
#include "ui/textsearch.h"

namespace hollowmere {
namespace {

using TMatch = TTextSearch::TMatch;

TEST(TextSearch, FindsBothWaysWithinLines) {
  const std::string text = "one\nTwo ONE\nthree Ünö one";
  const auto places = [&](const TSearchTerms& terms) {
    std::vector<std::size_t> begins;
    TTextSearch(terms).all(text, [&](TMatch match) { return begins.push_back(match.begin), true; });
    return begins;
  };
  EXPECT_EQ(places({QStringLiteral("one"), false, false}), (std::vector<std::size_t>{0, 8, 24}));
  EXPECT_EQ(places({QStringLiteral("one"), false, true}), (std::vector<std::size_t>{0, 24}));
  EXPECT_EQ(places({QStringLiteral("ÜNÖ"), false, false}), (std::vector<std::size_t>{18}));
  EXPECT_EQ(places({QStringLiteral("^t\\w+"), true, false}), (std::vector<std::size_t>{4, 12}));
  EXPECT_EQ(places({QStringLiteral("x*"), true, false}), std::vector<std::size_t>{})
      << "nothing but empty matches";
  EXPECT_EQ(places({QStringLiteral("one$"), true, true}), (std::vector<std::size_t>{0, 24}));
  const TTextSearch search({QStringLiteral("one"), false, false});
  EXPECT_EQ(search.previous(text, 24), (TMatch{8, 11}));
  EXPECT_EQ(search.previous(text, 10), (TMatch{0, 3})) << "one that only begins before does not count";
  EXPECT_EQ(search.previous(text, 2), std::nullopt);
  EXPECT_FALSE(TTextSearch({QStringLiteral("("), true, false}).fault().isEmpty());
}

class TCodeEditorTest : public testing::Test {
 protected:
  void SetUp() override {
    editor_.setNames("mCode", QStringLiteral("Code"));
    editor_.resize(600, 400);
    editor_.show();
    editor_.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&editor_));
  }

  TCodeEditor editor_{TCodeLanguage::Json};
};

TEST_F(TCodeEditorTest, TextsComeBackByteByByte) {
  for (const std::string& text : {std::string("{\r\n\"ä\":\t1}\n"), std::string("a\0b", 3), std::string()}) {
    editor_.setText(text);
    EXPECT_EQ(editor_.text(), text);
    EXPECT_FALSE(editor_.isModified());
  }
  editor_.setText("abc");
  editor_.setFocus();
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("u"));
  EXPECT_EQ(editor_.text(), "uabc");
  EXPECT_TRUE(editor_.isModified());
  editor_.replaceText("new");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(editor_.text(), "uabc") << "the replacement is one step";
}

TEST_F(TCodeEditorTest, BarCountsAndGoesRound) {
  editor_.setText("alpha beta\nAlpha gamma\nalphabet");
  editor_.setFocus();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_F, Qt::ControlModifier);
  auto& find = child<QLineEdit>(editor_, "mCodeFind");
  ASSERT_TRUE(find.hasFocus());
  QTest::keyClicks(&find, QStringLiteral("alpha"));
  EXPECT_EQ(child<QLabel>(editor_, "mCodeFindCount").text(), QStringLiteral("3 match(es)"));
  child<QCheckBox>(editor_, "mCodeFindCase").setChecked(true);
  EXPECT_EQ(child<QLabel>(editor_, "mCodeFindCount").text(), QStringLiteral("2 match(es)"));
  QTest::keyClick(&find, Qt::Key_Return);
  QTest::keyClick(&find, Qt::Key_Return);
  EXPECT_EQ(editor_.line(), 3);
  QTest::keyClick(&find, Qt::Key_Return);
  EXPECT_EQ(editor_.line(), 1);
  QTest::keyClick(&find, Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(editor_.line(), 3);
  child<QCheckBox>(editor_, "mCodeFindExpression").setChecked(true);
  find.setText(QStringLiteral("a(b"));
  EXPECT_FALSE(child<QLabel>(editor_, "mCodeFindCount").text().isEmpty());
  QTest::keyClick(&find, Qt::Key_Escape);
  EXPECT_FALSE(find.isVisible());
  EXPECT_TRUE(editor_.isVisible());
}

TEST_F(TCodeEditorTest, LongLinesAreCutOnViewAndKeptWhole) {
  const std::string text = "{\"a\":\"" + std::string(30 * 1024 * 1024, 'x') + "\"}\nend";
  QElapsedTimer timer;
  timer.start();
  editor_.setText(text);
  QCoreApplication::processEvents();
  EXPECT_LT(timer.elapsed(), 3000) << "drawn in seconds, not in minutes";
  EXPECT_TRUE(editor_.isCut());
  EXPECT_EQ(editor_.text(), text);
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("y"));
  EXPECT_FALSE(editor_.isModified());
  editor_.setText("short");
  EXPECT_FALSE(editor_.isCut());
}

}  // namespace
}  // namespace hollowmere
