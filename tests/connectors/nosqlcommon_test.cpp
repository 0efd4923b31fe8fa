#include "connectors/nosqlcommon.h"

#include <gtest/gtest.h>

#include <QLocale>
#include <cctype>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <sstream>

#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

namespace {

/// Sets the time zone and gives the old one back.
class TZone {
 public:
  explicit TZone(const std::string& name)
      : had_(std::getenv("TZ") != nullptr), old_(had_ ? std::getenv("TZ") : "") {
    set(&name);
  }
  TZone(const TZone&) = delete;
  TZone& operator=(const TZone&) = delete;
  ~TZone() { set(had_ ? &old_ : nullptr); }

 private:
  static void set(const std::string* name) {
    if (name)
      setenv("TZ", name->c_str(), 1);
    else
      unsetenv("TZ");
    tzset();
  }

  bool had_;
  std::string old_;
};

std::string unescaped(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const char c = text[++i];
    if (c == 'x') {
      out += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
      i += 2;
    } else {
      out += c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
    }
  }
  return out;
}

std::string fromHex(const std::string& text) {
  std::string digits, bytes;
  for (const char c : text)
    if (c != ' ') digits += c;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  return bytes;
}

/// {+n} is a year n from today, {+n%} its last two digits.
std::string withYears(std::string text) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  for (const char* mark : {"{+", "{-"}) {
    const std::size_t from = text.find(mark), to = text.find('}', from);
    if (from == std::string::npos || to == std::string::npos || !std::isdigit(text[from + 2])) continue;
    std::string year = std::to_string(local.tm_year + 1900 + std::stoi(text.substr(from + 1)));
    if (text[to - 1] == '%') year.erase(0, year.size() - 2);
    text.replace(from, to - from + 1, year);
  }
  return text;
}

std::string converted(const std::string& text, bool inList, const TDateTimeText& dates) {
  static const std::map<TKind, std::string> names{{TKind::Boolean, "Boolean"},
                                                  {TKind::Binary, "Binary"},
                                                  {TKind::DateTime, "DateTime"},
                                                  {TKind::Text, "Text"}};
  const auto value = convertText(text, inList, dates);
  return value ? names.at(value->kind()) + ' ' + textForm(*value) : "(as it stands)";
}

std::string bytesText(const std::string& hex, const std::string& type, bool quote) {
  const TZone zone("America/New_York");
  return CassandraBytesToText(fromHex(hex), type, quote, TDateTimeText("en_US"));
}

/// A block's words (function, locale, zone; of Cassandra types the rest) and one input.
std::string run(const std::string& block, const std::string& input) {
  std::istringstream words(block);
  std::string function, locale = "en_US", zoneName = "America/New_York";
  words >> function;
  if (function == "bytes") return bytesText(input, block.substr(6), false);
  if (function == "bytes-quoted") return bytesText(input, block.substr(13), true);
  words >> locale >> zoneName;
  const TZone zone(zoneName);
  const TDateTimeText dates(locale);
  const auto utc = [](const std::optional<std::int64_t>& moment) {
    return moment ? toIsoText(*moment) : "(none)";
  };
  const std::map<std::string, std::function<std::string()>> functions{
      {"var-type-name", [&] { return std::string(VarTypeName(std::stoi(input))); }},
      {"escape-quotes", [&] { return EscapeQuotes(input); }},
      {"unescape-markers", [&] { return UnescapeMarkers(input); }},
      {"format-number", [&] { return FormatNumber(std::strtod(input.c_str(), nullptr)); }},
      {"convert", [&] { return converted(input, false, dates); }},
      {"convert-in-list", [&] { return converted(input, true, dates); }},
      {"date", [&] { return utc(dates.parse(withYears(input))); }},
      {"local", [&] { return dates.localText(dates.parse(input).value()); }},
      {"cql-type", [&] { return CassandraValidatorToCqlType(input); }},
      {"mongo-shell", [&] { return MongoShellToJson(input, dates); }},
      {"hbase-filter", [&] { return NormalizeHBaseFilter(input); }},
  };
  return functions.at(function)();
}

void check(const std::string& block, const std::string& input, const std::string& expected,
           const std::string& file, int line) {
  std::string result;
  bool threw = false;
  try {
    result = run(block, input);
  } catch (const std::exception& error) {
    threw = true;
    result = error.what();
  }
  const bool good = expected.starts_with('!') ? threw && result.find(expected.substr(1)) != std::string::npos
                                              : !threw && result == withYears(expected);
  if (!good)
    ADD_FAILURE_AT(file.c_str(), line) << "[" << block << "] " << testing::PrintToString(input)
                                       << "\n expected " << testing::PrintToString(expected) << "\n got      "
                                       << testing::PrintToString(result) << (threw ? " (thrown)" : "");
}

int runFile(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::string text, block;
  int cases = 0;
  for (int line = 1; std::getline(file, text); ++line) {
    if (text.empty() || text.front() == '#') continue;
    if (text.front() == '[' && text.back() == ']' && text.find(" =>") == std::string::npos) {
      block = text.substr(1, text.size() - 2);
      continue;
    }
    const std::size_t at = text.find(" =>");
    if (at == std::string::npos) {
      ADD_FAILURE_AT(path.c_str(), line) << "no \" =>\" in this line";
      continue;
    }
    const std::string expected = text.size() > at + 4 ? text.substr(at + 4) : "";
    check(block, unescaped(text.substr(0, at)), unescaped(expected), path.string(), line);
    ++cases;
  }
  return cases;
}

class TConversionCases : public testing::TestWithParam<std::string> {};

TEST_P(TConversionCases, allHold) {
  const std::filesystem::path folder = std::filesystem::path(HOLLOWMERE_TESTS_DIR) / "cases" / "conversion";
  EXPECT_GT(runFile(folder / (GetParam() + ".txt")), 0);
}

INSTANTIATE_TEST_SUITE_P(Files, TConversionCases,
                         testing::Values("markers", "dates", "cassandra", "shell", "hbasefilter"),
                         [](const auto& file) { return file.param; });

/// Moments from the year 1600 to 2400, more often near now, with and without milliseconds.
std::vector<std::int64_t> someMoments() {
  std::mt19937_64 random(7);
  std::uniform_int_distribution<std::int64_t> wide(-11'676'096'000'000, 13'569'465'600'000);
  std::uniform_int_distribution<std::int64_t> near(0, 2'000'000'000'000);
  std::vector<std::int64_t> moments{-62'135'596'800'001, -1, 0, 1, 999, 253'402'300'800'000};
  for (int i = 0; i < 40; ++i) {
    moments.push_back(wide(random));
    moments.push_back(near(random) / 1000 * 1000);
  }
  return moments;
}

/// The other moment that local clocks show alike, if any, lies an hour or less away.
bool isAmbiguous(std::int64_t moment, const TDateTimeText& dates) {
  const std::string text = dates.localText(moment);
  for (std::int64_t minutes = -180; minutes <= 180; minutes += 5)
    if (minutes != 0 && dates.localText(moment + minutes * 60'000) == text) return true;
  return false;
}

TEST(DateTimeText, everyLocaleReadsWhatItWrites) {
  const auto locales =
      QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
  for (const char* zoneName : {"UTC", "America/New_York", "Asia/Kolkata"}) {
    const TZone zone(zoneName);
    for (const QLocale& locale : locales) {
      const TDateTimeText dates(locale.name().toStdString());
      for (const std::int64_t moment : someMoments()) {
        const std::string text = dates.localText(moment);
        if (dates.parse(text) == moment) continue;
        ASSERT_TRUE(isAmbiguous(moment, dates))
            << locale.name().toStdString() << ' ' << zoneName << ' ' << moment << " \"" << text << '"';
      }
    }
  }
}

TEST(DateTimeText, usersOwnSettingsReadWhatTheyWrite) {
  const TDateTimeText dates;
  for (const std::int64_t moment : someMoments()) {
    EXPECT_EQ(dates.parse(toIsoText(moment)), moment);
    EXPECT_TRUE(dates.parse(dates.localText(moment)).has_value()) << dates.localText(moment);
  }
}

TEST(DateTimeText, momentsBeyondTheCalendarDoNoHarm) {
  const TDateTimeText dates("en_US");
  for (const std::int64_t moment : {INT64_MIN, INT64_MAX, INT64_MIN + 1, std::int64_t{1'500'000'000'000'000}})
    EXPECT_EQ(dates.localText(moment), std::to_string(moment));
}

TEST(NosqlCommon, typeNamesOfValues) {
  EXPECT_EQ(VarTypeName(TValue()), "varNull");
  EXPECT_EQ(VarTypeName(TValue(true)), "varBoolean");
  EXPECT_EQ(VarTypeName(TValue(std::int64_t{2147483647})), "varInteger");
  EXPECT_EQ(VarTypeName(TValue(std::int64_t{-2147483649})), "varInt64");
  EXPECT_EQ(VarTypeName(TValue(1.5)), "varDouble");
  EXPECT_EQ(VarTypeName(TValue::dateTime(0)), "varDate");
  EXPECT_EQ(VarTypeName(TValue(TList{})), "varUnknown");
  EXPECT_EQ(VarTypeName(TValue(TObject{})), "varUnknown");
  EXPECT_EQ(VarTypeName(TValue::binary("x")), "varString");
}

TEST(NosqlCommon, textFormsOfValues) {
  EXPECT_EQ(textForm(TValue()), "");
  EXPECT_EQ(textForm(TValue(false)), "false");
  EXPECT_EQ(textForm(TValue(-5)), "-5");
  EXPECT_EQ(textForm(TValue(0.1)), "0.10");
  EXPECT_EQ(textForm(TValue::dateTime(0)), "1970-01-01T00:00:00.000Z");
  EXPECT_EQ(textForm(TValue::binary(std::string("\0\xFF", 2))), "&base64;AP8=");
  EXPECT_EQ(textForm(TValue::decimal("1.50")), "1.50");
  EXPECT_EQ(textForm(TValue(TList{TValue(1), TValue("a")})), R"([1,"a"])");
}

TEST(NosqlCommon, markersTouchTextOnly) {
  EXPECT_EQ(EscapeQuotes(TValue("a\"")), TValue("a&quot;"));
  EXPECT_EQ(UnescapeMarkers(TValue(" &str;1 ")), TValue("1"));
  EXPECT_EQ(UnescapeMarkers(TValue(5)), TValue(5));
  EXPECT_EQ(EscapeQuotes(TValue::binary("\"")), TValue::binary("\""));
}

TEST(NosqlCommon, shortLengthsAreTakenFirstWhenTheServerSendsThem) {
  // An empty list of 32-bit lengths, and one that both forms can read.
  const TDateTimeText dates("C");
  const std::string ambiguous = fromHex("0000 0000");
  EXPECT_EQ(CassandraBytesToText(ambiguous, "list<int>", false, dates, TCollectionLengths::Short16), "[]");
  const std::string both = fromHex("0001 0004 00000000");
  EXPECT_EQ(CassandraBytesToText(both, "list<int>", false, dates, TCollectionLengths::Short16), "[0]");
}

std::string joined(const std::vector<std::string>& pieces, std::mt19937& random) {
  std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
  std::string text;
  for (int i = 0; i < 12; ++i) text += pieces[pick(random)];
  return text;
}

TEST(NosqlCommon, tornTextsAreSurvived) {
  const std::vector<std::string> pieces{
      "NumberLong(", "NumberInt(", "ISODate(", "ObjectId(", "BinData(", ")", "\"",    "'",
      "\\",          "\n",         " NaN",     " Infinity", "-",        ",", "2026-", "12",
      "(",           "{ ",         " and ",    "\xC3",      "T",        ":"};
  const TDateTimeText dates("en_US");
  std::mt19937 random(11);
  for (int i = 0; i < 20000; ++i) {
    const std::string text = joined(pieces, random);
    const std::string json = MongoShellToJson(text, dates);
    // Without a complete wrapper, and outside of documents, nothing but the two words may change.
    if (text.find_first_of("({") == std::string::npos && text.find('N') == std::string::npos &&
        text.find('I') == std::string::npos) {
      EXPECT_EQ(json, text);
    }
    EXPECT_EQ(NormalizeHBaseFilter(text).size(), text.size());
    (void)dates.parse(text);
    (void)convertText(text, i % 2 == 0, dates);
  }
}

TEST(NosqlCommon, plainTextsArriveAsTheyAre) {
  using namespace std::string_literals;
  for (const auto& text :
       {""s, "a"s, "two words"s, "h\xC3\xA9 & so on;"s, "line\tone\r\nline two"s, "a \x7F b"s})
    EXPECT_TRUE(isPlainText(text)) << text;
  const std::vector<std::string> pieces{"\0"s, "\x1F"s,   " "s,        "\n"s, "\xC3"s,  "\xC3\xA9"s,
                                        "&"s,  "&quot;"s, "&BASE64;"s, "a"s,  "bcdef"s, "&str;"s};
  const TDateTimeText dates("en_US");
  std::mt19937 random(7);
  int plain = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (std::uint32_t count = 1 + random() % 4; count > 0; --count) text += pieces[random() % pieces.size()];
    const bool hasControl = text.find('\0') != std::string::npos || text.find('\x1F') != std::string::npos;
    const auto changes = [&] {
      try {
        return convertText(text, false, dates).has_value();
      } catch (const std::runtime_error&) {
        return true;
      }
    };
    EXPECT_EQ(isPlainText(text), !hasControl && !changes()) << text;
    plain += isPlainText(text) ? 1 : 0;
  }
  EXPECT_GT(plain, 1000);
}

TEST(NosqlCommon, manyNestedWrappersEnd) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "NumberLong(";
  EXPECT_EQ(MongoShellToJson(text, TDateTimeText("C")), text);
  text.append(100000, ')');
  EXPECT_NE(MongoShellToJson(text, TDateTimeText("C")), text);
}

TEST(NosqlCommon, tornCassandraBytesAreSurvived) {
  const std::vector<std::string> types{"map<text,frozen<list<int>>>",
                                       "set<decimal>",
                                       "list<",
                                       "map<text>",
                                       "varint",
                                       "frozen<frozen<>>",
                                       "timestamp",
                                       "inet",
                                       "duration",
                                       "tuple<int, frozen<tuple<text>>>",
                                       "map<,>",
                                       "list<list<list<text>>>"};
  const TDateTimeText dates("en_US");
  std::mt19937 random(13);
  std::uniform_int_distribution<int> byte(0, 5), length(0, 24);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes(static_cast<std::size_t>(length(random)), '\0');
    for (char& c : bytes) c = static_cast<char>(byte(random) - 1);
    for (const std::string& type : types) {
      try {
        (void)CassandraBytesToText(bytes, type, i % 2 == 0, dates);
      } catch (const std::runtime_error&) {
        // Refused by name: what is asked here is that nothing else happens.
      }
    }
  }
}

}  // namespace

}  // namespace hollowmere
