#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "support/mongowire/bsondoc.h"

namespace hollowmere::mongowire {

/// Collections as lists of documents in the order of their insertion, named "database.collection".
/// Safe in any thread; everything handed out is a copy.
class TMemoryStore {
 public:
  using TRows = std::vector<TBson>;

  /// Adds a document, with an ObjectId in front when it has no _id. Nothing when it went in, else the text of
  /// the E11000 error.
  std::optional<std::string> insert(const std::string& nameSpace, std::string_view document);
  /// Replaces the first match, keeping its _id; inserts when nothing matches and `upsert` says so.
  struct TReplaced {
    bool matched = false;
    std::optional<TBson> upsertedId;  ///< {_id: ...} of a new document
  };
  TReplaced replace(const std::string& nameSpace, const bson_t* filter, const bson_t* document, bool upsert);
  /// Removes the matches, only the first with `one`; says how many.
  std::size_t remove(const std::string& nameSpace, const bson_t* filter, bool one);
  /// False when there was no such collection.
  bool drop(const std::string& nameSpace);

  TRows rows(const std::string& nameSpace) const;
  /// The matches, in the order of insertion.
  TRows find(const std::string& nameSpace, const bson_t* filter) const;
  /// Every "database.collection", sorted.
  std::vector<std::string> nameSpaces() const;

 private:
  struct TCollection {
    TRows rows;
    std::unordered_set<std::string> ids;
  };

  mutable std::mutex mutex_;
  std::map<std::string, TCollection> collections_;
};

/// Stable sort by one top-level field; a missing one counts as null.
void sortRows(TMemoryStore::TRows& rows, const char* field, bool descending);

}  // namespace hollowmere::mongowire
