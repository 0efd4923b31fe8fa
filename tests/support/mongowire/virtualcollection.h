#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "support/mongowire/bsondoc.h"
#include "support/mongowire/wire.h"

namespace hollowmere::mongowire {

/// Appends the encoded document with this index (from 0). Called by several threads at once; the same index
/// must always give the same document.
using TGenerator = std::function<void(std::uint64_t index, std::string& out)>;

/// One document for all, its named top-level int32, int64 and ObjectId fields overwritten in place by the
/// index (an ObjectId in its last eight bytes, high byte first). Throws std::invalid_argument for other
/// fields.
TGenerator patchedTemplate(const TBson& document, const std::vector<std::string>& fields);
/// A row of usual fields padded to exactly `bytes` encoded bytes, to be patched in "_id" and "number" (both
/// int64). Throws std::invalid_argument below 128.
TBson sampleDocument(std::size_t bytes);

struct TVirtualOptions {
  std::uint64_t count = 0;
  TGenerator generate;
  /// How many documents a find with a filter on one field other than _id gets. They are not looked up: for
  /// the integer v (0 for another type) they are the indexes v * rowsPerMatch and on, modulo `count`.
  std::uint64_t rowsPerMatch = 1;
};

/// A collection of generated documents, read under any name: millions of them are served without being held.
/// find gives index order and honours skip, limit, batchSize; {_id: v} gives the document with index v; a
/// sort is taken to be by _id. count and an aggregate answer how many there are. Safe in any thread.
class TVirtualCollection {
 public:
  explicit TVirtualCollection(TVirtualOptions options) : options_(std::move(options)) {}

  /// Puts the answer frame for find, getMore, killCursors, count, aggregate or listCollections into `frame`;
  /// false and nothing for any other command. Throws TCommandError for what a server refuses.
  bool answer(const TRequest& request, std::string& frame);
  /// Documents handed out so far.
  std::uint64_t served() const;

 private:
  struct TCursor {
    std::string nameSpace;
    std::uint64_t next = 0;
    std::uint64_t end = 0;
  };

  TCursor select(const bson_t* filter) const;
  void find(const TRequest& request, std::string& frame);
  void getMore(const TRequest& request, std::string& frame);
  void killCursors(const TRequest& request, std::string& frame);
  void count(const TRequest& request, std::string& frame);
  void aggregate(const TRequest& request, std::string& frame);
  void listCollections(const TRequest& request, std::string& frame);
  void fillBatch(TCursorReply& reply, TCursor& cursor, std::uint64_t batchSize);

  const TVirtualOptions options_;
  mutable std::mutex mutex_;
  std::int64_t lastCursor_ = 7000000000;
  std::map<std::int64_t, TCursor> cursors_;
  std::uint64_t served_ = 0;
};

}  // namespace hollowmere::mongowire
