#include "engine/nullfilter.h"

#include <algorithm>

namespace hollowmere {

namespace {

void removeNullsIn(TValue& value) {
  if (value.is(TKind::Object)) return removeNulls(value.asObject());
  if (!value.is(TKind::List)) return;
  for (TValue& element : value.asList())
    if (element.isNested()) removeNullsIn(element);
}

}  // namespace

void removeNulls(TObject& document) {
  bool any = false;
  for (TMember& member : document) {
    any = any || member.value.isNull();
    if (member.value.isNested()) removeNullsIn(member.value);
  }
  if (!any) return;
  const auto kept = std::remove_if(document.begin(), document.end(),
                                   [](const TMember& member) { return member.value.isNull(); });
  document.erase(kept, document.end());
}

}  // namespace hollowmere
