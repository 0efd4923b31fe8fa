#pragma once

#include <string>
#include <string_view>

#include "connectors/datetimetext.h"

namespace hollowmere {

struct TScalarText {
  std::string text;
  bool isNumber = false;  ///< stands without quotes in JSON
};

/// The bytes of a value that is no collection. cql: timestamps as CQL reads them. Throws
/// std::runtime_error for a wrong length.
TScalarText cassandraScalar(std::string_view bytes, std::string_view type, bool cql,
                            const TDateTimeText& dates);

/// Ends a conversion that cannot go on.
[[noreturn]] void throwBadBytes(std::string_view type, const std::string& reason);

}  // namespace hollowmere
