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

/// Its digits as they are; words that JSON lacks stay quoted.
std::string numberDecimal(std::string_view argument) {
  const std::string text = unquoted(argument);
  return text.find_first_not_of("0123456789.eE+-") == std::string::npos ? text : quoted(text);
}

/// Seconds since 1970 and a counter; the moment is what counts.
std::string timestamp(std::string_view argument, const TDateTimeText& dates) {
  const std::size_t first = std::min(argument.find_first_of("0123456789"), argument.size());
  std::int64_t seconds = 0;
  const auto [end, fault] =
      std::from_chars(argument.data() + first, argument.data() + argument.size(), seconds);
  const bool good = fault == std::errc() && seconds <= INT32_MAX * std::int64_t{2} + 1;
  return quoted(good ? dates.localText(seconds * 1000) : unquoted(argument));
}

class TShellText {
 public:
  TShellText(std::string_view text, const TDateTimeText& dates, int depth = 0)
      : text_(text), dates_(dates), depth_(depth) {}

  std::string rewrite() {
    out_.reserve(text_.size());
    while (at_ < text_.size()) {
      if (text_[at_] == '"')
        copyTo(endOfString(text_, at_));
      else if (isWordByte(text_[at_]))
        word();
      else
        copyTo(at_ + 1);
    }
    return std::move(out_);
  }

 private:
  void copyTo(std::size_t end) {
    out_.append(text_, at_, end - at_);
    at_ = end;
  }

  void word() {
    std::size_t end = at_;
    while (end < text_.size() && isWordByte(text_[end])) ++end;
    const std::string_view name = text_.substr(at_, end - at_);
    if (name == "NaN" || name == "Infinity") return notFinite(name);
    if (end < text_.size() && text_[end] == '(' && wrapper(name, end)) return;
    copyTo(end);
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
  }

  bool wrapper(std::string_view name, std::size_t open) {
    static constexpr std::array<std::string_view, 8> names{
        "NumberLong", "NumberInt", "ISODate", "ObjectId", "BinData", "NumberDecimal", "UUID", "Timestamp"};
    if (std::find(names.begin(), names.end(), name) == names.end()) return false;
    if (!brackets_) brackets_.emplace(text_);
    const std::size_t close = brackets_->closing(open);
    if (close == none) return false;
    out_ += rewritten(name, text_.substr(open + 1, close - open - 1));
    at_ = close + 1;
    return true;
  }

  std::string rewritten(std::string_view name, std::string_view argument) const {
    if (name == "ISODate") return isoDate(argument, dates_);
    if (name == "BinData") return binData(argument);
    if (name == "ObjectId" || name == "UUID") return objectId(argument);
    if (name == "NumberDecimal") return numberDecimal(argument);
    if (name == "Timestamp") return timestamp(argument, dates_);
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
  std::optional<TBrackets> brackets_;
};

}  // namespace

std::string MongoShellToJson(std::string_view text, const TDateTimeText& dates) {
  return TShellText(text, dates).rewrite();
}

}  // namespace hollowmere
