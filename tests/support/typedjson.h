#pragma once

#include <stdexcept>
#include <string>

#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

/// JSON text with the kinds that JSON lacks in wrappers: {"$date": milliseconds}, {"$binary": Base64},
/// {"$oid": 24 digits}, {"$decimal": digits}.
inline TValue unwrapKinds(TValue value) {
  if (value.is(TKind::List))
    for (TValue& element : value.asList()) element = unwrapKinds(std::move(element));
  if (!value.is(TKind::Object)) return value;
  TObject& object = value.asObject();
  if (object.size() == 1) {
    const std::string& name = object.begin()->name;
    const TValue& inner = object.begin()->value;
    if (name == "$date") return TValue::dateTime(inner.asInt());
    if (name == "$binary") return TValue::binary(fromBase64(inner.asText()).value());
    if (name == "$decimal") return TValue::decimal(inner.asText());
    TObjectId id;
    if (name == "$oid") {
      if (!parseHex(inner.asText(), id)) throw std::invalid_argument("no object id: " + inner.asText());
      return id;
    }
  }
  for (TMember& member : object) member.value = unwrapKinds(std::move(member.value));
  return value;
}

/// The reverse, so that values of all kinds can be told apart in a message.
inline TValue wrapKinds(const TValue& value) {
  switch (value.kind()) {
    case TKind::DateTime: return TObject{{"$date", value.asMilliseconds()}};
    case TKind::Binary: return TObject{{"$binary", toBase64(value.asText())}};
    case TKind::Decimal: return TObject{{"$decimal", value.asText()}};
    case TKind::ObjectId: return TObject{{"$oid", toHex(value.asObjectId())}};
    case TKind::List: {
      TList list;
      for (const TValue& element : value.asList()) list.push_back(wrapKinds(element));
      return list;
    }
    case TKind::Object: {
      TObject object;
      for (const TMember& member : value.asObject()) object.add(member.name, wrapKinds(member.value));
      return object;
    }
    default: return value;
  }
}

inline TValue typedJson(const std::string& text) { return unwrapKinds(parseJson(text)); }
inline std::string typedText(const TValue& value) { return toJson(wrapKinds(value)); }

}  // namespace hollowmere
