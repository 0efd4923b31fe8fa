#pragma once

#include <string>
#include <string_view>

#include "connectors/datetimetext.h"
#include "json/value.h"

namespace hollowmere {

// How a scalar is shown in the tree, and what an edited text makes of it.

/// "<JSON Object>" or "<JSON List>", the marker of a container.
inline constexpr std::string_view objectMarker = "<JSON Object>";
inline constexpr std::string_view listMarker = "<JSON List>";

/// "True" or "False", numbers as in JSON text, null and an empty binary as the empty text, everything else
/// by textForm(). Lists and objects give their marker.
std::string scalarText(const TValue& value);

/// The same, of at most so many bytes with "..." behind; line ends become blanks. Cheap for large values.
std::string shortScalarText(const TValue& value, std::size_t limit);

/// What a text typed where nothing was before stands for: nothing is null; a number of JSON's grammar a
/// number; "true" and "false" (any case) a boolean; "&base64;" + Base64 a binary; everything else, and every
/// text that holds "&str;", is text as it stands.
TValue typedScalar(std::string_view text);

/// What an edited text makes of a scalar. Its kind is kept where the text allows it: a text stays a text
/// whatever it looks like, a number a number of the same kind if it can, a date-time, object id or binary
/// (with its subtype) what it was. A text that does not suit the kind is read by typedScalar().
TValue editedScalar(const TValue& old, std::string_view text, const TDateTimeText& dates);

/// The scalar made a value of that kind, from its text; nothing changes when the text does not suit it.
/// True when it did.
bool convertScalar(TValue& value, TKind kind, const TDateTimeText& dates);

}  // namespace hollowmere
