#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "connectors/markers.h"
#include "connectors/nosqlcommon.h"
#include "connectors/textpiece.h"
#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::size_t none = std::string_view::npos;

bool isWordByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte >= '0' && byte <= '9') || ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z') || byte == '_' ||
         byte == '$' || byte >= 0x80;
}

/// The end of the quoted text that begins at a quote, behind its closing quote. A line end closes it too:
/// the shell escapes those, so the quote was not the start of a string.
std::size_t endOfString(std::string_view text, std::size_t at) {
  const char quote = text[at];
  for (++at; at < text.size() && text[at] != '\n'; ++at) {
    if (text[at] == quote) return at + 1;
    if (text[at] == '\\') ++at;
  }
  return std::min(at, text.size());
}

/// The brackets of a text that are closed, found in one pass: a text full of open ones must not cost a
/// search each.
class TBrackets {
 public:
  explicit TBrackets(std::string_view text) {
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at < text.size();) {
      const char c = text[at];
      // Outside of brackets an apostrophe is only that.
      if (c == '"' || (c == '\'' && !open.empty())) {
        at = endOfString(text, at);
        continue;
      }
      if (c == '(') open.push_back(at);
      if (c == ')' && !open.empty()) {
        closing_[open.back()] = at;
        open.pop_back();
      }
      ++at;
    }
  }

  [[nodiscard]] std::size_t closing(std::size_t open) const {
    const auto found = closing_.find(open);
    return found == closing_.end() ? none : found->second;
  }

 private:
  std::unordered_map<std::size_t, std::size_t> closing_;
};

std::string withoutQuotes(std::string_view text) {
  std::string out(text);
  std::erase_if(out, [](char c) { return c == '"' || c == '\''; });
  return out;
}

std::string quoted(const std::string& text) { return toJson(TValue(text)); }

std::string unquoted(std::string_view text) { return std::string(trimmed(withoutQuotes(text))); }

std::string isoDate(std::string_view argument, const TDateTimeText& dates) {
  const std::string text = unquoted(argument);
  auto moment = dates.parse(text);
  // The shell means UTC, also where it does not say so.
  if (const auto utc = dates.parse(text + "Z"); utc) moment = utc;
  return quoted(moment ? dates.localText(*moment) : text);
}

std::string binData(std::string_view argument) {
  if (const std::size_t comma = argument.find(','); comma != none) argument.remove_prefix(comma + 1);
  const std::string text = unquoted(argument);
  return quoted(text.find(binaryMarker) != std::string::npos ? text : std::string(binaryMarker) + text);
}

std::string objectId(std::string_view argument) {
  return argument.find('\'') == none ? std::string(argument) : quoted(unquoted(argument));
}

/// Digits as they are; what is no number of JSON ("NaN") as text.
std::string number(std::string_view argument) {
  const std::string text = unquoted(argument);
  try {
    const TValue value = parseJson(text);
    if (value.is(TKind::Int) || value.is(TKind::Double) || value.is(TKind::Decimal)) return text;
  } catch (const TJsonError&) {
    return quoted(text);
  }
  return quoted(text);
}

/// The sixteen bytes of 36 digits and dashes.
std::string uuid(std::string_view argument) {
  std::string digits = unquoted(argument);
  std::erase(digits, '-');
  std::string bytes;
  for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
    unsigned byte = 0;
    const char* end = digits.data() + at + 2;
    if (std::from_chars(digits.data() + at, end, byte, 16).ptr != end) return quoted(unquoted(argument));
    bytes += static_cast<char>(byte);
  }
  constexpr std::size_t uuidBytes = 16;
  return quoted(bytes.size() == uuidBytes ? std::string(binaryMarker) + toBase64(bytes) : unquoted(argument));
}

/// Seconds and a counter, "1, 2" or "{ t: 1, i: 2 }": the moment counts.
std::string timestamp(std::string_view argument, const TDateTimeText& dates) {
  const std::size_t first = std::min(argument.find_first_of("0123456789"), argument.size());
  std::int64_t seconds = 0;
  const auto [end, fault] =
      std::from_chars(argument.data() + first, argument.data() + argument.size(), seconds);
  const bool good = fault == std::errc() && seconds <= INT32_MAX * std::int64_t{2} + 1;
  return quoted(good ? dates.localText(seconds * 1000) : unquoted(argument));
}

/// What the first quoted text of an argument says.
std::string firstText(std::string_view argument) {
  const std::size_t quote = argument.find_first_of("\"'");
  if (quote == none) return unquoted(argument);
  const std::size_t end = endOfString(argument, quote);
  return std::string(argument.substr(quote + 1, end - quote - 2));
}

/// The text between single quotes, or the quotes that mark code, as JSON. Only its own escapes differ.
std::string fromSingleQuotes(std::string_view inner) {
  std::string out = "\"";
  for (std::size_t at = 0; at < inner.size(); ++at) {
    const char c = inner[at];
    if (c == '"') out += '\\';
    if (c == '\\' && at + 1 < inner.size()) {
      const char escaped = inner[++at];
      constexpr std::string_view same = "\"\\/bfnrtu";
      if (escaped == 'x')
        out += "\\u00";
      else if (same.find(escaped) == none)
        out += escaped;
      else
        (out += '\\') += escaped;
      continue;
    }
    if (static_cast<unsigned char>(c) < 0x20)
      out += c == '\t' ? "\\t" : c == '\r' ? "\\r" : "\\n";
    else
      out += c;
  }
  return out += '"';
}

class TShellText {
 public:
  TShellText(std::string_view text, const TDateTimeText& dates, int depth = 0)
      : text_(text), dates_(dates), depth_(depth) {}

  std::string rewrite() {
    out_.reserve(text_.size());
    while (at_ < text_.size()) step();
    return std::move(out_);
  }

 private:
  void step() {
    const char c = text_[at_];
    if (c == '"') return copyTo(endOfString(text_, at_), true);
    if (isWordByte(c)) return word();
    if (valueExpected() && (c == '\'' || c == '`')) return singleQuoted();
    if (valueExpected() && c == '/') return regex();
    if (c == '{' || c == '[') open_.push_back(c);
    if ((c == '}' || c == ']') && !open_.empty()) open_.pop_back();
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') last_ = c;
    copyTo(at_ + 1, false);
  }

  /// Whether a value or a name may begin here: within a document or list, behind what comes before one.
  [[nodiscard]] bool valueExpected() const {
    return !open_.empty() && (last_ == '{' || last_ == '[' || last_ == ',' || last_ == ':');
  }

  void copyTo(std::size_t end, bool value) {
    out_.append(text_, at_, end - at_);
    at_ = end;
    if (value) last_ = '"';
  }

  void put(std::string_view json, std::size_t end) {
    out_ += json;
    at_ = end;
    last_ = '"';
  }

  void word() {
    std::size_t end = at_;
    while (end < text_.size() && isWordByte(text_[end])) ++end;
    const std::string_view name = text_.substr(at_, end - at_);
    if (isName(end)) return put(quoted(std::string(name)), end);
    if (name == "NaN" || name == "Infinity") return notFinite(name);
    if (end < text_.size() && text_[end] == '(' && wrapper(name, end)) return;
    constexpr std::string_view binary = ".createFromBase64";
    if (name == "Binary" && text_.substr(end).starts_with(binary) &&
        text_.substr(end + binary.size()).starts_with('(') && wrapper(name, end + binary.size()))
      return;
    if (valueExpected() && name == "undefined") return put("null", end);
    if (valueExpected() && (name == "MinKey" || name == "MaxKey")) return put(quoted(std::string(name)), end);
    copyTo(end, true);
  }

  /// Today's shell leaves out the quotes of names.
  [[nodiscard]] bool isName(std::size_t end) const {
    if (open_.empty() || open_.back() != '{' || (last_ != '{' && last_ != ',')) return false;
    while (end < text_.size() && text_[end] == ' ') ++end;
    return end < text_.size() && text_[end] == ':';
  }

  void singleQuoted() {
    const std::size_t end = endOfString(text_, at_);
    // One that its line does not end is no text.
    if (end < at_ + 2 || text_[end - 1] != text_[at_]) return copyTo(at_ + 1, false);
    put(fromSingleQuotes(text_.substr(at_ + 1, end - at_ - 2)), end);
  }

  void regex() {
    // No pattern is longer than a server allows.
    constexpr std::size_t longest = 40'000;
    const std::size_t most = std::min(text_.size(), at_ + longest);
    std::size_t end = at_ + 1;
    for (bool inClass = false; end < most && text_[end] != '\n'; ++end) {
      if (text_[end] == '/' && !inClass) break;
      if (text_[end] == '[') inClass = true;
      if (text_[end] == ']') inClass = false;
      if (text_[end] == '\\') ++end;
    }
    if (end >= most || text_[end] != '/') return copyTo(at_ + 1, false);
    ++end;
    while (end < text_.size() && isWordByte(text_[end])) ++end;
    put(quoted(std::string(text_.substr(at_, end - at_))), end);
  }

  /// The blank before the word goes with it.
  void notFinite(std::string_view name) {
    std::string_view sign;
    if (name == "Infinity" && !out_.empty() && out_.back() == '-') {
      sign = "-";
      out_.pop_back();
    }
    if (!out_.empty() && out_.back() == ' ') out_.pop_back();
    out_.append("\"").append(sign).append(name).append("\"");
    at_ += name.size();
    last_ = '"';
  }

  bool wrapper(std::string_view name, std::size_t open) {
    static constexpr std::array<std::string_view, 18> names{
        "NumberLong", "NumberInt", "NumberDecimal", "Long",    "Int32",  "Double",
        "Decimal128", "ISODate",   "ObjectId",      "BinData", "Binary", "UUID",
        "Timestamp",  "MinKey",    "MaxKey",        "DBRef",   "Code",   "BSONSymbol"};
    if (std::find(names.begin(), names.end(), name) == names.end()) return false;
    if (!brackets_) brackets_.emplace(text_);
    const std::size_t close = brackets_->closing(open);
    if (close == none) return false;
    put(rewritten(name, text_.substr(open + 1, close - open - 1)), close + 1);
    return true;
  }

  std::string rewritten(std::string_view name, std::string_view argument) const {
    if (name == "ISODate") return isoDate(argument, dates_);
    if (name == "BinData") return binData(argument);
    if (name == "Binary") return quoted(std::string(binaryMarker) + firstText(argument));
    if (name == "ObjectId") return objectId(argument);
    if (name == "UUID") return uuid(argument);
    if (name == "Timestamp") return timestamp(argument, dates_);
    if (name == "MinKey" || name == "MaxKey") return quoted(std::string(name));
    if (name == "Code" || name == "BSONSymbol") return quoted(firstText(argument));
    if (name == "DBRef") return quoted("DBRef(" + std::string(argument) + ")");
    if (name != "NumberLong" && name != "NumberInt") return number(argument);
    // No shell nests them; text that does must not exhaust the stack.
    constexpr int deepest = 20;
    if (depth_ == deepest) return withoutQuotes(argument);
    return withoutQuotes(TShellText(argument, dates_, depth_ + 1).rewrite());
  }

  std::string_view text_;
  const TDateTimeText& dates_;
  int depth_;
  std::size_t at_ = 0;
  std::string out_;
  char last_ = 0;     ///< the last byte that is no blank; a quote behind a value
  std::string open_;  ///< the brackets of documents and lists around this place
  std::optional<TBrackets> brackets_;
};

}  // namespace

std::string MongoShellToJson(std::string_view text, const TDateTimeText& dates) {
  return TShellText(text, dates).rewrite();
}

}  // namespace hollowmere
