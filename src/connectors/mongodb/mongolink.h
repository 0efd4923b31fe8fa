#pragma once

#include "connectors/mongodb/bsonvalue.h"
#include "connectors/mongodb/mongoclient.h"
#include "connectors/mongodb/mongoerror.h"

namespace hollowmere {

/// One connection and the calls that everything beside loads makes on it. Belongs to one thread.
class TMongoLink {
 public:
  /// Throws TStoreError (Connect).
  TMongoLink(const TStoreOptions& options, const std::string& fixedText);

  [[nodiscard]] mongoc_client_t* client() const { return client_.get(); }
  [[nodiscard]] TMongoCollectionPtr collection(const std::string& database, const std::string& name) const;

  /// Kinds of the command's values stay what they are. Throws TMongoError.
  [[nodiscard]] TObject run(const std::string& database, const TObject& command) const;
  /// All documents of a cursor. Throws TMongoError.
  static std::vector<TObject> all(const TMongoCursorPtr& cursor);

 private:
  TMongoClientPtr client_;
};

/// The error that a cursor ended with, when it did; "$err" of an older server's reply is one, too. Throws
/// TMongoError.
void checkCursor(mongoc_cursor_t* cursor);
void checkReply(const bson_t& reply);
[[noreturn]] void throwMongoError(const bson_error_t& error, const std::string& command = {});

/// Values as they are, names of members checked.
TBsonPtr exactBson(const TObject& object);

/// nullptr for "primary". Throws TStoreError (Unsupported) for a name that is none.
struct TReadPrefsDeleter {
  void operator()(mongoc_read_prefs_t* prefs) const { mongoc_read_prefs_destroy(prefs); }
};
using TReadPrefsPtr = std::unique_ptr<mongoc_read_prefs_t, TReadPrefsDeleter>;
TReadPrefsPtr readPreference(const std::string& name);

}  // namespace hollowmere
