#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "connectors/mongodb/mongoerror.h"
#include "connectors/storeapi.h"

namespace hollowmere {

class TMongoLink;

struct TMongoCollectionInfo {
  std::string name;
  std::string kind;  ///< "collection", "view", "timeseries"
  TObject options;
};

/// A command that the server knows.
struct TMongoCommandInfo {
  std::string name;
  std::string help;
  bool internal = false;
  bool adminOnly = false;
};

/// What is to be read of a collection.
struct TMongoQuery {
  std::string database;
  std::string collection;
  TObject filter;  ///< extended JSON's wrappers are the values that they stand for
  TObject sort;
  TObject projection;
  std::int64_t skip = 0;
  std::int64_t limit = 0;  ///< 0: all
  std::int64_t batchSize = 100;
  std::string readPreference = "primary";
};

/// One attribute of a collection's documents, and what its values are.
struct TMongoAttribute {
  std::string name;
  std::string type;  ///< as the designer of collections calls it; "<Unknown>" when only nulls were seen
};

/// The documents of a query, one by one. The connection outlives it.
class TMongoRows {
 public:
  virtual ~TMongoRows() = default;
  /// Nothing at the end. Throws TMongoError.
  virtual std::optional<TObject> next() = 0;
};

/// Databases, collections, indexes and documents of one server, through the driver. Owns a connection;
/// belongs to one thread. What the server refuses is thrown as TMongoError, what is refused here as
/// TStoreError (Unsupported), both with the text for the user.
class TMongoAdmin {
 public:
  /// Throws TStoreError (Connect).
  explicit TMongoAdmin(const TStoreOptions& options);
  ~TMongoAdmin();

  /// Any command; its first member is its name. The values keep their kinds.
  TObject runCommand(const std::string& database, const TObject& command);

  std::string serverVersion();
  TObject databaseStats(const std::string& database);
  TObject collectionStats(const std::string& database, const std::string& collection);
  /// Throws TStoreError with the text for a list that cannot be read.
  std::vector<TMongoCommandInfo> commands();

  std::vector<std::string> databases();
  void createDatabase(const std::string& name);
  void dropDatabase(const std::string& name);

  std::vector<TMongoCollectionInfo> collections(const std::string& database);
  /// options as of the command "create": {"capped": true, "size": 4096}.
  void createCollection(const std::string& database, const std::string& name, const TObject& options = {});
  void dropCollection(const std::string& database, const std::string& name);
  void renameCollection(const std::string& database, const std::string& name, const std::string& newName);

  std::vector<TObject> indexes(const std::string& database, const std::string& collection);
  /// keys: {"a": 1, "b": -1}; options: {"unique": true}.
  void createIndex(const std::string& database, const std::string& collection, const std::string& name,
                   const TObject& keys, const TObject& options = {});
  void dropIndex(const std::string& database, const std::string& collection, const std::string& name);
  void dropAllIndexes(const std::string& database, const std::string& collection);

  std::unique_ptr<TMongoRows> find(const TMongoQuery& query);
  std::int64_t count(const TMongoQuery& query);
  /// Of the first documents, in the order in which they come up.
  std::vector<TMongoAttribute> attributes(const std::string& database, const std::string& collection,
                                          std::int64_t documents = 100);

  /// Texts become what convertText() makes of them. A document without an identifier gets one, which is given
  /// back.
  TValue insert(const std::string& database, const std::string& collection, const TObject& document);
  /// The document with its own "_id" is replaced; false when there is none.
  bool replace(const std::string& database, const std::string& collection, const TObject& document);
  bool remove(const std::string& database, const std::string& collection, const TValue& id);

 private:
  std::unique_ptr<TMongoLink> link_;
};

}  // namespace hollowmere
