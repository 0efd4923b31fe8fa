#include "jsondoc/keepkinds.h"

#include <algorithm>

#include "json/json.h"

namespace hollowmere {

namespace {

bool readsAlike(const TValue& old, const TValue& edited) {
  if (old.is(edited.kind()) && old.subtype() == edited.subtype()) return false;  // nothing to be kept
  return toJson(old) == toJson(edited);
}

}  // namespace

void keepKinds(const TValue& old, TValue& edited) {
  if (old.is(TKind::List) && edited.is(TKind::List)) {
    const std::size_t both = std::min(old.asList().size(), edited.asList().size());
    for (std::size_t i = 0; i < both; ++i) keepKinds(old.asList()[i], edited.asList()[i]);
  } else if (old.is(TKind::Object) && edited.is(TKind::Object)) {
    // Most members stand where they stood.
    auto at = old.asObject().begin();
    for (TMember& member : edited.asObject()) {
      const bool same = at != old.asObject().end() && at->name == member.name;
      const TValue* before = same ? &at->value : old.asObject().find(member.name);
      if (at != old.asObject().end()) ++at;
      if (before) keepKinds(*before, member.value);
    }
  } else if (!old.isNested() && !edited.isNested() && readsAlike(old, edited)) {
    edited = old;
  }
}

}  // namespace hollowmere
