#include "connectors/mongodb/mongowriter.h"

#include <algorithm>
#include <memory>

#include "json/json.h"

namespace hollowmere {

namespace {

/// What a server takes in one document; the driver gives up a whole batch for one that is larger.
constexpr std::uint32_t largestDocument = 16 * 1024 * 1024;

/// Of a message, for all that is not documents.
constexpr std::int64_t messageReserve = 64 * 1024;

constexpr char notConfirmed[] = "The server did not confirm the document.";

/// The driver's own asks the system for the process number at every identifier.
bson_context_t* identifiers() {
  static const std::unique_ptr<bson_context_t, decltype(&bson_context_destroy)> context(
      bson_context_new(BSON_CONTEXT_THREAD_SAFE), &bson_context_destroy);
  return context.get();
}

/// {name: false}
TBsonPtr flagDocument(const char* name) {
  TBsonPtr document(bson_new());
  BSON_APPEND_BOOL(document.get(), name, false);
  return document;
}

struct TRefusal {
  std::size_t index = 0;
  std::uint32_t code = 0;
  std::string message;
};

std::int64_t numberMember(const bson_t& reply, const char* name) {
  bson_iter_t iter;
  return bson_iter_init_find(&iter, &reply, name) ? bson_iter_as_int64(&iter) : 0;
}

TRefusal readRefusal(const bson_iter_t& entry) {
  TRefusal refusal;
  bson_iter_t field;
  if (!bson_iter_recurse(&entry, &field)) return refusal;
  while (bson_iter_next(&field)) {
    const std::string_view key = bson_iter_key(&field);
    if (key == "index") refusal.index = static_cast<std::size_t>(bson_iter_as_int64(&field));
    if (key == "code") refusal.code = static_cast<std::uint32_t>(bson_iter_as_int64(&field));
    if (key == "errmsg" && BSON_ITER_HOLDS_UTF8(&field)) refusal.message = bson_iter_utf8(&field, nullptr);
  }
  return refusal;
}

std::vector<TRefusal> readRefusals(const bson_t& reply) {
  std::vector<TRefusal> refusals;
  bson_iter_t iter;
  bson_iter_t entry;
  if (bson_iter_init_find(&iter, &reply, "writeErrors") && bson_iter_recurse(&iter, &entry))
    while (bson_iter_next(&entry)) refusals.push_back(readRefusal(entry));
  std::sort(refusals.begin(), refusals.end(), [](const auto& a, const auto& b) { return a.index < b.index; });
  return refusals;
}

}  // namespace

TMongoWriter::TMongoWriter(const TStoreOptions& options)
    : client_(connectMongo(options, "Unable to connect to target MongoDB.")),
      database_(textMember(options.connection, "database")),
      batchSize_(options.bulkSize > 1 ? static_cast<std::size_t>(options.bulkSize) : 1),
      batchBytes_(largestDocument),
      scratch_(bson_new()),
      unordered_(flagDocument("ordered")),
      unchecked_(flagDocument("validate")) {
  if (batchSize_ > 1) keepToLimits();
}

/// The driver splits what the server would not take at once. When one of the pieces fails it does not tell
/// which, so a batch is never more than one piece.
void TMongoWriter::keepToLimits() {
  bson_error_t error{};
  mongoc_server_description_t* server = mongoc_client_select_server(client_.get(), true, nullptr, &error);
  if (!server) return;
  const bson_t& hello = *mongoc_server_description_hello_response(server);
  const std::int64_t message = numberMember(hello, "maxMessageSizeBytes") - messageReserve;
  batchBytes_ = std::max(batchBytes_, static_cast<std::size_t>(std::max<std::int64_t>(0, message)));
  if (const std::int64_t most = numberMember(hello, "maxWriteBatchSize"); most > 0)
    batchSize_ = std::min(batchSize_, static_cast<std::size_t>(most));
  mongoc_server_description_destroy(server);
}

void TMongoWriter::openTarget(const TDataTarget& target) {
  if (database_.empty() || target.target.empty())
    throw TStoreError(TStoreErrorKind::DataSource,
                      "Data target " + target.name + " names no MongoDB collection.");
  collection_.reset(mongoc_client_get_collection(client_.get(), database_.c_str(), target.target.c_str()));
}

void TMongoWriter::write(TObject&& document, TOutcomeSink& sink) {
  if (!encode(document, sink)) return;
  if (batchSize_ > 1)
    addToBatch(std::move(document), sink);
  else
    insertOne(document, sink);
}

/// Puts the document's BSON into scratch_; false when it is refused.
bool TMongoWriter::encode(const TObject& document, TOutcomeSink& sink) {
  try {
    bson_reinit(scratch_.get());
    if (!document.empty() && !document.contains("_id")) {
      bson_oid_t id;
      bson_oid_init(&id, identifiers());
      BSON_APPEND_OID(scratch_.get(), "_id", &id);
    }
    JsonToBson(document, scratch_.get(), dates_);
    if (scratch_->len <= largestDocument) return true;
    sink.refused(toJson(document), "The document is " + std::to_string(scratch_->len) +
                                       " bytes long; MongoDB takes at most " +
                                       std::to_string(largestDocument) + ".");
  } catch (const std::runtime_error& error) {
    sink.refused(toJson(document), error.what());
  }
  return false;
}

void TMongoWriter::insertOne(const TObject& document, TOutcomeSink& sink) {
  bson_t reply;
  bson_error_t error{};
  if (!mongoc_collection_insert_one(collection_.get(), scratch_.get(), unchecked_.get(), &reply, &error))
    sink.refused(toJson(document), mongoErrorText(error));
  else if (numberMember(reply, "insertedCount") == 1)
    sink.stored(1);
  else
    sink.refused(toJson(document), notConfirmed);
  bson_destroy(&reply);
}

void TMongoWriter::addToBatch(TObject&& document, TOutcomeSink& sink) {
  if (bytes_ + scratch_->len > batchBytes_) flush(sink);
  if (!bulk_)
    bulk_.reset(mongoc_collection_create_bulk_operation_with_opts(collection_.get(), unordered_.get()));
  bson_error_t error{};
  if (!mongoc_bulk_operation_insert_with_opts(bulk_.get(), scratch_.get(), unchecked_.get(), &error)) {
    sink.refused(toJson(document), mongoErrorText(error));
    return;
  }
  bytes_ += scratch_->len;
  batch_.push_back(std::move(document));
  if (batch_.size() >= batchSize_) flush(sink);
}

void TMongoWriter::flush(TOutcomeSink& sink) {
  if (batch_.empty()) return;
  bson_t reply;
  bson_error_t error{};
  mongoc_bulk_operation_execute(bulk_.get(), &reply, &error);
  // A bulk operation serves once.
  bulk_.reset();
  report(reply, error, sink);
  bson_destroy(&reply);
  batch_.clear();
  bytes_ = 0;
}

/// What the server's counts do not cover was not confirmed: the batch may have failed as a whole, or the
/// answer may have said nothing. Such documents are refused.
void TMongoWriter::report(const bson_t& reply, const bson_error_t& error, TOutcomeSink& sink) {
  const std::vector<TRefusal> refusals = readRefusals(reply);
  const std::size_t told = static_cast<std::size_t>(numberMember(reply, "nInserted")) + refusals.size();
  const std::size_t known = std::min(batch_.size(), told);
  std::int64_t stored = static_cast<std::int64_t>(known);
  for (const TRefusal& refusal : refusals) {
    if (refusal.index >= known) continue;
    sink.refused(toJson(batch_[refusal.index]), mongoErrorText(refusal.code, refusal.message));
    --stored;
  }
  if (stored > 0) sink.stored(stored);
  const std::string reason = error.code != 0 ? mongoErrorText(error) : notConfirmed;
  for (std::size_t i = known; i < batch_.size(); ++i) sink.refused(toJson(batch_[i]), reason);
}

}  // namespace hollowmere
