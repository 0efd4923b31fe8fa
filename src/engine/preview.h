#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "connectors/datetimetext.h"
#include "connectors/storeapi.h"
#include "engine/assembly.h"

namespace hollowmere {

/// One row of a preview: what it was and what it becomes, or why it cannot.
struct TPreviewRow {
  std::int64_t number = 0;  ///< from 1
  std::string rowText;
  TObject document;
  std::string error;                   ///< empty when there is a document
  std::vector<std::size_t> errorPath;  ///< to the node that failed, below the root; empty: the root itself
};

/// Reads the first rows of one root mapping and assembles them; nothing is written. The taker gives false
/// when it wants no more. Throws TStoreError when the source cannot be read at all.
void previewMapping(TSourceReader& reader, const std::vector<TDataSource>& sources, const TMapNode& mapping,
                    bool ignoreNulls, const TDateTimeText& dates, std::int64_t limit,
                    const std::function<bool(TPreviewRow&&)>& take);

}  // namespace hollowmere
