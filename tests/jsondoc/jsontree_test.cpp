#include "jsondoc/jsontree.h"

#include <gtest/gtest.h>

#include <random>

#include "json/json.h"
#include "jsondoc/keepkinds.h"
#include "jsondoc/scalartext.h"
#include "jsondoc/treehtml.h"

namespace hollowmere {
namespace {

class TJsonTreeTest : public testing::Test {
 protected:
  void set(std::string_view json) { tree_.setDocument(parseJson(json)); }
  [[nodiscard]] std::string now() const { return toJson(tree_.document()); }
  [[nodiscard]] TJsonPlace at(std::size_t row) const { return {&tree_.root(), row}; }
  static TJsonPlace below(TJsonPlace place, std::size_t row) { return {TJsonTree::open(place), row}; }

  TDateTimeText dates_{"C"};
  TJsonTree tree_{dates_};
};

/// Opens every container, so that nothing of the document is left as it came.
void openAll(TJsonBranch& branch) {
  for (std::size_t row = 0; row < branch.size(); ++row)
    if (TJsonBranch* below = TJsonTree::open({&branch, row})) openAll(*below);
}

TValue everyKind() {
  return TObject{{"null", {}},
                 {"yes", true},
                 {"int", 42},
                 {"wide", TValue::wideInt(7)},
                 {"double", 1.5},
                 {"whole", 2.0},
                 {"tiny", 1e-300},
                 {"decimal", TValue::decimal("123456789012345678901234567890.5")},
                 {"text", "He said \"hi\" &quot;"},
                 {"digits", "123"},
                 {"truth", "True"},
                 {"word", "null"},
                 {"marker", "<JSON Object>"},
                 {"blank", ""},
                 {"date", TValue::dateTime(1767323045006)},
                 {"binary", TValue::binary("\1\2\xff", 4)},
                 {"id", TObjectId{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
                 {"emptyList", TList()},
                 {"emptyObject", TObject()},
                 {"list", TList{1, "two", TList{TObject{{"a", 1}}}}},
                 {"<List Item 1>", TObject{{"<List Item 2>", TList{{}, {}}}}}};
}

TEST_F(TJsonTreeTest, EveryKindComesBackAsItWas) {
  tree_.setDocument(everyKind());
  EXPECT_EQ(tree_.document(), everyKind());
  openAll(tree_.root());
  const TValue document = tree_.document();
  EXPECT_EQ(document, everyKind());
  EXPECT_EQ(document.asObject().find("wide")->subtype(), 1);
  EXPECT_EQ(document.asObject().find("binary")->subtype(), 4);
}

TEST_F(TJsonTreeTest, ColumnsShowMarkersAndDisplayTexts) {
  set(R"({"o":{"b":false},"l":[1.50,null,"x"],"t":true})");
  const auto row = [](TJsonPlace at) {
    return TJsonTree::nameAt(at) + "|" + TJsonTree::valueTextAt(at) + "|" + TJsonTree::kindTextAt(at);
  };
  EXPECT_EQ(row(at(0)), "o|<JSON Object>|<JSON Object>");
  EXPECT_EQ(row(below(at(0), 0)), "b|False|");
  EXPECT_EQ(row(at(1)), "l|<JSON List>|<JSON List>");
  EXPECT_EQ(row(below(at(1), 0)), "<List Item 1>|1.5|");
  EXPECT_EQ(row(below(at(1), 1)), "<List Item 2>||");
  EXPECT_EQ(row(below(at(1), 2)), "<List Item 3>|x|");
  EXPECT_EQ(row(at(2)), "t|True|");
  EXPECT_EQ(TJsonTree::pathOf(below(at(1), 2)), "$.l[2]");
}

TEST_F(TJsonTreeTest, FirstMemberOfANameWinsOnEveryLevel) {
  set(R"({"a":1,"b":{"x":1,"x":2},"a":3,"c":[{"y":[],"y":5}]})");
  EXPECT_EQ(now(), R"({"a":1,"b":{"x":1},"c":[{"y":[]}]})");
  openAll(tree_.root());
  EXPECT_EQ(tree_.root().size(), 4U);
  EXPECT_EQ(now(), R"({"a":1,"b":{"x":1},"c":[{"y":[]}]})");
  // The same beyond the size at which names are remembered in a table.
  TObject many;
  for (int i = 0; i < 100; ++i) many.add("m" + std::to_string(i % 50), i);
  tree_.setDocument(many);
  EXPECT_EQ(tree_.document().asObject().size(), 50U);
  EXPECT_EQ(*tree_.document().asObject().find("m7"), TValue(7));
}

TEST_F(TJsonTreeTest, AddingNamesAndRenumbers) {
  set(R"({"l":[1,2],"s":"x"})");
  TJsonPlace added = tree_.add(at(0));
  EXPECT_EQ(TJsonTree::nameAt(added), "<List Item 3>");
  tree_.setValueText(added, "7");
  tree_.addNested(at(0), TKind::Object);
  added = tree_.addNested(at(1), TKind::List);
  tree_.rename(added, "n");
  EXPECT_EQ(now(), R"({"l":[1,2,7,{}],"s":"x","n":[]})");
  tree_.remove(below(at(0), 0));
  EXPECT_EQ(TJsonTree::nameAt(below(at(0), 0)), "<List Item 1>");
  // A name typed for an element is shown, moves along and does not reach the document.
  tree_.rename(below(at(0), 0), "mine");
  tree_.moveDown(below(at(0), 0));
  EXPECT_EQ(TJsonTree::nameAt(below(at(0), 1)), "mine");
  EXPECT_EQ(now(), R"({"l":[7,2,{}],"s":"x","n":[]})");
  tree_.clear();
  EXPECT_EQ(now(), "{}");
  EXPECT_EQ(TJsonTree::nameAt(tree_.add({})), "Attribute1");
}

TEST_F(TJsonTreeTest, EditedValuesKeepTheirKind) {
  struct TCase {
    TValue old;
    const char* typed;
    TValue expected;
  };
  const TCase cases[] = {
      {"x", "123", "123"},
      {"x", "True", "True"},
      {"x", "", ""},
      {"x", " y ", " y "},
      {"x", "&base64;AAE=", "&base64;AAE="},
      {1, "2", 2},
      {1, "2.5", 2.5},
      {1, "99999999999999999999", TValue::decimal("99999999999999999999")},
      {1, "01", "01"},
      {1, "true", true},
      {1, "", {}},
      {TValue::wideInt(1), "2", TValue::wideInt(2)},
      {1.5, "2", 2.0},
      {1.5, "9007199254740993", std::int64_t{9007199254740993}},
      {TValue::decimal("1"), "2.10", TValue::decimal("2.10")},
      {true, "FALSE", false},
      {true, "no", "no"},
      {{}, "5", 5},
      {{}, "x", "x"},
      {{}, "&str;5", "&str;5"},
      {{}, "&base64;AAE=", TValue::binary(std::string("\0\1", 2))},
      {{}, "&base64;?", "&base64;?"},
      {TValue::binary("a", 5), "&base64;AAE=", TValue::binary(std::string("\0\1", 2), 5)},
      {TValue::binary("a", 5), "", TValue::binary("", 5)},
      {TValue::dateTime(0), "2026-01-02T03:04:05.006Z", TValue::dateTime(1767323045006)},
      {TValue::dateTime(0), "soon", "soon"},
      {TObjectId{}, "0102030405060708090a0b0c", TObjectId{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
      {TObjectId{}, "0102", "0102"},
  };
  for (const TCase& each : cases) {
    const TValue found = editedScalar(each.old, each.typed, dates_);
    EXPECT_EQ(found, each.expected) << toJson(each.old) << " <- " << each.typed << " = " << toJson(found);
    EXPECT_EQ(found.subtype(), each.expected.subtype()) << each.typed;
  }
}

TEST_F(TJsonTreeTest, MarkersMakeContainersAndContainersRefuseTexts) {
  set(R"({"a":"x","b":[1,2],"c":{}})");
  EXPECT_TRUE(tree_.setValueText(at(0), "<JSON List>"));
  EXPECT_FALSE(tree_.setValueText(at(1), "text"));
  EXPECT_TRUE(tree_.setValueText(at(1), "<JSON Object>"));
  EXPECT_TRUE(tree_.setValueText(at(2), "12"));
  EXPECT_EQ(now(), R"({"a":[],"b":{"<List Item 1>":1,"<List Item 2>":2},"c":12})");
  while (tree_.canUndo()) tree_.undo();
  EXPECT_EQ(now(), R"({"a":"x","b":[1,2],"c":{}})");
}

TEST_F(TJsonTreeTest, KindsAreChangedOnlyWhereTheTextSuits) {
  set(R"({"a":"12","b":"x","c":5})");
  EXPECT_TRUE(tree_.convert(at(0), TKind::Int));
  EXPECT_FALSE(tree_.convert(at(1), TKind::Int));
  EXPECT_TRUE(tree_.convert(at(1), TKind::Null));
  EXPECT_TRUE(tree_.convert(at(2), TKind::Text));
  EXPECT_EQ(now(), R"({"a":12,"b":null,"c":"5"})");
}

/// Any edits, then all of them taken back and made again.
TEST_F(TJsonTreeTest, RandomEditsAreUndoneAndRedone) {
  std::mt19937 random(7);
  const auto pick = [&](std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random);
  };
  set(R"({"a":{"b":[1,{"c":null},"x"],"d":1.5},"e":[[],{}],"f":"y"})");
  const std::string before = now();
  std::vector<std::string> states{before};
  for (int step = 0; step < 400; ++step) {
    TJsonBranch* branch = &tree_.root();
    TJsonPlace place;
    while (branch && branch->size() > 0) {
      place = {branch, pick(branch->size())};
      branch = pick(3) > 0 ? TJsonTree::open(place) : nullptr;
    }
    if (!place || pick(8) == 0)
      tree_.addNested(place, pick(2) ? TKind::List : TKind::Object);
    else if (const std::size_t act = pick(7); act == 0)
      tree_.add(place);
    else if (act == 1)
      tree_.remove(place);
    else if (act == 2)
      tree_.moveUp(place);
    else if (act == 3)
      tree_.moveDown(place);
    else if (act == 4)
      tree_.rename(place, "n" + std::to_string(pick(6)));
    else if (act == 5)
      tree_.setValueText(place, pick(2) ? objectMarker : listMarker);
    else
      tree_.setValueText(place, std::to_string(pick(100)));
    if (pick(100) == 0) tree_.clear();
    if (now() != states.back()) states.push_back(now());
  }
  ASSERT_GT(states.size(), 100U);
  const std::string last = now();
  while (tree_.canUndo()) tree_.undo();
  EXPECT_EQ(now(), before);
  EXPECT_FALSE(tree_.isChanged());
  while (tree_.canRedo()) tree_.redo();
  EXPECT_EQ(now(), last);
}

TValue randomValue(std::mt19937& random, int depth) {
  const auto pick = [&](int below) { return std::uniform_int_distribution<int>(0, below - 1)(random); };
  switch (pick(depth > 0 ? 10 : 7)) {
    case 0: return {};
    case 1: return pick(2) == 1;
    case 2: return static_cast<std::int64_t>(random()) - 2000000000;
    case 3: return pick(1000) / 8.0;
    case 4: return std::string(static_cast<std::size_t>(pick(30)), "x\"\n\xc3"[pick(3)]);
    case 5: return TValue::dateTime(pick(1000000));
    case 6: return TValue::binary(std::string(static_cast<std::size_t>(pick(9)), '\xff'));
    case 7: {
      TList list;
      for (int i = pick(6); i > 0; --i) list.push_back(randomValue(random, depth - 1));
      return list;
    }
    default: {
      TObject object;
      for (int i = pick(8); i > 0; --i) object.add("m" + std::to_string(i), randomValue(random, depth - 1));
      return object;
    }
  }
}

TEST_F(TJsonTreeTest, RandomDocumentsComeBackIdentical) {
  std::mt19937 random(11);
  for (int i = 0; i < 300; ++i) {
    TValue document = TList{randomValue(random, 5), randomValue(random, 5)};
    tree_.setDocument(document);
    if (i % 2) openAll(tree_.root());
    ASSERT_EQ(tree_.document(), document) << toJson(document);
    // By way of the text page: what reads the same is the same again.
    TValue read = parseJson(toJson(document));
    keepKinds(document, read);
    ASSERT_EQ(read, document);
  }
}

TEST_F(TJsonTreeTest, KindsAreKeptThroughEditedText) {
  const TValue old = TObject{{"when", TValue::dateTime(0)}, {"id", TObjectId{}}, {"n", 2.0}};
  TValue edited =
      parseJson(R"({"id":"000000000000000000000000","new":1,"when":"1970-01-01T00:00:00.001Z","n":2.0})");
  keepKinds(old, edited);
  EXPECT_TRUE(edited.asObject().find("id")->is(TKind::ObjectId)) << "moved, but the same";
  EXPECT_TRUE(edited.asObject().find("when")->is(TKind::Text)) << "edited";
  EXPECT_TRUE(edited.asObject().find("n")->is(TKind::Double));
}

TEST_F(TJsonTreeTest, FindsInReadingOrderBothWays) {
  set(R"({"x1":{"y":"x2","z":[{"x3":1},"x4"]},"n":[["x5"]],"x6":0})");
  const TJsonTree::TSuits suits = [](std::string_view name, const TValue& value) {
    return name.starts_with('x') || (value.is(TKind::Text) && value.asText().starts_with('x'));
  };
  std::vector<std::string> found;
  for (TJsonPlace place = tree_.find({}, true, suits); place; place = tree_.find(place, true, suits))
    found.push_back(TJsonTree::pathOf(place));
  const std::vector<std::string> expected{"$.x1", "$.x1.y", "$.x1.z[0].x3", "$.x1.z[1]", "$.n[0][0]", "$.x6"};
  EXPECT_EQ(found, expected);
  set(R"({"x1":{"y":"x2","z":[{"x3":1},"x4"]},"n":[["x5"]],"x6":0})");
  found.clear();
  for (TJsonPlace place = tree_.find({}, false, suits); place; place = tree_.find(place, false, suits))
    found.insert(found.begin(), TJsonTree::pathOf(place));
  EXPECT_EQ(found, expected);
  int counted = 0;
  tree_.visit(
      [&](std::string_view name, const TValue& value) { return counted += suits(name, value), true; });
  EXPECT_EQ(counted, 6);
}

TEST_F(TJsonTreeTest, TwoHundredLevels) {
  std::string text;
  for (int i = 0; i < 100; ++i) text += R"({"a":[)";
  for (int i = 0; i < 100; ++i) text += "]}";
  set(text);
  openAll(tree_.root());
  EXPECT_EQ(now(), text);
  EXPECT_TRUE(treeHtml(tree_, 1000));
  EXPECT_FALSE(treeHtml(tree_, 50)) << "too many rows";
}

TEST_F(TJsonTreeTest, PrintedTableEscapesAndOpensNothing) {
  set(R"({"<b>":"a & b","o":{"i":[true]}})");
  const std::string html = *treeHtml(tree_, 100);
  EXPECT_NE(html.find("<td>&lt;b&gt;</td><td>a &amp; b</td><td></td>"), std::string::npos) << html;
  EXPECT_NE(html.find("&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&lt;List Item 1&gt;</td><td>True</td>"),
            std::string::npos);
  EXPECT_EQ(tree_.root().items[1].branch, nullptr);
}

}  // namespace
}  // namespace hollowmere
