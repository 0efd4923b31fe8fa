#include "json/jsonfault.h"

#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <string>

#include "json/json.h"

namespace hollowmere {

namespace {

/// Accepts everything but too deep nesting.
struct TDepthWatch : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, TDepthWatch> {
  explicit TDepthWatch(std::size_t depthLimit) : limit(depthLimit) {}
  bool Default() { return true; }
  bool StartObject() { return enter(); }
  bool StartArray() { return enter(); }
  bool EndObject(rapidjson::SizeType) { return leave(); }
  bool EndArray(rapidjson::SizeType) { return leave(); }
  // Numbers stay text, so that none is too big.
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return true; }
  bool enter() { return ++depth <= limit; }
  bool leave() {
    --depth;
    return true;
  }

  std::size_t limit;
  std::size_t depth = 0;
};

constexpr unsigned strictFlags = rapidjson::kParseValidateEncodingFlag | rapidjson::kParseIterativeFlag |
                                 rapidjson::kParseNumbersAsStringsFlag;

bool digit(char c) { return c >= '0' && c <= '9'; }

/// The place of the fault follows behind the text.
std::string withoutFullStop(std::string text) {
  if (text.ends_with('.')) text.pop_back();
  return text;
}

std::size_t skipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && digit(text[at])) ++at;
  return at;
}

}  // namespace

void throwJsonFault(std::string_view text, std::size_t depthLimit, const char* fallback) {
  rapidjson::MemoryStream stream(text.data(), text.size());
  rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> input(stream);
  rapidjson::Reader reader;
  TDepthWatch watch(depthLimit);
  const rapidjson::ParseResult result = reader.Parse<strictFlags>(input, watch);
  if (result.Code() == rapidjson::kParseErrorTermination)
    throw TJsonError("nested deeper than " + std::to_string(depthLimit) + " levels", result.Offset());
  if (result.IsError())
    throw TJsonError(withoutFullStop(rapidjson::GetParseError_En(result.Code())), result.Offset());
  throw TJsonError(fallback, text.size());
}

bool isJsonNumber(std::string_view text) {
  std::size_t at = !text.empty() && text[0] == '-' ? 1 : 0;
  const std::size_t whole = at;
  at = skipDigits(text, at);
  if (at == whole || (text[whole] == '0' && at > whole + 1)) return false;
  if (at < text.size() && text[at] == '.') {
    const std::size_t fraction = ++at;
    at = skipDigits(text, at);
    if (at == fraction) return false;
  }
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    if (++at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    const std::size_t exponent = at;
    at = skipDigits(text, at);
    if (at == exponent) return false;
  }
  return at == text.size();
}

}  // namespace hollowmere
