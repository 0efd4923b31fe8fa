#include "jsondoc/binaryvalue.h"

#include <gtest/gtest.h>

#include "jsondoc/jsontext.h"

namespace hollowmere {
namespace {

using namespace std::string_literals;

TEST(BinaryValue, TypeIsToldFromTheBytes) {
  const std::pair<std::string, std::string_view> cases[] = {
      {"\x89PNG\r\n\x1a\n...", "png"}, {"\xff\xd8\xff\xe0", "jpg"},
      {"%PDF-1.7\n\xe2\xe3", "pdf"},   {"plain words", "txt"},
      {"  {\"a\":1}", "json"},         {"<?xml version='1.0'?><a/>", "xml"},
      {"<SVG xmlns='x'/>", "svg"},     {"a\0b"s, "bin"},
      {"\xff\xfe text", "bin"},        {"", "txt"},
      {"BM is no picture", "txt"},     {"PK\3\4", "zip"}};
  for (const auto& [bytes, extension] : cases) EXPECT_EQ(typeOfBytes(bytes).extension, extension) << bytes;
  EXPECT_EQ(typeOfBytes("\x89PNG\r\n\x1a\n").form, TBytesForm::Picture);
  EXPECT_EQ(typeOfBytes("words").form, TBytesForm::Text);
  EXPECT_EQ(typeOfBytes("%PDF-").form, TBytesForm::Other);
}

TEST(BinaryValue, MarkerInAnyCaseAndNothingElse) {
  EXPECT_EQ(bytesOfText("&Base64;AP8="), "\0\xff"s);
  EXPECT_EQ(bytesOfText(textOfBytes("\1\2\3")), "\1\2\3");
  EXPECT_EQ(bytesOfText("&base64;not Base64!"), std::nullopt);
  EXPECT_EQ(bytesOfText("AP8="), std::nullopt);
  EXPECT_EQ(bytesOfValue(TValue::binary("xy")), "xy");
  EXPECT_EQ(bytesOfValue(TValue(5)), std::nullopt);
}

TEST(BinaryValue, HexDumpOfAPartialLine) {
  EXPECT_EQ(hexDump("ABCDEFGHIJKLMNOP\x01Z"),
            "00000000   41 42 43 44 45 46 47 48  49 4A 4B 4C 4D 4E 4F 50  ABCDEFGHIJKLMNOP\n"
            "00000010   01 5A                                             .Z\n");
}

TEST(JsonText, FaultsNameTheirPlace) {
  const TJsonReading reading = readDocument("{\n  \"ä\": 1,\n  \"b\" 2\n}");
  EXPECT_FALSE(reading.document);
  EXPECT_TRUE(reading.fault.message().starts_with("Invalid JSON document.\nLine 3, column "))
      << reading.fault.message();
  EXPECT_EQ(readDocument("\xef\xbb\xbf{}").document, TValue(TObject()));
  for (const char* text : {"", "5", "\"text\"", "null", "{\"a\":", "[1,2", "{\"a\":1}x", "{\"a\":\"\xff\"}"})
    EXPECT_TRUE(readDocument(text).fault.message().starts_with("Invalid JSON document.\n")) << text;
}

}  // namespace
}  // namespace hollowmere
