#pragma once

#include <string>

#include "connectors/cassandra/casstype.h"
#include "connectors/datetimetext.h"
#include "connectors/nosqlcommon.h"
#include "json/value.h"

namespace hollowmere {

/// The bytes of a value for a column or marker of a type; value is not null. Text is read for what the column
/// holds: numbers in digits, "True", dates in the locale's forms, uuids, "&base64;" and Base64, JSON text of
/// collections, tuples and user types. lengths: of collections that stand in no other.
/// Throws std::runtime_error, its text beginning with the type, when the value does not fit.
std::string cassBytes(const TValue& value, const TCassType& type, TCollectionLengths lengths,
                      const TDateTimeText& dates);

}  // namespace hollowmere
