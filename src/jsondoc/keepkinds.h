#pragma once

#include "json/value.h"

namespace hollowmere {

/// A document that was written as JSON text, edited there and read again has lost the kinds that JSON lacks.
/// Each value that still reads as the one at its place in the old document, by names and positions, is that
/// value again.
void keepKinds(const TValue& old, TValue& edited);

}  // namespace hollowmere
