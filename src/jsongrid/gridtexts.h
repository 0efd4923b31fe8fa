#pragma once

#include <string_view>

// The fixed texts of document grids; tests repeat them literally.
namespace hollowmere::gridtexts {

inline constexpr char invalidDocument[] = "Invalid JSON document.";
inline constexpr char noAttributeName[] = "Atribute name is not specified.";
inline constexpr char attributeExists[] = "Such attrubute already exists.";

inline constexpr char scalarRow[] = "This row is a single value: it has no attributes but \"value\".";
inline constexpr char noBinary[] = "The cell holds no binary data.";

}  // namespace hollowmere::gridtexts
