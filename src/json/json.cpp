#include "json/json.h"

#include <simdjson.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <utility>

#include "json/jsonfault.h"

namespace hollowmere {

namespace {

namespace dom = simdjson::dom;
namespace ondemand = simdjson::ondemand;

/// Thrown inside this file only: the fast reader refused; jsonfault says where and why.
struct TRefused {
  const char* reason;
};

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view trimmed(std::string_view token) {
  while (!token.empty() && isBlank(token.front())) token.remove_prefix(1);
  while (!token.empty() && isBlank(token.back())) token.remove_suffix(1);
  return token;
}

bool isInteger(std::string_view token) {
  return std::none_of(token.begin(), token.end(), [](char c) { return c == '.' || c == 'e' || c == 'E'; });
}

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

/// Reads any JSON, with each number's own text at hand.
class TExactBuilder {
 public:
  explicit TExactBuilder(std::size_t depthLimit) : depthLimit_(depthLimit) {}

  /// Builds into a value that is still null, in its place: values are many, and moving them costs.
  template <typename T>  // an ondemand document or value
  void build(TValue& out, T&& at, std::size_t depth) {
    switch (need(at.type())) {
      case ondemand::json_type::object:
        buildObject(out.makeObject(), need(at.get_object()), depth + 1);
        return;
      case ondemand::json_type::array: buildList(out.makeList(), need(at.get_array()), depth + 1); return;
      case ondemand::json_type::string: out.makeText(need(at.get_string())); return;
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
    for (auto item : at) {
      auto field = need(std::move(item));
      TMember& member = object.addNull(need(field.unescaped_key()));
      build(member.value, field.value(), depth);
    }
  }

  void buildList(TList& list, ondemand::array at, std::size_t depth) {
    checkDepth(depth);
    for (auto item : at) {
      auto element = need(std::move(item));
      build(list.emplace_back(), element, depth);
    }
  }

  static TValue buildNumber(ondemand::value& at) {
    // The raw text is taken before the value, which moves past it.
    const std::string_view raw = at.raw_json_token();
    const bool whole = isInteger(raw);
    if (std::int64_t integer = 0; whole && at.get_int64().get(integer) == simdjson::SUCCESS) {
      if (integer == 0 && raw.front() == '-') return -0.0;
      return integer;
    }
    if (double number = 0; !whole && at.get_double().get(number) == simdjson::SUCCESS) return number;
    const std::string_view token = trimmed(raw);
    if (!isJsonNumber(token)) throw TRefused{"not a JSON number"};
    return TValue::decimal(std::string(token));
  }

  /// A text that is one number and nothing else has been read before this.
  static TValue buildNumber(ondemand::document&) { throw TRefused{"not a JSON number"}; }

  void checkDepth(std::size_t depth) const {
    if (depth > depthLimit_) throw TRefused{"nested too deep"};
  }

  std::size_t depthLimit_;
};

/// Builds from a tree that is known to be good and how large each part of it is. Does not know how numbers
/// were written.
class TQuickBuilder {
 public:
  explicit TQuickBuilder(std::size_t depthLimit) : depthLimit_(depthLimit) {}

  /// Builds into a null; false when it is nested too deep.
  bool build(TValue& out, dom::element at, std::size_t depth = 0) {
    switch (at.type()) {
      case dom::element_type::OBJECT:
        return buildObject(out.makeObject(), at.get_object().value_unsafe(), depth + 1);
      case dom::element_type::ARRAY:
        return buildList(out.makeList(), at.get_array().value_unsafe(), depth + 1);
      case dom::element_type::STRING: out.makeText(at.get_string().value_unsafe()); break;
      case dom::element_type::INT64: out = buildInt(at.get_int64().value_unsafe()); break;
      case dom::element_type::UINT64:
        out = TValue::decimal(std::to_string(at.get_uint64().value_unsafe()));
        break;
      case dom::element_type::DOUBLE: out = TValue(at.get_double().value_unsafe()); break;
      case dom::element_type::BOOL: out = TValue(at.get_bool().value_unsafe()); break;
      case dom::element_type::NULL_VALUE: break;
    }
    return true;
  }

  /// Whether some integer was 0: it may have been written with a sign.
  [[nodiscard]] bool sawZero() const { return sawZero_; }

 private:
  bool buildObject(TObject& object, dom::object at, std::size_t depth) {
    if (depth > depthLimit_) return false;
    object.reserve(at.size());
    for (const auto& [name, value] : at)
      if (!build(object.addNull(name).value, value, depth)) return false;
    return true;
  }

  bool buildList(TList& list, dom::array at, std::size_t depth) {
    if (depth > depthLimit_) return false;
    list.reserve(at.size());
    for (const dom::element element : at)
      if (!build(list.emplace_back(), element, depth)) return false;
    return true;
  }

  TValue buildInt(std::int64_t number) {
    sawZero_ = sawZero_ || number == 0;
    return number;
  }

  std::size_t depthLimit_;
  bool sawZero_ = false;
};

/// Whether the integer "-0" stands somewhere in the text (or what looks like it).
bool mayHoldNegativeZero(std::string_view text) {
  constexpr std::string_view further = "0123456789.eE";
  for (std::size_t at = 0; (at = text.find("-0", at)) != std::string_view::npos; at += 2)
    if (at + 2 == text.size() || further.find(text[at + 2]) == std::string_view::npos) return true;
  return false;
}

}  // namespace

struct TJsonReader::TParser {
  explicit TParser(std::size_t limit) : depthLimit(limit) {}

  /// False for a text that must be read exactly, or that is not good.
  bool readQuickly(TValue& out, std::string_view text) {
    dom::element root;
    if (quick.parse(padded.data(), text.size(), false).get(root) != simdjson::SUCCESS) return false;
    TQuickBuilder builder(depthLimit);
    return builder.build(out, root) && !(builder.sawZero() && mayHoldNegativeZero(text));
  }

  TValue readExactly(std::string_view text) {
    auto document = need(exact.iterate(padded.data(), text.size(), padded.size()));
    TValue value;
    TExactBuilder(depthLimit).build(value, document, 0);
    if (document.current_location().error() != simdjson::OUT_OF_BOUNDS)
      throw TRefused{"more text behind the value"};
    return value;
  }

  dom::parser quick;
  ondemand::parser exact;
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
  // A text that is one word or number is read here: the fast reader takes "falsee " for false.
  if (const std::string_view whole = trimmed(text); whole.empty() || !std::strchr("{[\"", whole.front())) {
    if (whole == "null") return {};
    if (whole == "true" || whole == "false") return whole == "true";
    if (isJsonNumber(whole)) return numberValue(whole);
    throwJsonFault(text, parser_->depthLimit, "not a JSON value");
  }
  // The parser reads some bytes past the end, so it gets a copy with room behind it.
  std::vector<char>& padded = parser_->padded;
  if (padded.size() < text.size() + simdjson::SIMDJSON_PADDING)
    padded.resize(text.size() * 2 + simdjson::SIMDJSON_PADDING);
  std::memcpy(padded.data(), text.data(), text.size());
  std::memset(padded.data() + text.size(), ' ', simdjson::SIMDJSON_PADDING);
  if (TValue value; parser_->readQuickly(value, text)) return value;
  try {
    return parser_->readExactly(text);
  } catch (const TRefused& refused) {
    throwJsonFault(text, parser_->depthLimit, refused.reason);
  }
}

TValue parseJson(std::string_view text) { return TJsonReader().read(text); }

bool isUtf8(std::string_view bytes) { return simdjson::validate_utf8(bytes.data(), bytes.size()); }

}  // namespace hollowmere
