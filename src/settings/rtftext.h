#pragma once

#include <string>
#include <string_view>

namespace hollowmere {

/// The text of an RTF document (Rich Text Format 1.9) for a read-only view: paragraphs, line breaks, tabs and
/// characters, those of \'hh taken as Windows-1252; fonts, colours, pictures and whatever else stands there
/// for the looks is passed over. Never fails: damaged input gives the text that can be made out. UTF-8.
std::string rtfText(std::string_view rtf);

}  // namespace hollowmere
