#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "json/json.h"

namespace hollowmere {

namespace {

std::string nested(std::size_t depth, char open, char close, const std::string& inside = "") {
  return std::string(depth, open) + inside + std::string(depth, close);
}

struct TGoodText {
  const char* text;
  const char* written;  ///< the compact text of what was read
};

TEST(JsonReader, ReadsEveryForm) {
  const TGoodText cases[] = {
      {" \t\r\n{ } ", "{}"},
      {"[]", "[]"},
      {"[ [ ], { } , null ]", "[[],{},null]"},
      {"true", "true"},
      {" null ", "null"},
      {"\"\"", "\"\""},
      {"-0", "-0.0"},
      {"[-0,0,-0.0]", "[-0.0,0,-0.0]"},
      {"{\"b\":1,\"a\":2,\"b\":3}", "{\"b\":1,\"a\":2,\"b\":3}"},
      {"{\"\":0}", "{\"\":0}"},
      {"[9223372036854775807,-9223372036854775808]", "[9223372036854775807,-9223372036854775808]"},
      {"[9223372036854775808,-9223372036854775809]", "[9223372036854775808,-9223372036854775809]"},
      {"18446744073709551615", "18446744073709551615"},
      {"[123456789012345678901234567890]", "[123456789012345678901234567890]"},
      {"[1e400,-1E+999]", "[1e400,-1E+999]"},
      {"1e400", "1e400"},
      {"[1e308,5e-324,2.5e0,1E2]", "[1e308,5e-324,2.5,100.0]"},
      {"[0.1,1.0]", "[0.1,1.0]"},
      {"\"\\u0041\\n\\/\\\"\\\\\"", "\"A\\n/\\\"\\\\\""},
      {"\"\\ud83d\\ude00\"", "\"\xF0\x9F\x98\x80\""},
      {"\"\xF0\x9F\x98\x80 \xC3\xA9\"", "\"\xF0\x9F\x98\x80 \xC3\xA9\""},
      {"\"\\u2028\x7F\"", "\"\xE2\x80\xA8\x7F\""},
      {"\"a\\u0000b\"", "\"a\\u0000b\""},
      {"{\"a\\u0000b\":1}", "{\"a\\u0000b\":1}"},
  };
  TJsonReader reader;
  for (const TGoodText& good : cases) {
    SCOPED_TRACE(good.text);
    try {
      EXPECT_EQ(toJson(reader.read(good.text)), good.written);
    } catch (const TJsonError& error) {
      ADD_FAILURE() << error.what();
    }
  }
}

TEST(JsonReader, TellsKindsOfNumbersApart) {
  EXPECT_EQ(parseJson("9007199254740993").kind(), TKind::Int);
  EXPECT_EQ(parseJson("[1]").asList()[0].kind(), TKind::Int);
  EXPECT_EQ(parseJson("[1.0]").asList()[0].kind(), TKind::Double);
  EXPECT_EQ(parseJson("1e2").kind(), TKind::Double);
  EXPECT_EQ(parseJson("[9223372036854775808]").asList()[0].kind(), TKind::Decimal);
  EXPECT_EQ(parseJson("[1e999]").asList()[0].kind(), TKind::Decimal);
  EXPECT_TRUE(std::signbit(parseJson("[-0]").asList()[0].asDouble()));
  EXPECT_EQ(parseJson("\"a\\u0000b\"").asText(), std::string("a\0b", 3));
}

struct TBadText {
  std::string text;
  std::size_t offset;
};

TEST(JsonReader, NamesThePlaceOfAFault) {
  const TBadText cases[] = {
      {"", 0},
      {"  ", 2},
      {"{", 1},
      {"[1,]", 3},
      {"[1 2]", 3},
      {"{\"a\" 1}", 5},
      {"{\"a\":1,}", 7},
      {"{a:1}", 1},
      {"[01]", 2},
      {"[1.]", 3},
      {"[-]", 2},
      {"[+1]", 1},
      {"[1e]", 3},
      {"[NaN]", 1},
      {"[\"a\nb\"]", 3},
      {"[\"\\x\"]", 2},
      {"{} {}", 3},
      {"[1]]", 3},
      {"1 1", 2},
      {"'a'", 0},
      {"[tru]", 4},
      {"// no\n{}", 0},
      {"[\"\xC3\x28\"]", 2},
      {"[\"\xED\xA0\x80\"]", 2},
  };
  TJsonReader reader;
  for (const TBadText& bad : cases) {
    SCOPED_TRACE(bad.text);
    try {
      ADD_FAILURE() << "read as " << toJson(reader.read(bad.text));
    } catch (const TJsonError& error) {
      // Parsers disagree by the width of a token about where a fault lies.
      EXPECT_LE(error.offset(), bad.offset + 2) << error.what();
      EXPECT_GE(error.offset() + 2, bad.offset) << error.what();
      EXPECT_NE(std::string(error.what()).find("at byte " + std::to_string(error.offset())),
                std::string::npos);
    }
  }
}

TEST(JsonReader, RefusesWhatIsNoText) {
  const std::string cases[] = {"\"\\ud800\"",
                               "\"\\ud800x\"",
                               "\"\\udc00\"",
                               "\"\\ud800\\ud800\"",
                               "\"\\u12g4\"",
                               "\"\xC0\x80\"",
                               "\"\xF5\x80\x80\x80\"",
                               "\"\xE2\x82\"",
                               "{\"\\ud800\":1}",
                               "{\"\xFF\":1}",
                               std::string("\"a\0b\"", 5),
                               std::string("{}\0", 3),
                               std::string("1\0", 2),
                               std::string("[1\0]", 4)};
  TJsonReader reader;
  for (const std::string& text : cases) EXPECT_THROW(reader.read(text), TJsonError) << text;
}

TEST(JsonReader, HoldsItsDepthLimit) {
  TJsonReader reader;
  EXPECT_NO_THROW(reader.read(nested(200, '[', ']')));
  EXPECT_THROW(reader.read(nested(201, '[', ']')), TJsonError);
  EXPECT_THROW(reader.read(nested(1'000'000, '[', ']')), TJsonError);
  EXPECT_THROW(reader.read(std::string(1'000'000, '[')), TJsonError);
  std::string objects;
  for (int i = 0; i < 201; ++i) objects += "{\"a\":";
  EXPECT_THROW(reader.read(objects + "1" + std::string(201, '}')), TJsonError);
  TJsonReader shallow(2);
  EXPECT_NO_THROW(shallow.read("[[1]]"));
  EXPECT_THROW(shallow.read("[[[]]]"), TJsonError);
  // Still good after a refusal.
  EXPECT_EQ(toJson(reader.read("[1]")), "[1]");
}

TEST(JsonReader, ReadsTextsOfEveryLength) {
  TJsonReader reader;
  for (std::size_t length = 0; length < 300; ++length) {
    const std::string inside(length, 'x');
    EXPECT_EQ(reader.read("\"" + inside + "\"").asText(), inside);
    EXPECT_EQ(reader.read("[\"" + inside + "\\n\"]").asList()[0].asText(), inside + "\n");
  }
  const std::string large(3'000'000, 'y');
  EXPECT_EQ(reader.read("{\"t\":\"" + large + "\"}").asObject().find("t")->asText(), large);
}

}  // namespace

}  // namespace hollowmere
