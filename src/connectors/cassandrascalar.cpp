#include "connectors/cassandrascalar.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <stdexcept>

#include "connectors/cassandranumber.h"
#include "connectors/localtime.h"
#include "connectors/markers.h"
#include "connectors/nosqlcommon.h"
#include "json/encoding.h"

namespace hollowmere {

namespace {

using TConvert = TScalarText (*)(std::string_view bytes);

TScalarText number(std::string text) { return {std::move(text), true}; }

TScalarText integer(std::string_view bytes) { return number(std::to_string(bigEndian(bytes))); }

TScalarText real(double value) { return {FormatNumber(value), std::isfinite(value)}; }

TScalarText float64(std::string_view bytes) { return real(std::bit_cast<double>(bigEndian(bytes))); }

TScalarText float32(std::string_view bytes) {
  return real(static_cast<double>(std::bit_cast<float>(static_cast<std::int32_t>(bigEndian(bytes)))));
}

TScalarText boolean(std::string_view bytes) { return {bytes.front() != 0 ? "True" : "False"}; }

TScalarText uuid(std::string_view bytes) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    const auto byte = static_cast<unsigned char>(bytes[i]);
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return {std::move(text)};
}

TScalarText blob(std::string_view bytes) {
  if (isValidText(bytes)) return {std::string(bytes)};
  return {std::string(binaryMarker) + toBase64(bytes)};
}

/// Four bytes with dots, or eight groups of hexadecimal digits.
TScalarText address(std::string_view bytes) {
  const bool shortForm = bytes.size() == 4;
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += shortForm ? 1 : 2) {
    const auto high = static_cast<unsigned char>(bytes[i]);
    char group[8];
    if (shortForm)
      std::snprintf(group, sizeof group, "%u", unsigned{high});
    else
      std::snprintf(group, sizeof group, "%x", high << 8U | static_cast<unsigned char>(bytes[i + 1]));
    text.append(i == 0 ? "" : shortForm ? "." : ":").append(group);
  }
  return {std::move(text)};
}

/// Days, with 1970-01-01 in the middle of the unsigned range.
TScalarText date(std::string_view bytes) {
  const std::int64_t days = (bigEndian(bytes) & 0xFFFFFFFF) - 0x80000000LL;
  const auto parts = wallParts(days * 86'400'000);
  if (!parts) return {std::to_string(days)};
  char text[24];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", parts->year, parts->month, parts->day);
  return {text};
}

/// Nanoseconds since midnight.
TScalarText timeOfDay(std::string_view bytes) {
  constexpr std::int64_t second = 1'000'000'000;
  const std::int64_t nanoseconds = bigEndian(bytes);
  if (nanoseconds < 0 || nanoseconds >= 86'400 * second) return integer(bytes);
  const std::int64_t seconds = nanoseconds / second;
  char text[24];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d.%09d", static_cast<int>(seconds / 3600),
                static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60),
                static_cast<int>(nanoseconds % second));
  return {text};
}

/// "1mo2d3ns", as CQL reads durations; "0s" for none.
TScalarText duration(std::string_view bytes) {
  const auto months = takeVint(bytes), days = takeVint(bytes), nanoseconds = takeVint(bytes);
  if (!months || !days || !nanoseconds || !bytes.empty()) throwBadBytes("duration", "it is torn");
  std::string text;
  const auto add = [&text](std::uint64_t number, const char* unit) {
    if (number > 0) text += std::to_string(number) + unit;
  };
  const auto size = [](std::int64_t number) {
    return number < 0 ? ~static_cast<std::uint64_t>(number) + 1 : static_cast<std::uint64_t>(number);
  };
  if (*months < 0 || *days < 0 || *nanoseconds < 0) text += '-';
  add(size(*months) / 12, "y");
  add(size(*months) % 12, "mo");
  add(size(*days), "d");
  constexpr std::uint64_t second = 1'000'000'000;
  const std::uint64_t left = size(*nanoseconds);
  add(left / (3600 * second), "h");
  add(left / (60 * second) % 60, "m");
  add(left / second % 60, "s");
  add(left / 1'000'000 % 1000, "ms");
  add(left / 1000 % 1000, "us");
  add(left % 1000, "ns");
  return {text.empty() ? "0s" : text};
}

TScalarText decimal(std::string_view bytes) {
  if (isServerDecimal(bytes))
    return number(decimalText(varintText(bytes.substr(4)), bigEndian(bytes.substr(0, 4))));
  if (bytes.size() != 8) throwBadBytes("decimal", std::to_string(bytes.size()) + " bytes");
  return integer(bytes);
}

TScalarText varint(std::string_view bytes) { return number(varintText(bytes)); }

struct TScalarType {
  std::string_view name;
  std::size_t length;  ///< 0: any
  TConvert convert;
  /// Bytes of another length are a fault; otherwise they are read as text.
  bool strict = true;
};

constexpr std::array<TScalarType, 18> scalarTypes{{
    {"blob", 0, blob},
    {"bigint", 8, integer},
    {"decimal", 0, decimal},
    {"uuid", 16, uuid},
    {"double", 8, float64},
    {"float", 4, float32},
    {"int", 4, integer},
    {"varint", 0, varint},
    {"boolean", 1, boolean},
    {"counter", 8, integer, false},
    {"timeuuid", 16, uuid, false},
    {"inet", 4, address, false},
    {"inet", 16, address, false},
    {"smallint", 2, integer, false},
    {"tinyint", 1, integer, false},
    {"date", 4, date, false},
    {"time", 8, timeOfDay, false},
    {"duration", 0, duration},
}};

void checkLength(std::string_view bytes, std::string_view type, std::size_t length) {
  if (bytes.size() != length)
    throwBadBytes(type, std::to_string(bytes.size()) + " bytes instead of " + std::to_string(length));
}

}  // namespace

void throwBadBytes(std::string_view type, const std::string& reason) {
  throw std::runtime_error("cannot read a Cassandra value of type " + std::string(type) + ": " + reason);
}

TScalarText cassandraScalar(std::string_view bytes, std::string_view type, bool cql,
                            const TDateTimeText& dates) {
  if (type == "timestamp") {
    checkLength(bytes, type, 8);
    const std::int64_t moment = bigEndian(bytes);
    return {cql ? localIsoText(moment) : dates.localText(moment)};
  }
  for (const TScalarType& known : scalarTypes) {
    if (known.name != type || (!known.strict && known.length != bytes.size())) continue;
    if (known.length > 0) checkLength(bytes, type, known.length);
    return known.convert(bytes);
  }
  const bool text = type == "ascii" || type == "text" || type == "varchar";
  if (!isValidText(bytes)) {
    if (text) throwBadBytes(type, "not UTF-8");
    return blob(bytes);
  }
  return {std::string(bytes)};
}

}  // namespace hollowmere
