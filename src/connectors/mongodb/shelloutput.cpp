#include "connectors/mongodb/shelloutput.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "connectors/mongodb/mongoclient.h"
#include "connectors/nosqlcommon.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

template <typename Take>
void eachLine(std::string_view text, Take take) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    take(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

/// A line in lower case, without what stands in double quotes: that is data.
std::string bareWords(std::string_view line) {
  std::string out;
  bool inText = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (inText && c == '\\')
      ++i;
    else if (c == '"')
      inText = !inText;
    else if (!inText)
      out += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  }
  return out;
}

bool marksError(const std::string& words) {
  static constexpr std::array<std::string_view, 5> marks{"[thread1]", "syntaxerror",
                                                         "error:", "errmsg:", "src/mongo/shell"};
  return std::any_of(marks.begin(), marks.end(),
                     [&](std::string_view mark) { return words.find(mark) != std::string::npos; });
}

bool isRemark(std::string_view line) {
  return line.find("I CONTROL") != std::string_view::npos || line.starts_with("switched to db ") ||
         line.starts_with("MongoDB server version:") || line.starts_with("WARNING: shell and server");
}

bool asksForMore(std::string_view line) { return equalIgnoringCase(trim(line), "Type \"it\" for more"); }

/// The end of the JSON value that begins at an offset; npos when it has none.
std::size_t endOfValue(std::string_view text, std::size_t at) {
  std::size_t depth = 0;
  for (bool inText = false; at < text.size(); ++at) {
    const char c = text[at];
    if (inText && c == '\\')
      ++at;
    else if (c == '"')
      inText = !inText;
    else if (!inText && (c == '{' || c == '['))
      ++depth;
    else if (!inText && (c == '}' || c == ']') && depth > 0)
      --depth;
    else if (!inText && depth == 0 && blanks.find(c) != std::string_view::npos)
      return at;
    if (depth == 0 && !inText && (c == '}' || c == ']' || c == '"')) return at + 1;
  }
  return depth == 0 ? at : std::string_view::npos;
}

}  // namespace

std::string withoutUseEcho(std::string_view output) {
  if (output.find("switched to") == std::string_view::npos) return std::string(output);
  std::string kept;
  bool dropped = false;
  eachLine(output, [&](std::string_view line) {
    if (!dropped && line.find("switched to") != std::string_view::npos)
      dropped = true;
    else
      kept.append(line) += '\n';
  });
  return std::string(trim(kept));
}

std::optional<std::vector<TValue>> parseJsonSequence(std::string_view text) {
  std::vector<TValue> values;
  TJsonReader reader;
  std::size_t at = 0;
  while ((at = text.find_first_not_of(blanks, at)) != std::string_view::npos) {
    const std::size_t end = endOfValue(text, at);
    if (end == std::string_view::npos) return std::nullopt;
    try {
      values.push_back(reader.read(text.substr(at, end - at)));
    } catch (const TJsonError&) {
      return std::nullopt;
    }
    at = end;
  }
  return values;
}

std::string shellErrorText(std::string_view output, const TDateTimeText& dates) {
  const std::string json = MongoShellToJson(output, dates);
  // The document stands near the beginning; a text full of brackets must not cost a search each.
  int tries = 10;
  for (std::size_t at = json.find('{'); at != std::string::npos && tries-- > 0; at = json.find('{', at + 1)) {
    const std::size_t end = endOfValue(json, at);
    if (end == std::string::npos) continue;
    const auto parsed = parseJsonSequence(std::string_view(json).substr(at, end - at));
    if (!parsed || parsed->size() != 1 || !parsed->front().is(TKind::Object)) continue;
    const TValue* code = parsed->front().asObject().find("code");
    const TValue* message = parsed->front().asObject().find("errmsg");
    if (!message || !message->is(TKind::Text)) continue;
    const std::int64_t number = code && code->is(TKind::Int) ? code->asInt() : 0;
    return mongoErrorText(static_cast<std::uint32_t>(number), message->asText());
  }
  return std::string(trim(output));
}

TShellResult readShellOutput(std::string_view output, const TDateTimeText& dates) {
  TShellResult result;
  std::string page;
  bool failed = false;
  bool ended = false;
  eachLine(output, [&](std::string_view line) {
    if (isRemark(line)) return;
    result.more = asksForMore(line);
    if (result.more) ended = true;
    if (result.more) return;
    // What follows the question is the next page.
    if (std::exchange(ended, false)) page.clear();
    failed = failed || marksError(bareWords(line));
    page.append(line) += '\n';
  });
  if (failed) {
    result.error = shellErrorText(page, dates);
    result.more = false;
  } else if (auto values = parseJsonSequence(MongoShellToJson(page, dates))) {
    result.values = std::move(*values);
  } else {
    result.text = std::string(trim(page));
  }
  return result;
}

}  // namespace hollowmere
