#pragma once

#include "json/value.h"

namespace hollowmere {

/// Takes every null member out of a document and of the objects in it. Nulls in lists stay: a list's
/// places mean something.
void removeNulls(TObject& document);

}  // namespace hollowmere
