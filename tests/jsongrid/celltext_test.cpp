#include "jsongrid/celltext.h"

#include <gtest/gtest.h>

#include <cmath>

#include "json/json.h"

namespace hollowmere {
namespace {

const TDateTimeText& dates() {
  static const TDateTimeText texts("C");
  return texts;
}

TCellEdit edited(const TValue& before, std::string_view text) {
  return editedCell(&before, TKind::Null, text, dates());
}

TEST(CellText, KeepsEveryDigitAndNamesBinary) {
  const auto shown = [](const TValue& value) { return cellText(&value); };
  EXPECT_EQ(shown(true), "True");
  EXPECT_EQ(shown(1e-9), "1e-9");
  EXPECT_EQ(shown(std::nan("")), "NaN");
  EXPECT_EQ(shown(TValue::decimal("12345678901234567890.10")), "12345678901234567890.10");
  EXPECT_EQ(shown(TValue::binary(std::string("\0\xFF", 2))), "&base64;AP8=");
  EXPECT_EQ(shown(TValue::dateTime(0)), "1970-01-01T00:00:00.000Z");
  EXPECT_EQ(shown(parseJson(R"({"a":[1,"x"]})")), R"({"a":[1,"x"]})");
  EXPECT_EQ(shown(nullptr) + cellText(nullptr), "");
}

TEST(CellText, IsCutBetweenCharactersAndWithoutLookingAtTheRest) {
  const TValue text("aä€z");
  EXPECT_EQ(cellText(&text, 7), "aä€z");
  EXPECT_EQ(cellText(&text, 5), "aä...");
  TList many(100'000, TValue("element"));
  const TValue list(std::move(many));
  EXPECT_EQ(cellText(&list, 11), R"(["element",...)");
  const TValue bytes = TValue::binary(std::string(1'000'000, 'x'));
  EXPECT_EQ(cellText(&bytes, 12), "&base64;eHh4...");
  const TValue torn("a\xFFz");
  EXPECT_EQ(cleanCellText(&torn), "a\xEF\xBF\xBDz");
}

TEST(CellEdit, KeepsTheKindOfTheCell) {
  EXPECT_EQ(edited("x", "42").value, TValue("42"));
  EXPECT_EQ(edited(1, "42").value, TValue(42));
  EXPECT_EQ(edited(TValue::wideInt(1), "42").value.subtype(), 1);
  EXPECT_EQ(edited(1, "4.5").value, TValue(4.5));
  EXPECT_EQ(edited(1.5, "4").value, TValue(4.0));
  EXPECT_EQ(edited(1, "123456789012345678901234").value, TValue::decimal("123456789012345678901234"));
  EXPECT_EQ(edited(TValue::decimal("1"), "2.50").value, TValue::decimal("2.50"));
  EXPECT_EQ(edited(true, " FALSE ").value, TValue(false));
  EXPECT_EQ(edited(TValue::dateTime(5), "2026-01-02T03:04:05Z").value, TValue::dateTime(1767323045000));
  const TValue typed = edited(TValue::binary("a", 4), "&base64;AAE=").value;
  EXPECT_EQ(typed, TValue::binary(std::string("\0\1", 2), 4));
  EXPECT_EQ(edited(TObject{{"a", 1}}, "[1]").value, TValue(TList{1}));
  EXPECT_EQ(toJson(edited(TObjectId{}, "0102030405060708090a0b0c").value), R"("0102030405060708090a0b0c")");
}

TEST(CellEdit, RefusesWhatTheKindCannotBe) {
  EXPECT_EQ(edited(1, "x1").refusal, "\"x1\" is not a number.");
  EXPECT_TRUE(edited(1.5, "").value.isNull()) << "emptied";
  EXPECT_EQ(edited(true, "maybe").refusal, "\"maybe\" is not True or False.");
  EXPECT_EQ(edited(TValue::dateTime(0), "soon").refusal, "\"soon\" is not a date and time.");
  EXPECT_EQ(edited(TValue::binary("a"), "&base64;!").refusal,
            "\"&base64;!\" is not binary data: \"&base64;\" and Base64.");
  EXPECT_EQ(edited(TObjectId{}, "12").refusal, "\"12\" is not an object id: 24 hexadecimal digits.");
  for (const char* text : {"{", "12", "", "\"x\""})
    EXPECT_EQ(edited(TList{}, text).refusal, "Invalid JSON document.");
}

TEST(CellEdit, TakesTheKindOfItsColumnWhereThereIsNone) {
  const auto fresh = [](TKind column, std::string_view text) {
    return editedCell(nullptr, column, text, dates()).value;
  };
  EXPECT_EQ(fresh(TKind::Text, "42"), TValue("42"));
  EXPECT_EQ(fresh(TKind::Double, "42"), TValue(42.0));
  EXPECT_EQ(fresh(TKind::Null, "42"), TValue(42));
  EXPECT_EQ(fresh(TKind::Null, "true"), TValue(true));
  EXPECT_EQ(fresh(TKind::Null, R"({"a":1})"), TValue(TObject{{"a", 1}}));
  EXPECT_EQ(fresh(TKind::Null, "{a"), TValue("{a"));
  EXPECT_EQ(fresh(TKind::Int, ""), TValue());
}

TEST(CellBytes, AreThoseOfBinariesAndMarkedTexts) {
  const TValue marked("&BASE64;AP8="), plain("AP8="), broken("&base64;A");
  EXPECT_EQ(cellBytes(&marked), std::string("\0\xFF", 2));
  EXPECT_FALSE(cellBytes(&plain) || cellBytes(&broken) || cellBytes(nullptr));
  const TValue typed = TValue::binary("a", 5);
  EXPECT_EQ(binaryCell(&typed, TKind::Null, "b"), TValue::binary("b", 5));
  EXPECT_EQ(binaryCell(nullptr, TKind::Binary, "b"), TValue::binary("b"));
  EXPECT_EQ(binaryCell(&marked, TKind::Binary, "b"), TValue("&base64;Yg=="));
}

TEST(CellOrder, PutsKindsInOrderAndNumbersByValue) {
  const TList ascending{
      TValue(), false, true, std::nan(""), -3, 2.5, TValue::decimal("2.75"), 10, TValue::dateTime(-5),
      "10",     "9"};
  EXPECT_LT(compareCells(nullptr, &ascending[0]), 0);
  for (std::size_t i = 0; i + 1 < ascending.size(); ++i) {
    EXPECT_LT(compareCells(&ascending[i], &ascending[i + 1]), 0) << i;
    EXPECT_GT(compareCells(&ascending[i + 1], &ascending[i]), 0) << i;
    EXPECT_EQ(compareCells(&ascending[i], &ascending[i]), 0) << i;
  }
}

}  // namespace
}  // namespace hollowmere
