#pragma once

#include <string>
#include <utility>
#include <vector>

#include "json/value.h"

namespace hollowmere {

using TInfoRows = std::vector<std::pair<std::string, std::string>>;

/// The answers of dbStats and collStats as labels and values; fields that the server left out are left out.
TInfoRows databaseInfo(const TObject& stats);
TInfoRows collectionInfo(const TObject& stats);

}  // namespace hollowmere
