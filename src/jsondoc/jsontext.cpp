#include "jsondoc/jsontext.h"

#include <algorithm>

#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

std::string placeText(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const std::size_t start = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
  // Characters, not bytes: what follows the first byte of one does not count.
  const auto column = std::count_if(before.begin() + static_cast<std::ptrdiff_t>(start), before.end(),
                                    [](char c) { return (c & 0xc0) != 0x80; });
  return "Line " + std::to_string(lines + 1) + ", column " + std::to_string(column + 1) + ": ";
}

/// What TJsonError says without its byte, for which line and column stand.
std::string reasonOf(const TJsonError& error) {
  const std::string all = error.what(), place = " at byte " + std::to_string(error.offset());
  return all.ends_with(place) ? all.substr(0, all.size() - place.size()) : all;
}

}  // namespace

std::string TJsonFault::message() const {
  return reason.empty() ? invalidDocument : std::string(invalidDocument) + "\n" + reason;
}

TJsonReading readDocument(std::string_view text) {
  const std::size_t mark = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
  try {
    TValue value = parseJson(text.substr(mark));
    if (value.isNested()) return {std::move(value), {}};
    return {std::nullopt, {"A document is an object or a list, this is neither.", 0}};
  } catch (const TJsonError& error) {
    const std::size_t offset = std::min(mark + error.offset(), text.size());
    return {std::nullopt, {placeText(text, offset) + reasonOf(error) + ".", offset}};
  }
}

}  // namespace hollowmere
