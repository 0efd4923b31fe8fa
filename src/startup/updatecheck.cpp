#include "startup/updatecheck.h"

#include <algorithm>
#include <cctype>

namespace hollowmere {

namespace {

constexpr std::string_view product = "hollowmere";

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

bool isBlank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

/// The page's text between its tags, white space as single blanks.
std::string plainText(std::string_view page) {
  std::string text;
  bool inTag = false;
  for (const char c : page) {
    if (c == '<' || c == '>') inTag = c == '<';
    const bool blank = inTag || c == '>' || isBlank(c);
    // A tag inside of a word parts nothing that matters here.
    if (!blank)
      text += c;
    else if (!text.empty() && text.back() != ' ')
      text += ' ';
  }
  return text;
}

/// Where the value of a link attribute stands: its first character behind the quote; npos at the end.
struct TLink {
  std::size_t at;
  std::string_view value;
};

TLink nextLink(std::string_view page, const std::string& low, std::size_t from) {
  constexpr std::string_view attribute = "href=";
  for (std::size_t at = low.find(attribute, from); at != std::string::npos; at = low.find(attribute, at)) {
    at += attribute.size();
    if (at >= page.size() || (page[at] != '"' && page[at] != '\'')) continue;
    const std::size_t end = page.find(page[at], at + 1);
    if (end == std::string_view::npos) break;
    return {end, page.substr(at + 1, end - at - 1)};
  }
  return {std::string::npos, {}};
}

/// A file of the product: its name, without folders and query, begins with the product's and has an ending.
bool isDownload(std::string_view link) {
  link = link.substr(0, link.find_first_of("?#"));
  const std::size_t slash = link.rfind('/');
  const std::string name = lowered(slash == std::string_view::npos ? link : link.substr(slash + 1));
  return name.starts_with(product) && name.find('.') != std::string::npos && !name.ends_with(".html");
}

std::string wordsBehind(const std::string& text, std::string_view mark, std::string_view end) {
  const std::size_t at = lowered(text).find(mark);
  if (at == std::string::npos) return {};
  const std::size_t begin = at + mark.size();
  std::string words = text.substr(begin, std::min(text.find_first_of(end, begin), text.size()) - begin);
  while (!words.empty() && std::string_view(" .,;)").find(words.back()) != std::string_view::npos)
    words.pop_back();
  return words;
}

}  // namespace

std::optional<TPublishedRelease> parseDownloadPage(std::string_view page) {
  const std::string low = lowered(page);
  for (TLink link = nextLink(page, low, 0); link.at != std::string::npos;
       link = nextLink(page, low, link.at)) {
    if (!isDownload(link.value)) continue;
    const std::size_t tagEnd = std::min(page.find('>', link.at), page.size() - 1);
    const std::string text = plainText(page.substr(tagEnd + 1));
    TPublishedRelease release{std::string(link.value), wordsBehind(text, "version ", " ,;()"),
                              wordsBehind(text, "released ", ";()")};
    if (!release.version.empty()) return release;
  }
  return std::nullopt;
}

bool announces(const std::string& published, const std::string& running, const std::string& warned) {
  return published.find('.') != std::string::npos && published != running && published != warned;
}

}  // namespace hollowmere
