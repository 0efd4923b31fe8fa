#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "connectors/storeapi.h"

namespace hollowmere {

/// The names of the fields in rows, in the order in which they are first seen; the fields of a nested
/// object follow it as paths ("address.city").
std::vector<std::string> fieldNames(const std::vector<TObject>& rows);

/// The field names of every data source node of a root mapping, by the node's path below the root (empty:
/// the root itself), from the first rows. Nested queries run once for some of the parent rows. Throws
/// TStoreError when the root cannot be read; a nested query that fails gives no fields.
std::map<std::vector<std::size_t>, std::vector<std::string>> sampleFields(
    TSourceReader& reader, const std::vector<TDataSource>& sources, const TMapNode& mapping);

}  // namespace hollowmere
