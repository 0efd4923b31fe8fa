#pragma once

#include "jsongrid/export.h"

namespace hollowmere {

/// Limits of the spreadsheet format.
struct TSheetLimits {
  std::size_t rowsPerSheet = 1'048'575;  ///< below the captions; more rows go to further sheets
  std::size_t columns = 16'384;
  std::size_t cellLength = 32'767;  ///< UTF-16 units; longer texts are shortened and say so
};

/// Writes a table as a spreadsheet (.xlsx). Numbers are numbers as long as a spreadsheet keeps all of their
/// digits (15), else texts; date-times are dates in UTC, those before March 1900 and after 9999 texts; texts
/// are texts, never formulas. The rows pass through a temporary file; memory does not grow with them. False
/// when it was stopped; then, and when it throws TFileError or TExportError (too many columns), the file is
/// as it was before.
bool exportSpreadsheet(const TGridTable& table, TSafeFiles& files, const std::string& path,
                       const TExportWatch& watch, const TSheetLimits& limits = {});

}  // namespace hollowmere
