#include <gtest/gtest.h>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/cassbind.h"
#include "connectors/cassandra/cassvalue.h"
#include "connectors/cassandra/insertplan.h"
#include "json/json.h"

namespace hollowmere {
namespace {

std::string hexOf(const std::string& bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string hex;
  for (const char c : bytes) {
    hex += digits[static_cast<unsigned char>(c) >> 4];
    hex += digits[c & 15];
  }
  return hex;
}

struct TBound {
  const char* type;
  TValue value;
  std::string result;  ///< bytes in hexadecimal, or behind "!" what the error says
};

/// The bytes, or behind "!" the error.
std::string bound(const TBound& each, TCollectionLengths lengths = TCollectionLengths::Int32) {
  const TDateTimeText dates("C");
  try {
    const TCassType type = TCassType::fromClass(each.type);
    const std::string bytes = cassBytes(each.value, type, lengths, dates);
    // What was written is read as a value that is written as the same bytes.
    EXPECT_EQ(hexOf(cassBytes(cassValue(bytes, type, lengths, dates), type, lengths, dates)), hexOf(bytes))
        << each.type << " " << toJson(each.value);
    return hexOf(bytes);
  } catch (const std::runtime_error& error) {
    return std::string("!") + error.what();
  }
}

TEST(CassandraWrite, ValuesAreBoundByType) {
  const std::vector<TBound> cases = {
      {"BooleanType", "maybe", "!boolean cannot take the text \"maybe\""},
      {"BooleanType", "false", "00"},
      {"BooleanType", 7, "01"},
      {"FloatType", 1e300, "!float cannot take the number 1e300 (out of range)"},
      {"FloatType", "1e39", "!float cannot take the text \"1e39\" (out of range)"},
      {"DoubleType", TValue::wideInt(9007199254740993),
       "!double cannot take the integer 9007199254740993 (it would lose digits)"},
      {"DoubleType", "+1.5", "3ff8000000000000"},
      {"DoubleType", TList{}, "!double cannot take the list []"},
      {"Int32Type", 1.5, "!int cannot take the number 1.5 (it has a fraction)"},
      {"Int32Type", "-2147483649", "!int cannot take the text \"-2147483649\" (out of range)"},
      {"Int32Type", TValue::decimal("1E3"), "000003e8"},
      {"LongType", "9223372036854775808",
       "!bigint cannot take the text \"9223372036854775808\" (out of range)"},
      {"IntegerType", "-128", "80"},
      {"IntegerType", "128", "0080"},
      {"IntegerType", "-340282366920938463463374607431768211457", "feffffffffffffffffffffffffffffffff"},
      {"IntegerType", "18446744073709551616", "010000000000000000"},
      {"IntegerType", "1e200000", "!varint cannot take the text \"1e200000\" (it has a fraction)"},
      {"DecimalType", "-12.50", "00000002fb1e"},
      {"DecimalType", "1e-1000001", "!decimal cannot take the text \"1e-1000001\""},
      {"UUIDType", "550e8400-e29b-41d4-a716-44665544000", "!uuid cannot take the text"},
      {"UUIDType", "550e8400-e29b-41d4-a716-44665544000g", "!uuid cannot take the text"},
      {"TimeUUIDType", "550e8400-e29b-41d4-a716-446655440000",
       "!timeuuid cannot take the text \"550e8400-e29b-41d4-a716-446655440000\" (not of version 1)"},
      {"InetAddressType", "256.0.0.1", "!inet cannot take the text \"256.0.0.1\""},
      {"InetAddressType", "fe80::1%eth0", "!inet cannot take the text"},
      {"TimeType", "24:00:00", "!time cannot take the text \"24:00:00\""},
      {"TimeType", "23:59:59.9999999999", "!time cannot take the text"},
      {"TimeType", "23:59:59.999999999", "00004e94914effff"},
      {"DurationType", "1y-2mo", "!duration cannot take the text \"1y-2mo\""},
      {"DurationType", "300000000y", "!duration cannot take the text"},
      {"DurationType", "-1mo2d3ns", "010305"},
      {"SimpleDateType", "1970-01-02", "80000001"},
      {"TimestampType", "no day", "!timestamp cannot take the text \"no day\""},
      {"AsciiType", "Kr\xC3\xA4he", "!ascii cannot take the text \"Kr\xC3\xA4he\" (beyond ASCII)"},
      {"BytesType",
       "&base64;AA=", "!blob cannot take the text \"&base64;AA=\" (not Base64 behind the marker)"},
      {"BytesType", 5, "!blob cannot take the integer 5"},
      {"ListType(Int32Type)", "[1,", "!list<int> cannot take the text \"[1,\""},
      {"ListType(Int32Type)", "{}", "!list<int> cannot take the text \"{}\""},
      {"ListType(Int32Type)", TList{1, nullptr}, "!list<int> cannot take a null within it"},
      {"SetType(Int32Type)", TList{"x"}, "!int cannot take the text \"x\""},
      {"MapType(UTF8Type,Int32Type)", TObject{{"a", nullptr}},
       "!map<text, int> cannot take a null within it"},
      {"TupleType(Int32Type,UTF8Type)", TList{1, "a", 2},
       "!tuple<int, text> cannot take the list [1,\"a\",2] (too many items)"},
      {"ListType(MapType(UTF8Type))", "[[]]", "!MapType<text> cannot take the list []"},
      {"TupleType(Int32Type,UTF8Type)", TList{1, nullptr}, "0000000400000001ffffffff"},
  };
  for (const TBound& each : cases) {
    const std::string result = bound(each);
    if (each.result[0] == '!')
      EXPECT_TRUE(result.starts_with(each.result)) << each.type << ": " << result;
    else
      EXPECT_EQ(result, each.result) << each.type;
  }
}

TEST(CassandraWrite, BlanksAtTheEndsOfTextStay) {
  for (const char* type : {"UTF8Type", "AsciiType"}) {
    EXPECT_EQ(bound({type, " a ", {}}), "206120");
    const TDateTimeText dates("C");
    EXPECT_EQ(cassBytes(" &quot;&str;a\n", TCassType::fromClass(type), TCollectionLengths::Int32, dates),
              " \"a\n");
  }
}

TEST(CassandraWrite, OlderServersTakeShorterCollections) {
  const TCollectionLengths old = TCollectionLengths::Short16;
  EXPECT_EQ(bound({"ListType(UTF8Type)", TList{"a", "bc"}, {}}, old),
            "0002000161"
            "00026263");
  EXPECT_EQ(bound({"ListType(UTF8Type)", TList{std::string(65536, 'x')}, {}}, old),
            "!list<text> cannot take 65536 bytes in an element: at most 65535 before version 3");
  EXPECT_EQ(bound({"SetType(Int32Type)", TList(65536, TValue(1)), {}}, old),
            "!set<int> cannot take 65536 elements: at most 65535 before version 3");
}

TEST(CassandraWrite, StatementsAndLevels) {
  EXPECT_EQ(buildInsert("ks", "t", {"a", "b", "c"}), "insert into ks.t ( a,b,c ) values ( ?,?,? )");
  EXPECT_EQ(buildInsert("Ks", "t", {"From", "a \"b\""}),
            "insert into \"Ks\".t ( \"From\",\"a \"\"b\"\"\" ) values ( ?,? )");
  EXPECT_EQ(
      buildCounterUpdate("ks", "t", {{"k", "int", TKeyRole::Partition}, {"n", "counter"}, {"m", "counter"}}),
      "update ks.t set n=n+?,m=m+? where k=?");
  const std::vector<std::string> levels = {"ONE", "QUORUM", "LOCAL_QUORUM", "EACH_QUORUM", "ALL",
                                           "ANY", "TWO",    "THREE",        "SERIAL",      "LOCAL_SERIAL"};
  for (std::size_t i = 0; i < levels.size(); ++i)
    EXPECT_EQ(static_cast<std::size_t>(consistencyOf(levels[i])), i + 1) << levels[i];
  for (const char* other : {"", "quorum", "QUORUM ", "LOCAL_ONE"})
    EXPECT_EQ(consistencyOf(other), TConsistency::One) << other;
  for (const auto& [text, version] : std::vector<std::pair<std::string, int>>{
           {"2.1.9", 2}, {"3.0.0", 3}, {"4.0", 4}, {"11", 11}, {"", 0}, {"x.1", 0}})
    EXPECT_EQ(majorVersionOf(text), version) << text;
}

}  // namespace
}  // namespace hollowmere
