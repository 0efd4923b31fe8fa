#pragma once

#include <string>
#include <vector>

#include "connectors/datetimetext.h"
#include "connectors/mongodb/bsonvalue.h"
#include "connectors/mongodb/mongoclient.h"
#include "connectors/storeapi.h"

namespace hollowmere {

/// Inserts documents one by one, or in unordered batches. The documents of a batch are kept until the
/// server has told what became of each.
class TMongoWriter : public TTargetWriter {
 public:
  /// Throws TStoreError (Connect).
  explicit TMongoWriter(const TStoreOptions& options);

  void openTarget(const TDataTarget& target) override;
  void write(TObject&& document, TOutcomeSink& sink) override;
  void flush(TOutcomeSink& sink) override;

 private:
  void keepToLimits();
  bool encode(const TObject& document, TOutcomeSink& sink);
  void insertOne(const TObject& document, TOutcomeSink& sink);
  void addToBatch(TObject&& document, TOutcomeSink& sink);
  void report(const bson_t& reply, const bson_error_t& error, TOutcomeSink& sink);

  TMongoClientPtr client_;
  TDateTimeText dates_;
  std::string database_;
  std::size_t batchSize_;
  std::size_t batchBytes_;  ///< what one message to the server may hold
  TMongoCollectionPtr collection_;
  TBsonPtr scratch_;
  TBsonPtr unordered_;
  TBsonPtr unchecked_;  ///< options of an insert: JsonToBson() has checked texts and names
  TMongoBulkPtr bulk_;
  std::size_t bytes_ = 0;       ///< in bulk_
  std::vector<TObject> batch_;  ///< the documents in bulk_, in its order
};

}  // namespace hollowmere
