#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>

#include "connectors/datetimetext.h"
#include "json/value.h"

namespace hollowmere {

// Conversions that the stores share. Pure functions, safe from every thread.
// Overloads on TValue are templates: its implicit constructors would make calls with plain text ambiguous.

/// Name of a variant's type code, the low 12 bits of which count; "varString" when there is none.
std::string_view VarTypeName(int code);
/// "varNull", "varBoolean", "varInteger" (32 bits) or "varInt64", "varDouble", "varDate", "varUnknown" for a
/// list or object, "varString" for everything else.
std::string_view VarTypeName(const TValue& value);

/// Each double quote as "&quot;".
std::string EscapeQuotes(std::string_view text);
/// The same of a text; other kinds as they are.
template <std::same_as<TValue> T>
TValue EscapeQuotes(T value) {
  if (value.is(TKind::Text) && value.asText().find('"') != std::string::npos)
    value.asText() = EscapeQuotes(std::string_view(value.asText()));
  return value;
}

/// Trims the text, then "&quot;" becomes a double quote, then each "&str;" goes.
std::string UnescapeMarkers(std::string_view text);
/// The same of a text; other kinds as they are.
template <std::same_as<TValue> T>
TValue UnescapeMarkers(T value) {
  if (value.is(TKind::Text)) value.asText() = UnescapeMarkers(std::string_view(value.asText()));
  return value;
}

/// "0.00####": two to six decimals, no exponent; "NaN", "Infinity", "-Infinity".
std::string FormatNumber(double number);

/// A value as plain text: texts as they are, numbers in digits (doubles by FormatNumber), "true"/"false",
/// date-times in ISO 8601 UTC, binaries "&base64;" + Base64, object ids in hexadecimal, null empty, lists
/// and objects as compact JSON.
std::string textForm(const TValue& value);

/// Whether the bytes are strict UTF-8.
bool isValidText(std::string_view bytes);

/// Whether every store takes the bytes as a text and gives them back: UTF-8 without control characters (tab
/// and line ends may be), without blanks or line ends at its ends, which are trimmed, and without markers.
bool isPlainText(std::string_view bytes);

/// What a text of a document becomes when a store with types takes it: "true" and "false" (any case) a
/// Boolean; "&base64;" + Base64, and bytes that are no text, a Binary (not in lists, where they stay);
/// a date-time with "/", ":" or a blank in it a DateTime; otherwise the text after UnescapeMarkers().
/// Nothing when the text is to be stored exactly as it stands, the usual case, found without allocating.
/// Throws std::runtime_error when what follows the marker is not Base64.
std::optional<TValue> convertText(const std::string& text, bool inList, const TDateTimeText& dates);

/// The CQL type of a validator class text ("org.apache.cassandra.db.marshal.Int32Type"): collections with
/// their element types, "unknown" for classes without one. Where collections stand in each other the
/// outermost counts; FrozenType and ReversedType are looked through. No text at all gives "text".
std::string CassandraValidatorToCqlType(std::string_view validator);

/// How long the counts and lengths inside a collection are. Servers before 3.0 send 16 bits over Thrift,
/// except in frozen and inner collections; later ones 32 bits. The other form is taken when only that one
/// fits the bytes.
enum class TCollectionLengths { Short16, Int32 };

/// Text of a column's bytes by its CQL type, "frozen<...>" looked through. Empty bytes give the empty text.
/// - A timestamp is local date-time text, blobs that are no text are "&base64;" + Base64.
/// - decimal: 8 bytes that are not what a server makes of a number (scale, then shortest digits) are a
///   64-bit integer.
/// - timeuuid, counter, inet, smallint, tinyint, date and time are read when the length is theirs; other
///   types, and bytes of another length, as text or, when they are none, as a blob.
/// - A duration is text as CQL writes it: "1mo2d3ns".
/// - Lists, sets and tuples become a JSON list, maps a JSON object whose keys are text.
/// - quote makes a CQL literal: text types and timestamps (as ISO 8601 with offset) in single quotes,
///   collections in CQL's own form.
/// Throws std::runtime_error, naming the type, for bytes of the wrong length or a torn collection.
std::string CassandraBytesToText(std::string_view bytes, std::string_view cqlType, bool quote,
                                 const TDateTimeText& dates,
                                 TCollectionLengths lengths = TCollectionLengths::Int32);

/// The output of MongoDB's shells, the legacy one or today's, as JSON text: NumberLong(...), NumberInt(...),
/// NumberDecimal(...), Long(...) and the like as bare numbers, ISODate(...) and Timestamp(...) as quoted
/// local date-time text, ObjectId(...) as its quoted digits, BinData(...), Binary.createFromBase64(...) and
/// UUID(...) as "&base64;" text, NaN and the infinities as quoted words. Within documents and lists names
/// without quotes and texts in single quotes get double ones, regular expressions become text, undefined
/// null. What stands in double quotes, a wrapper that does not end and a date that cannot be read stay as
/// they are.
std::string MongoShellToJson(std::string_view text, const TDateTimeText& dates);

/// A filter text for HBase: line ends become blanks, and the language's words, with a blank on each side,
/// upper case. What stands in single quotes keeps its case.
std::string NormalizeHBaseFilter(std::string_view filter);

}  // namespace hollowmere
