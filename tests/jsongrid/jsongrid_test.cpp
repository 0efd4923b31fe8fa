#include "jsongrid/jsongrid.h"

#include <gtest/gtest.h>

#include "json/json.h"
#include "jsongrid/celltext.h"
#include "jsongrid/gridview.h"

namespace hollowmere {
namespace {

const TDateTimeText& dates() {
  static const TDateTimeText texts("C");
  return texts;
}

class JsonGrid : public ::testing::Test {
 protected:
  void load(const char* json) { grid.load(std::move(parseJson(json).asList())); }
  std::string result() { return toJson(TValue(grid.take())); }
  std::string shown() const {
    std::string out;
    for (std::size_t column = 0; column < grid.columns(); ++column) out += grid.columnName(column) + "|";
    for (std::size_t row = 0; row < grid.rows(); ++row) {
      out += "\n";
      for (std::size_t column = 0; column < grid.columns(); ++column)
        out += cellText(grid.cell(row, column)) + (grid.cell(row, column) ? "|" : "-|");
    }
    return out;
  }

  TJsonGrid grid;
};

constexpr char mixed[] =
    R"([{"b":1,"a":"x"},{"a":null,"c":{"d":[1]},"b":2.50},7,{"value":"v","b":3,"b":4},["l"]])";

TEST_F(JsonGrid, ShowsAttributesInTheOrderOfTheirAppearance) {
  load(mixed);
  EXPECT_EQ(shown(),
            "b|a|c|value|\n"
            "1|x|-|-|\n"
            "2.5||{\"d\":[1]}|-|\n"
            "-|-|-|7|\n"
            "3|-|-|v|\n"
            "-|-|-|[\"l\"]|");
  EXPECT_EQ(grid.columnKind(1), TKind::Text);
}

TEST_F(JsonGrid, GivesBackWhatWasNotTouched) {
  load(mixed);
  const TList before = parseJson(mixed).asList();
  for (std::size_t row = 0; row < grid.rows(); ++row)
    for (std::size_t column = 0; column < grid.columns(); ++column)
      EXPECT_EQ(grid.setText({row, column}, cellText(grid.cell(row, column)), dates()), "")
          << "opened and left";
  EXPECT_FALSE(grid.changed());
  EXPECT_EQ(grid.take(), before);
}

TEST_F(JsonGrid, EditsOneCellAndNothingElse) {
  load(mixed);
  EXPECT_EQ(grid.setText({0, 0}, "5", dates()), "");
  EXPECT_EQ(grid.setText({0, 0}, "five", dates()), "\"five\" is not a number.");
  EXPECT_EQ(grid.setText({2, 3}, "8", dates()), "");
  EXPECT_EQ(grid.setText({2, 0}, "8", dates()),
            "This row is a single value: it has no attributes but \"value\".");
  EXPECT_EQ(grid.setText({1, 3}, "w", dates()), "\"w\" is not a number.") << "the column holds numbers";
  EXPECT_EQ(grid.setText({3, 0}, "9", dates()), "") << "the first member of a name counts";
  EXPECT_EQ(grid.setText({3, 2}, "{}", dates()), "") << "comes to stand behind its left neighbour";
  EXPECT_EQ(grid.mark(0), TRowMark::Changed);
  EXPECT_EQ(grid.mark(1), TRowMark::None);
  EXPECT_EQ(result(),
            R"([{"b":5,"a":"x"},{"a":null,"c":{"d":[1]},"b":2.5},8,{"value":"v","b":9,"b":4,"c":{}},["l"]])");
}

TEST_F(JsonGrid, AddsRowsAndAttributes) {
  load(R"([{"on":true,"n":1}])");
  EXPECT_EQ(grid.addAttribute("  "), "Atribute name is not specified.");
  EXPECT_EQ(grid.addAttribute("n"), "Such attrubute already exists.");
  EXPECT_EQ(grid.addAttribute("N"), "") << "another name in JSON";
  EXPECT_EQ(grid.addRow(), 1U);
  EXPECT_EQ(grid.mark(1), TRowMark::Inserted);
  grid.setText({1, 2}, "text", dates());
  grid.setText({1, 1}, "2", dates());
  EXPECT_EQ(grid.mark(1), TRowMark::Inserted);
  EXPECT_EQ(result(), R"([{"on":true,"n":1},{"on":false,"n":2,"N":"text"}])");
  load("[1,2]");
  grid.addRow();
  grid.setText({2, 0}, "3", dates());
  EXPECT_EQ(result(), "[1,2,3]");
  load("[]");
  grid.addAttribute("a");
  grid.addRow();
  EXPECT_EQ(result(), "[{}]") << "what was not typed stays absent";
}

TEST_F(JsonGrid, UndoTakesBackEveryKindOfEdit) {
  load(mixed);
  const std::string before = shown();
  const TList documents = parseJson(mixed).asList();
  grid.setText({0, 0}, "5", dates());
  grid.setText({0, 2}, "[]", dates());
  grid.clearCells({{0, 0}, {0, 1}, {1, 0}, {2, 3}, {2, 0}, {4, 3}});
  EXPECT_EQ(cellText(grid.cell(0, 0)) + cellText(grid.cell(2, 3)), "");
  EXPECT_TRUE(grid.cell(0, 0)->isNull());
  grid.addAttribute("new");
  grid.setText({3, 4}, "value", dates());
  grid.deleteRows({0, 2, 4});
  EXPECT_EQ(grid.rows(), 2U);
  grid.addRow();
  grid.deleteRows({0, 1, 2});
  grid.addRow();
  grid.replaceDocument(0, parseJson(R"({"other":1})"));
  while (grid.canUndo()) grid.undo();
  EXPECT_EQ(shown(), before);
  EXPECT_FALSE(grid.changed());
  for (std::size_t row = 0; row < grid.rows(); ++row) EXPECT_EQ(grid.mark(row), TRowMark::None);
  EXPECT_EQ(grid.take(), documents);
}

TEST(JsonGridMarks, KeepDeletedRowsUntilTheyArePosted) {
  TJsonGrid grid(TRowDeletion::Mark);
  grid.load(std::move(parseJson(R"([{"a":1},{"a":2}])").asList()));
  grid.addRow();
  grid.deleteRows({0, 2});
  EXPECT_EQ(grid.rows(), 2U) << "a row that the store never saw goes at once";
  EXPECT_EQ(grid.mark(0), TRowMark::Deleted);
  grid.undo();
  EXPECT_EQ(grid.rows(), 3U);
  EXPECT_EQ(grid.mark(0), TRowMark::None);
  grid.deleteRows({0, 2});
  EXPECT_EQ(toJson(TValue(grid.take())), R"([{"a":2}])");
}

TEST_F(JsonGrid, IsSeenInPages) {
  TList documents;
  for (int i = 0; i < 25; ++i) documents.emplace_back(TObject{{"n", i}});
  grid.load(std::move(documents));
  TGridView view(grid, 10);
  EXPECT_EQ(view.pages(), 3U);
  view.last();
  EXPECT_TRUE(view.isLast());
  EXPECT_EQ(view.pageRows(), 5U);
  view.next();
  EXPECT_EQ(view.page(), 2U);
  grid.deleteRows({20, 21, 22, 23, 24});
  view.refresh();
  EXPECT_EQ(view.page(), 1U) << "the page that was shown is gone";
  EXPECT_EQ(view.pageRows(), 10U);
  view.first();
  view.previous();
  EXPECT_TRUE(view.isFirst());
  grid.load({});
  view.refresh();
  EXPECT_EQ(view.pages(), 1U);
  EXPECT_EQ(view.pageRows(), 0U);
  EXPECT_FALSE(view.find("x", {0, 0}, false));
}

TEST_F(JsonGrid, IsSortedForTheViewOnlyAndSearched) {
  load(R"([{"a":10,"b":"Ten"},{"a":9,"b":"nine"},{"b":"none"},{"a":9,"b":"second nine"}])");
  TGridView view(grid, 2);
  view.sortBy(0);
  const auto order = [&] {
    std::string rows;
    for (std::size_t place = 0; place < grid.rows(); ++place) rows += std::to_string(view.rowAt(place));
    return rows;
  };
  EXPECT_EQ(order(), "2130");
  EXPECT_EQ(view.placeOf(0), 3U);
  view.sortBy(0, true);
  EXPECT_EQ(order(), "0132");
  EXPECT_EQ(view.find("NINE", {0, 0}, false), (TCellPlace{1, 1}));
  EXPECT_EQ(view.find("nine", {1, 1}, false), (TCellPlace{2, 1}));
  EXPECT_EQ(view.find("nine", {2, 1}, false), (TCellPlace{1, 1})) << "and on from the start";
  EXPECT_EQ(view.find("nine", {1, 1}, true), (TCellPlace{2, 1}));
  EXPECT_FALSE(view.find("ninety", {0, 0}, false));
  grid.addAttribute("c");
  view.sortBy(2);
  grid.undo();
  view.refresh();
  EXPECT_EQ(order(), "0123") << "the column that it was sorted by is gone";
}

}  // namespace
}  // namespace hollowmere
