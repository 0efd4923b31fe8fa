#include "connectors/mongodb/mongocopy.h"

#include <algorithm>

#include "connectors/mongodb/mongolink.h"
#include "connectors/mongodb/mongotexts.h"

namespace hollowmere {

namespace {

constexpr std::size_t batchDocuments = 1000;
constexpr std::size_t batchBytes = 2 * 1024 * 1024;

bool sameServer(const TValue& a, const TValue& b) {
  return textMember(a, "host") == textMember(b, "host") && mongoPort(a) == mongoPort(b);
}

/// Nothing of "_id" unless it was asked for: the server sends it by itself.
TObject projection(const std::vector<std::string>& attributes) {
  TObject wanted;
  for (const std::string& name : attributes) wanted.add(name, 1);
  if (!attributes.empty() && !wanted.contains("_id")) wanted.add("_id", 0);
  return wanted;
}

/// Documents kept until a batch is full.
class TBatch {
 public:
  explicit TBatch(TMongoCollectionPtr target)
      : target_(std::move(target)), unchecked_(exactBson({{"validate", false}})) {}

  void add(const bson_t& document) {
    documents_.emplace_back(bson_copy(&document));
    bytes_ += document.len;
  }
  [[nodiscard]] bool isFull() const { return documents_.size() >= batchDocuments || bytes_ >= batchBytes; }

  /// How many went in; what stopped it is in the error.
  std::int64_t send(std::string& error) {
    if (documents_.empty()) return 0;
    const bson_t* pointers[batchDocuments] = {};
    for (std::size_t i = 0; i < documents_.size(); ++i) pointers[i] = documents_[i].get();
    bson_t reply;
    bson_error_t fault{};
    const bool good = mongoc_collection_insert_many(target_.get(), pointers, documents_.size(),
                                                    unchecked_.get(), &reply, &fault);
    bson_iter_t iter;
    const std::int64_t stored =
        bson_iter_init_find(&iter, &reply, "insertedCount") ? bson_iter_as_int64(&iter) : 0;
    bson_destroy(&reply);
    if (!good) error = mongoErrorText(fault);
    documents_.clear();
    bytes_ = 0;
    return stored;
  }

 private:
  TMongoCollectionPtr target_;
  TBsonPtr unchecked_;
  std::vector<TBsonPtr> documents_;
  std::size_t bytes_ = 0;
};

TMongoCursorPtr openSource(const TMongoCollectionPtr& from, TCopyResult& result,
                           const std::vector<std::string>& attributes) {
  bson_error_t error{};
  const TBsonPtr all(bson_new());
  result.total = mongoc_collection_count_documents(from.get(), all.get(), nullptr, nullptr, nullptr, &error);
  if (result.total < 0) throwMongoError(error);
  TObject options{{"batchSize", static_cast<std::int64_t>(batchDocuments)}};
  if (!attributes.empty()) options.add("projection", projection(attributes));
  const TBsonPtr sent = exactBson(options);
  return TMongoCursorPtr(mongoc_collection_find_with_opts(from.get(), all.get(), sent.get(), nullptr));
}

void copyAll(const TMongoCursorPtr& cursor, TBatch& batch, const TCopyOrder& order, TCopyResult& result,
             const TCopyProgress& progress) {
  const TStopFlag* stop = order.source.options.stop;
  const auto send = [&] {
    result.copied += batch.send(result.error);
    if (progress) progress(result.copied, std::max(result.total, result.copied));
  };
  const bson_t* document = nullptr;
  while (result.error.empty() && mongoc_cursor_next(cursor.get(), &document)) {
    checkReply(*document);
    batch.add(*document);
    if (stop && stop->isSet()) result.error = "The operation was cancelled.";
    if (batch.isFull() && result.error.empty()) send();
  }
  if (!result.error.empty()) return;
  checkCursor(cursor.get());
  send();
}

}  // namespace

std::string checkCopy(const TCopyOrder& order, bool all) {
  const TCopySide& from = order.source;
  const TCopySide& to = order.target;
  if (!all && order.attributes.empty()) return mongotexts::noAttributes;
  if (from.database.empty()) return mongotexts::noSourceDatabase;
  if (from.collection.empty()) return mongotexts::noSourceCollection;
  if (!to.options.connection.is(TKind::Object)) return mongotexts::noTargetConnection;
  if (to.database.empty()) return mongotexts::noTargetDatabase;
  if (to.collection.empty()) return mongotexts::noTargetCollection;
  if (from.database == to.database && from.collection == to.collection &&
      sameServer(from.options.connection, to.options.connection))
    return mongotexts::sameCollection;
  return to.collection.starts_with("system.") ? mongotexts::systemTarget : std::string();
}

TCopyResult copyCollection(const TCopyOrder& order, const TCopyProgress& progress) {
  TCopyResult result;
  try {
    const TMongoLink source(order.source.options, mongotexts::noSourceConnection);
    const TMongoLink target(order.target.options, mongotexts::noTargetServer);
    const TMongoCollectionPtr from = source.collection(order.source.database, order.source.collection);
    TBatch batch(target.collection(order.target.database, order.target.collection));
    const TMongoCursorPtr cursor = openSource(from, result, order.attributes);
    if (result.total == 0)
      result.error = mongotexts::emptySource;
    else
      copyAll(cursor, batch, order, result, progress);
  } catch (const std::exception& error) {
    result.error = error.what();
  }
  return result;
}

}  // namespace hollowmere
