#pragma once

#include <string>

namespace hollowmere {

/// The first key that a row behind that one can have; empty when there is none.
std::string keyBehind(const std::string& key);

/// The first key behind all that begin so; empty when there is none.
std::string keyBehindPrefix(std::string prefix);

}  // namespace hollowmere
