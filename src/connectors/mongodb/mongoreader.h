#pragma once

#include <map>
#include <string>

#include "connectors/datetimetext.h"
#include "connectors/jsonquery.h"
#include "connectors/mongodb/bsonvalue.h"
#include "connectors/mongodb/mongoclient.h"
#include "connectors/storeapi.h"

namespace hollowmere {

/// A query object of MongoDB: members database, collection and query (a JSON filter text).
struct TMongoSource {
  /// Throws TStoreError of that kind when the database or the collection is not named.
  explicit TMongoSource(const TDataSource& source, TStoreErrorKind kind = TStoreErrorKind::DataSource);

  /// The query as it stands, without parameters. Throws TStoreError (DataSource).
  [[nodiscard]] TBsonPtr filter(const TDateTimeText& dates) const;

  std::string database;
  std::string collection;
  std::string query;
};

class TMongoReader : public TSourceReader {
 public:
  /// Throws TStoreError (Connect).
  explicit TMongoReader(const TStoreOptions& options);

  void openRoot(const TDataSource& source, const TShare& share) override;
  std::optional<TObject> next() override { return getMongoJSON(); }
  std::string rowText() override;
  void nested(const TDataSource& source, const TObject& parent, const TRowSink& row) override;

 private:
  std::optional<TObject> getMongoJSON();
  bool advance();
  const TJsonQuery& nestedQuery(const TDataSource& source, const TMongoSource& query);

  TMongoClientPtr client_;
  TDateTimeText dates_;
  std::int64_t fetchLimit_;
  TMongoCollectionPtr collection_;
  TMongoCursorPtr cursor_;
  const bson_t* row_ = nullptr;                                   ///< owned by the cursor, until it moves on
  bool rowWaits_ = false;                                         ///< row_ was fetched but not given out
  std::map<std::string, TJsonQuery, std::less<>> nestedQueries_;  ///< by data source name
};

}  // namespace hollowmere
