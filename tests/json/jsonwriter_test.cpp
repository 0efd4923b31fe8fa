#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "json/json.h"

namespace hollowmere {

namespace {

TEST(JsonWriter, WritesEveryKind) {
  TObjectId id{};
  id[0] = 0xab;
  id[11] = 0x01;
  const TObject document{{"null", nullptr},
                         {"yes", true},
                         {"int", std::numeric_limits<std::int64_t>::min()},
                         {"double", 0.1},
                         {"whole", 3.0},
                         {"nan", std::numeric_limits<double>::quiet_NaN()},
                         {"inf", -std::numeric_limits<double>::infinity()},
                         {"text", std::string("q\"\\\n\t\x01\0z", 8)},
                         {"date", TValue::dateTime(-1)},
                         {"binary", TValue::binary(std::string("\0\xff", 2))},
                         {"id", id},
                         {"decimal", TValue::decimal("1.50E+40")},
                         {"odd", TValue::decimal("NaN")},
                         {"list", TList{1, TList{}, TObject{}}}};
  EXPECT_EQ(toJson(document),
            R"({"null":null,"yes":true,"int":-9223372036854775808,"double":0.1,"whole":3.0,"nan":"NaN",)"
            R"("inf":"-Infinity","text":"q\"\\\n\t\u0001\u0000z","date":"1969-12-31T23:59:59.999Z",)"
            R"("binary":"&base64;AP8=","id":"ab0000000000000000000001","decimal":1.50E+40,"odd":"NaN",)"
            R"("list":[1,[],{}]})");
}

TEST(JsonWriter, MarksQuotesOnlyInValues) {
  const TObject document{{"a\"b", TList{"x\"y\"", TObject{{"c", "\""}}}}};
  EXPECT_EQ(toJson(document, TTextForm::Markers), R"({"a\"b":["x&quot;y&quot;",{"c":"&quot;"}]})");
  EXPECT_EQ(toJson(document), R"({"a\"b":["x\"y\"",{"c":"\""}]})");
}

TEST(JsonWriter, AppendsBehindWhatIsThere) {
  std::string out = "before";
  appendJson(out, TObject{{"a", 1}});
  appendJson(out, TValue(std::string(5000, 'x')));
  EXPECT_EQ(out, "before{\"a\":1}\"" + std::string(5000, 'x') + "\"");
}

TEST(JsonWriter, PrettyTextReadsBackTheSame) {
  const std::string text = R"({"a":[1,{"b":[]}],"c":{},"d":"\"x\""})";
  const std::string pretty = toPrettyJson(parseJson(text));
  EXPECT_EQ(toJson(parseJson(pretty)), text);
  EXPECT_EQ(pretty.substr(0, 13), "{\n  \"a\": [\n  ");
}

}  // namespace

}  // namespace hollowmere
