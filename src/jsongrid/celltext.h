#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "connectors/datetimetext.h"
#include "json/value.h"

namespace hollowmere {

inline constexpr std::size_t wholeCell = static_cast<std::size_t>(-1);

/// A cell's text: booleans "True" and "False", numbers with all their digits, binaries "&base64;" + Base64,
/// date-times ISO 8601 in UTC, lists and objects as JSON text; null and no value at all are empty. A text
/// beyond limit bytes is cut at a character and ends in "...": the grid does not look at the rest of it.
std::string cellText(const TValue* value, std::size_t limit = wholeCell);

/// The same, always well-formed UTF-8: bytes that are none become U+FFFD.
std::string cleanCellText(const TValue* value, std::size_t limit = wholeCell);
/// Bytes as well-formed UTF-8, cleaned as above.
std::string cleanText(std::string_view bytes);

/// What became of an edited text: the cell's value, or why it was refused.
struct TCellEdit {
  TValue value;
  std::string refusal;
};

/// The value of a cell after its text was edited. A cell keeps its kind: text stays text, also when it looks
/// like a number; a number stays a number, a date-time one, and so on; an empty text makes them null, and a
/// text that is none is refused. A null or missing value takes columnKind, what its column usually holds;
/// where that is not known either (Null), typedScalar() reads it, and JSON lists and objects are recognised.
TCellEdit editedCell(const TValue* before, TKind columnKind, std::string_view text,
                     const TDateTimeText& dates);

/// Orders cells for a view: nothing, null, booleans, numbers, date-times, then all others by their text.
/// Negative, 0 or positive.
int compareCells(const TValue* a, const TValue* b);

/// Whether a text is in a cell's text, ASCII letter case ignored. sought is lower case.
bool cellContains(const TValue* value, std::string_view sought);

/// The bytes of a cell that holds binary data: a binary value, or a text with the "&base64;" marker. Nothing
/// when it holds none, or the text is not Base64.
std::optional<std::string> cellBytes(const TValue* value);
/// Bytes as they are kept in a cell: a binary value where the cell or its column holds such, else a text of
/// "&base64;" + Base64.
TValue binaryCell(const TValue* before, TKind columnKind, std::string bytes);

}  // namespace hollowmere
