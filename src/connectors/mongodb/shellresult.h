#pragma once

#include <string>
#include <vector>

#include "json/value.h"

namespace hollowmere {

/// What a shell said, whichever shell it was.
struct TShellResult {
  /// The documents and other values of the last page, in their order. The legacy shell's dates and binary
  /// values are texts in the user's own form (see MongoShellToJson()); today's keep their kinds.
  std::vector<TValue> values;
  /// What was printed and is no value, without the shell's own remarks.
  std::string text;
  bool more = false;           ///< there is a further page
  std::string error;           ///< empty: all went well
  bool accessRefused = false;  ///< the server refused for want of privileges
};

}  // namespace hollowmere
