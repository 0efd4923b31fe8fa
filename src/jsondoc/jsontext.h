#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "json/value.h"

namespace hollowmere {

/// The message for a text that is no JSON document.
inline constexpr const char* invalidDocument = "Invalid JSON document.";

/// Where and why a text is no document.
struct TJsonFault {
  std::string reason;      ///< with line and column, for people
  std::size_t offset = 0;  ///< bytes before it

  /// invalidDocument, and the reason on a line of its own.
  [[nodiscard]] std::string message() const;
};

/// What reading a text gave: a document, an object or a list, or the fault.
struct TJsonReading {
  std::optional<TValue> document;
  TJsonFault fault;
};

/// Reads a document's text; a byte order mark before it is passed over. Never throws for a bad text.
TJsonReading readDocument(std::string_view text);

}  // namespace hollowmere
