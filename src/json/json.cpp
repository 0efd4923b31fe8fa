#include "json/json.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <utility>

#include "json/jsonfault.h"

namespace hollowmere {

namespace {

namespace ondemand = simdjson::ondemand;

/// Thrown inside this file only: the fast reader refused; jsonfault says where and why.
struct TRefused {
  const char* reason;
};

std::string_view trimmed(std::string_view token) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = token.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return token.substr(first, token.find_last_not_of(blanks) - first + 1);
}

bool isInteger(std::string_view token) { return token.find_first_of(".eE") == std::string_view::npos; }

/// A number that is the whole text, in JSON's grammar.
TValue numberValue(std::string_view token) {
  const char* end = token.data() + token.size();
  std::int64_t integer = 0;
  if (isInteger(token) && std::from_chars(token.data(), end, integer).ec == std::errc()) {
    if (integer == 0 && token.front() == '-') return -0.0;
    return integer;
  }
  double number = 0;
  if (!isInteger(token) && std::from_chars(token.data(), end, number).ec == std::errc()) return number;
  return TValue::decimal(std::string(token));
}

template <typename T>
T need(simdjson::simdjson_result<T>&& result) {
  if (result.error() != simdjson::SUCCESS) throw TRefused{simdjson::error_message(result.error())};
  return std::move(result).value_unsafe();
}

class TBuilder {
 public:
  explicit TBuilder(std::size_t depthLimit) : depthLimit_(depthLimit) {}

  /// Builds into a value that is still null, in its place: values are many, and moving them costs.
  template <typename T>  // an ondemand document or value
  void build(TValue& out, T&& at, std::size_t depth) {
    switch (need(at.type())) {
      case ondemand::json_type::object:
        buildObject(out.makeObject(), need(at.get_object()), depth + 1);
        return;
      case ondemand::json_type::array: buildList(out.makeList(), need(at.get_array()), depth + 1); return;
      case ondemand::json_type::string: out.makeText() = need(at.get_string()); return;
      case ondemand::json_type::number: out = buildNumber(at); return;
      case ondemand::json_type::boolean: out = TValue(need(at.get_bool())); return;
      case ondemand::json_type::null:
        if (!need(at.is_null())) throw TRefused{"not a JSON value"};
        return;
    }
    throw TRefused{"not a JSON value"};
  }

 private:
  void buildObject(TObject& object, ondemand::object at, std::size_t depth) {
    checkDepth(depth);
    // Documents of one source look alike: as much room as the last object at this depth had members.
    std::size_t& room = rooms_[std::min(depth, rooms_.size()) - 1];
    object.reserve(room);
    for (auto item : at) {
      auto field = need(std::move(item));
      TMember& member = object.addNull(need(field.unescaped_key()));
      build(member.value, field.value(), depth);
    }
    room = std::min(object.size(), mostRoom);
  }

  void buildList(TList& list, ondemand::array at, std::size_t depth) {
    checkDepth(depth);
    for (auto item : at) {
      auto element = need(std::move(item));
      if (list.empty()) list.reserve(4);
      build(list.emplace_back(), element, depth);
    }
  }

  static TValue buildNumber(ondemand::value& at) {
    // The raw text is taken before the value, which moves past it.
    const std::string_view token = trimmed(at.raw_json_token());
    std::int64_t integer = 0;
    if (at.get_int64().get(integer) == simdjson::SUCCESS) {
      if (integer == 0 && token.front() == '-') return -0.0;
      return integer;
    }
    double number = 0;
    if (!isInteger(token) && at.get_double().get(number) == simdjson::SUCCESS) return number;
    if (!isJsonNumber(token)) throw TRefused{"not a JSON number"};
    return TValue::decimal(std::string(token));
  }

  /// A text that is one number and nothing else has been read before this.
  static TValue buildNumber(ondemand::document&) { throw TRefused{"not a JSON number"}; }

  void checkDepth(std::size_t depth) const {
    if (depth > depthLimit_) throw TRefused{"nested too deep"};
  }

  static constexpr std::size_t mostRoom = 64;

  std::size_t depthLimit_;
  std::array<std::size_t, 4> rooms_{8, 8, 8, 8};  ///< the last depth stands for all beyond
};

}  // namespace

struct TJsonReader::TParser {
  explicit TParser(std::size_t limit) : builder(limit), depthLimit(limit) {}

  ondemand::parser parser;
  TBuilder builder;
  std::vector<char> padded;
  std::size_t depthLimit;
};

TJsonError::TJsonError(const std::string& reason, std::size_t offset)
    : std::runtime_error(reason + " at byte " + std::to_string(offset)), offset_(offset) {}

TJsonReader::TJsonReader(std::size_t depthLimit) : parser_(std::make_unique<TParser>(depthLimit)) {}
TJsonReader::~TJsonReader() = default;
TJsonReader::TJsonReader(TJsonReader&&) noexcept = default;
TJsonReader& TJsonReader::operator=(TJsonReader&&) noexcept = default;

TValue TJsonReader::read(std::string_view text) {
  if (const std::string_view number = trimmed(text); isJsonNumber(number)) return numberValue(number);
  // The parser reads some bytes past the end, so it gets a copy with room behind it.
  std::vector<char>& padded = parser_->padded;
  if (padded.size() < text.size() + simdjson::SIMDJSON_PADDING)
    padded.resize(text.size() * 2 + simdjson::SIMDJSON_PADDING);
  std::memcpy(padded.data(), text.data(), text.size());
  std::memset(padded.data() + text.size(), ' ', simdjson::SIMDJSON_PADDING);
  try {
    auto document = need(parser_->parser.iterate(padded.data(), text.size(), padded.size()));
    TValue value;
    parser_->builder.build(value, document, 0);
    if (document.current_location().error() != simdjson::OUT_OF_BOUNDS)
      throw TRefused{"more text behind the value"};
    return value;
  } catch (const TRefused& refused) {
    throwJsonFault(text, parser_->depthLimit, refused.reason);
  }
}

TValue parseJson(std::string_view text) { return TJsonReader().read(text); }

bool isUtf8(std::string_view bytes) { return simdjson::validate_utf8(bytes.data(), bytes.size()); }

}  // namespace hollowmere
