#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "connectors/storeapi.h"

namespace hollowmere {

/// One end of a copy.
struct TCopySide {
  TStoreOptions options;  ///< the connection, and the flag that stops the copy
  std::string database;
  std::string collection;
};

struct TCopyOrder {
  TCopySide source;
  TCopySide target;
  std::vector<std::string> attributes;  ///< those to be copied; "_id" only when it is among them
};

/// Why a copy cannot begin, in the order of the checks; empty when it can. all: attributes do not matter, the
/// whole documents are copied.
std::string checkCopy(const TCopyOrder& order, bool all);

struct TCopyResult {
  std::int64_t copied = 0;
  std::int64_t total = 0;
  std::string error;  ///< empty: all of them
};

/// Told now and then; on the calling thread.
using TCopyProgress = std::function<void(std::int64_t copied, std::int64_t total)>;

/// Copies documents from one collection to another, on other servers or the same, a batch at a time: memory
/// does not grow with the collection. Without attributes whole documents are copied as they are, byte by
/// byte. Waits for its end. A target that refuses a document ends the copy.
TCopyResult copyCollection(const TCopyOrder& order, const TCopyProgress& progress = {});

}  // namespace hollowmere
