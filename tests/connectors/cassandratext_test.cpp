// What Cassandra's statements, types and bytes are taken for: tests/cases/cassandra/.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>

#include "connectors/cassandra/casssource.h"
#include "connectors/cassandra/casstime.h"
#include "connectors/cassandra/cassvalue.h"
#include "connectors/cassandranumber.h"
#include "connectors/textpiece.h"
#include "json/json.h"

namespace hollowmere {

namespace {

std::string markers(const std::string& cql) {
  const TMarkedCql marked = markParameters(cql);
  std::string text = marked.cql + " |";
  for (const std::string& name : marked.parameters) text += " " + name;
  return text;
}

std::string table(const std::string& cql) {
  const TCqlTable found = TCqlSelect(cql).table();
  return found.keyspace + "." + found.name;
}

std::string plan(const std::string& cql) {
  const std::vector<TCassColumn> columns = {
      {"p", "int", TKeyRole::Partition, 0, false}, {"Q", "text", TKeyRole::Partition, 1, false},
      {"a", "int", TKeyRole::Clustering, 0, true}, {"b", "text", TKeyRole::Clustering, 1, false},
      {"v", "text", TKeyRole::Regular, 0, false},  {"st", "int", TKeyRole::Static, 0, false}};
  std::string why;
  const auto made = planRoot(TCqlSelect(cql), columns, false, why);
  if (!made) return "!" + why;
  const std::string begin =
      made->firstCql(false, !made->onePartition, 5) + " | " + made->withinCql(2, 5) + " | ";
  if (!made->onePartition) return begin + made->behindCql(true, 5);
  return begin + "one partition" + (made->limit ? ", limit " + std::to_string(*made->limit) : "");
}

std::string value(const std::string& input) {
  const std::size_t end = std::min(input.find(' ', input.find_last_of("),") + 1), input.size());
  std::string bytes;
  const std::string digits = replaceAll(input.substr(end), " ", "");
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  try {
    return toJson(cassValue(bytes, TCassType::fromClass(input.substr(0, end)), TCollectionLengths::Int32,
                            TDateTimeText("C")));
  } catch (const std::runtime_error& error) {
    return std::string("!") + error.what();
  }
}

std::string run(const std::string& block, const std::string& input) {
  const std::map<std::string, std::function<std::string()>> functions{
      {"fault", [&] { return selectFault(input); }},
      {"markers", [&] { return markers(input); }},
      {"table", [&] { return table(input); }},
      {"limit",
       [&] {
         const auto limit = TCqlSelect(input).limit();
         return limit ? std::to_string(*limit) : "none";
       }},
      {"countable", [&] { return TCqlSelect(input).isCountable() ? "yes" : "no"; }},
      {"count", [&] { return TCqlSelect(input).countCql(); }},
      {"bounded", [&] { return std::string(trimmed(TCqlSelect(input).withLimit(9))); }},
      {"plan", [&] { return plan(input); }},
      {"type", [&] { return TCassType::fromClass(input).cql(); }},
      {"validator", [&] { return validatorText(input); }},
      {"value", [&] { return value(input); }}};
  return functions.at(block)();
}

TEST(CassandraText, AllCasesHold) {
  std::ifstream file(HOLLOWMERE_TESTS_DIR "/cases/cassandra/statements.txt");
  std::string line, block;
  int cases = 0;
  const auto text = [](const std::string& piece) {
    return piece == "<none>" ? std::string() : replaceAll(piece, "\\n", "\n");
  };
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') continue;
    const std::size_t arrow = line.find(" => ");
    if (arrow == std::string::npos) {
      block = line.substr(1, line.size() - 2);
      continue;
    }
    ++cases;
    const std::string found = run(block, text(line.substr(0, arrow))),
                      expected = text(line.substr(arrow + 4));
    const bool part = block == "fault" || expected.starts_with('!');
    const std::string wanted = part && expected.starts_with('!') ? expected.substr(1) : expected;
    const bool good = part && !expected.empty() ? found.find(wanted) != std::string::npos : found == expected;
    EXPECT_TRUE(good) << "[" << block << "] " << line << "\n found: " << found;
  }
  EXPECT_GT(cases, 80);
}

/// Digits of a number that is built up otherwise.
TEST(CassandraText, LongIntegersAreReadInTimeOrRefused) {
  std::string power = "\x01";
  power.append(41'000, '\0');
  const std::string digits = varintText(power);
  EXPECT_EQ(digits.size(), 98'738U);
  EXPECT_TRUE(digits.ends_with("376")) << "a power of 256";
  EXPECT_THROW(varintText(power + std::string(1000, '\0')), std::runtime_error);
}

TEST(CassandraText, DatesThatHaveNoDayAreRefused) {
  const auto bytes = [](std::int64_t day) {
    return cassTimeBytes(TValue::dateTime(day * 86'400'000), TCassType::TBase::Date, TDateTimeText("C"));
  };
  EXPECT_EQ(bytes(-0x80000000LL), std::string(4, '\0'));
  EXPECT_EQ(bytes(0x7FFFFFFFLL), std::string(4, '\xFF'));
  EXPECT_EQ(bytes(0x80000000LL), std::nullopt);
  EXPECT_EQ(bytes(-0x80000001LL), std::nullopt);
}

}  // namespace

}  // namespace hollowmere
