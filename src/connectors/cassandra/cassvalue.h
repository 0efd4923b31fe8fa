#pragma once

#include <string>
#include <string_view>

#include "connectors/cassandra/casstype.h"
#include "connectors/datetimetext.h"
#include "connectors/nosqlcommon.h"
#include "json/value.h"

namespace hollowmere {

/// A column's bytes as a value of a row (getCassandraBSON of a column). Integers, booleans, floating-point
/// numbers and timestamps keep their kinds, varint and decimal all their digits; blobs that are text are
/// text, others binaries; uuids, addresses, dates, times and durations are text as CQL writes it. Lists, sets
/// and tuples become lists, maps and user types objects. An empty value of a type without an empty text is
/// null. lengths: those of the server's collections that stand in no other; frozen ones have 32 bits
/// everywhere. Throws std::runtime_error naming the type for bytes that are none of it.
TValue cassValue(std::string_view bytes, const TCassType& type, TCollectionLengths lengths,
                 const TDateTimeText& dates);

}  // namespace hollowmere
