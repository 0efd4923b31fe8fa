#include <gtest/gtest.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <random>
#include <string>

#include "json/json.h"

namespace hollowmere {

namespace {

using TRandom = std::mt19937;

std::size_t below(TRandom& random, std::size_t bound) { return random() % bound; }

enum class TVerdict { Accepts, Refuses, Abstains };

/// What a strict reader of another make says. It has no numbers beyond a double, which ours keeps as text.
TVerdict otherVerdict(const std::string& text) {
  constexpr unsigned flags = rapidjson::kParseValidateEncodingFlag | rapidjson::kParseIterativeFlag |
                             rapidjson::kParseNumbersAsStringsFlag;
  rapidjson::MemoryStream stream(text.data(), text.size());
  rapidjson::BaseReaderHandler<> ignore;
  rapidjson::Reader reader;
  const rapidjson::ParseErrorCode code = reader.Parse<flags>(stream, ignore).Code();
  if (code == rapidjson::kParseErrorNumberTooBig) return TVerdict::Abstains;
  return code == rapidjson::kParseErrorNone ? TVerdict::Accepts : TVerdict::Refuses;
}

// No surrogates: the other reader takes a low one that stands alone. The letter d is absent for that reason.
const char* const scalars[] = {"0",
                               "-1",
                               "1.5e-7",
                               "123456789012345678901",
                               "true",
                               "false",
                               "null",
                               "\"\"",
                               "\"text\"",
                               "\"\\u00e9\\n\"",
                               "1E5",
                               "-0",
                               "\"\xC3\xA9\"",
                               "\"a longer text than one block of bytes is, so that it spans two\""};

std::string randomText(TRandom& random, int depth) {
  const auto blank = [&] { return std::string(below(random, 8) == 0 ? " " : ""); };
  const std::size_t kind = depth > 4 ? 0 : below(random, 4);
  if (kind < 2) return scalars[below(random, std::size(scalars))];
  std::string text = kind == 2 ? "[" : "{";
  for (std::size_t i = below(random, 4); i > 0; --i) {
    if (kind == 3) text += "\"k" + std::to_string(i) + "\"" + blank() + ":" + blank();
    text += randomText(random, depth + 1) + blank() + (i > 1 ? "," : "");
  }
  return text + (kind == 2 ? "]" : "}");
}

void mutate(TRandom& random, std::string& text) {
  static const std::string bytes = "{}[],:\"\\0123456789eE+-.truefalsn u\x80\xC3\xE2\xED\xF0\x01\n\t/*'";
  if (text.empty()) return;
  const std::size_t at = below(random, text.size());
  const char byte = bytes[below(random, bytes.size())];
  switch (below(random, 5)) {
    case 0: text[at] = byte; break;
    case 1: text.insert(at, 1, byte); break;
    case 2: text.erase(at, 1); break;
    case 3: text.resize(at); break;
    default: text.insert(at, text.substr(below(random, text.size()), 1 + below(random, 6))); break;
  }
}

TEST(JsonFuzz, AgreesWithAnotherStrictReader) {
  TRandom random(20260102);
  TJsonReader reader;
  int accepted = 0;
  int disagreements = 0;
  constexpr int rounds = 60'000;
  for (int round = 0; round < rounds && disagreements < 10; ++round) {
    std::string text = randomText(random, 0);
    for (std::size_t changes = below(random, 4); changes > 0; --changes) mutate(random, text);
    bool accepts = true;
    std::string why;
    std::string again;
    try {
      again = toJson(reader.read(text));
    } catch (const TJsonError& error) {
      accepts = false;
      why = error.what();
      EXPECT_LE(error.offset(), text.size());
    }
    accepted += accepts ? 1 : 0;
    const TVerdict other = otherVerdict(text);
    if (other != TVerdict::Abstains && accepts != (other == TVerdict::Accepts)) {
      ++disagreements;
      ADD_FAILURE() << (accepts ? "accepted: " : "refused: ") << text << " " << why;
    }
    if (accepts && toJson(reader.read(again)) != again) ADD_FAILURE() << "not the same again: " << text;
  }
  // Neither side may be idle.
  EXPECT_GT(accepted, rounds / 10);
  EXPECT_LT(accepted, rounds * 9 / 10);
}

}  // namespace

}  // namespace hollowmere
