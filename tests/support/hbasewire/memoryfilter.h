#pragma once

#include <map>
#include <string>

#include "Hbase.h"

namespace hollowmere::hbasewire {

/// What a filter leaves of a row: false when the row goes. passed counts the rows before it.
/// Throws std::invalid_argument for a text that is no filter, or one of a kind it does not have.
bool filterRow(const std::string& filter, const std::string& key, std::map<Text, TCell>& columns,
               std::int64_t passed);

}  // namespace hollowmere::hbasewire
