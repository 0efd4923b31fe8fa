#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "sqlmongo/sqltokens.h"

namespace hollowmere {

/// The JSON number an unquoted word stands for: integer or decimal, sign and exponent allowed; "007", "+7"
/// and
/// ".5" are 7, 7 and 0.5. Digits are kept, however many.
std::optional<std::string> numberText(const TSqlToken& token);

/// A JavaScript string literal, in double quotes.
std::string quotedText(std::string_view text);

/// A name that JavaScript takes without quotes: letters, digits, "_" and "$" of ASCII.
bool isIdentifier(std::string_view name);
/// Identifiers joined by dots.
bool isIdentifierPath(std::string_view name);

/// A key of an object literal, quoted only where it must be.
std::string bareKey(std::string_view name);
/// object.name, or object["name"].
std::string memberOf(std::string_view object, std::string_view name);

/// Whether it is 24 hexadecimal digits.
bool isObjectId(std::string_view text);

/// Appends one character of a regular expression that is to stand for itself inside /.../.
void appendRegexCharacter(std::string& out, char c, std::string_view escaped);

}  // namespace hollowmere
