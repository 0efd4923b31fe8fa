#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/datetimetext.h"
#include "connectors/mongodb/shellresult.h"

namespace hollowmere {

/// The legacy shell's output without the line that echoes "use", trimmed.
std::string withoutUseEcho(std::string_view output);

/// What the legacy shell printed, sorted out: remarks go, lines that mark an error make the whole an error,
/// and of several pages the last counts. An output that is not values from its beginning to its end is text.
TShellResult readShellOutput(std::string_view output, const TDateTimeText& dates);

/// JSON values that stand one after the other; nothing when anything else stands there. Commas between them
/// are not asked for.
std::optional<std::vector<TValue>> parseJsonSequence(std::string_view text);

/// "Error Code: " ... of an error document ("code", "errmsg"), or the text as it is when there is none in it.
std::string shellErrorText(std::string_view output, const TDateTimeText& dates);

}  // namespace hollowmere
