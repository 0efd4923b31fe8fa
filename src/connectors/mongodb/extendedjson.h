#pragma once

#include "json/value.h"

namespace hollowmere {

/// MongoDB's extended JSON, canonical or relaxed, as it was parsed, turned into the values that it stands
/// for, of the same kinds as BsonToJson() gives them: "$oid" an object id, "$numberInt" an integer, and so
/// on. An object that only looks like a wrapper stays as it is. Source: MongoDB specifications,
/// extended-json.
TValue fromExtendedJson(TValue value);

}  // namespace hollowmere
