#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "connectors/storeapi.h"
#include "engine/targettype.h"

namespace hollowmere {

/// A field of sampled rows, and the target type that keeps its first value that is not null as it is.
struct TSampledField {
  std::string name;
  TTargetType type = TTargetType::String;
};

/// The fields in rows, in the order in which they are first seen; the fields of a nested object follow it as
/// paths ("address.city").
std::vector<TSampledField> sampledFields(const std::vector<TObject>& rows);

/// The fields of every data source node of a root mapping, by the node's path below the root (empty:
/// the root itself), from the first rows. Nested queries run once for some of the parent rows. Throws
/// TStoreError when the root cannot be read; a nested query that fails gives no fields.
std::map<std::vector<std::size_t>, std::vector<TSampledField>> sampleFields(
    TSourceReader& reader, const std::vector<TDataSource>& sources, const TMapNode& mapping);

}  // namespace hollowmere
