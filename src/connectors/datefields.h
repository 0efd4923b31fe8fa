#pragma once

#include <string>
#include <string_view>

namespace hollowmere {

// Pieces of date-time texts. Readers cut off what they read and leave the text alone when they fail.

/// The text with blanks of every width as plain ones, marks of writing direction left out, and the ten
/// digits that begin with zero as 0-9.
std::string plainBlanksAndDigits(std::string_view text, char32_t zero);

/// Digits at the start of the text, cut off it; -1 when there are fewer than least. Reads at most most.
int readDigits(std::string_view& text, int least, int most);
/// A dot or comma and up to nine digits, as milliseconds; 0 when there is none. False: a dot alone.
bool readFraction(std::string_view& text, int& milliseconds);
/// Appends a number with zeros in front up to a width.
void appendPadded(std::string& out, int number, int width);
/// Appends a year: four digits, beyond 0-9999 five digits at least and a sign.
void appendYear(std::string& out, int year);
/// A year with a sign and five or six digits, as appendYear() writes it. False when there is none.
bool readSignedYear(std::string_view& text, int& year);

}  // namespace hollowmere
