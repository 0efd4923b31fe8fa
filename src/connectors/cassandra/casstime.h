#pragma once

#include <optional>
#include <string>

#include "connectors/cassandra/casstype.h"
#include "connectors/datetimetext.h"
#include "json/value.h"

namespace hollowmere {

/// The bytes of a date ("2026-01-02", or a date-time's day: in UTC when it is midnight there, else the local
/// one), a time of day ("13:14:15.123456789", or nanoseconds since midnight) or a duration ("1y2mo3d4h5m6s",
/// also with w, ms, us and ns). Nothing when the value is none.
std::optional<std::string> cassTimeBytes(const TValue& value, TCassType::TBase base,
                                         const TDateTimeText& dates);

}  // namespace hollowmere
