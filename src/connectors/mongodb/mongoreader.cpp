#include "connectors/mongodb/mongoreader.h"

#include <algorithm>
#include <limits>

#include "connectors/nosqlcommon.h"
#include "json/json.h"

namespace hollowmere {

namespace {

[[noreturn]] void failSource(const std::string& text, const std::string& detail = {}) {
  throw TStoreError(TStoreErrorKind::DataSource, text, detail);
}

TMongoCollectionPtr getCollection(mongoc_client_t* client, const TMongoSource& source) {
  return TMongoCollectionPtr(
      mongoc_client_get_collection(client, source.database.c_str(), source.collection.c_str()));
}

TBsonPtr batchOptions(std::int64_t fetchLimit) {
  TBsonPtr options(bson_new());
  if (fetchLimit > 0)
    BSON_APPEND_INT32(options.get(), "batchSize",
                      static_cast<std::int32_t>(
                          std::min<std::int64_t>(fetchLimit, std::numeric_limits<std::int32_t>::max())));
  return options;
}

/// Several threads read one order of the rows, each its part.
void addShare(bson_t* options, const TShare& share) {
  if (share.degree <= 1) return;
  bson_t sort;
  BSON_APPEND_DOCUMENT_BEGIN(options, "sort", &sort);
  BSON_APPEND_INT32(&sort, "_id", 1);
  bson_append_document_end(options, &sort);
  if (share.start > 0) BSON_APPEND_INT64(options, "skip", share.start);
  if (share.rows) BSON_APPEND_INT64(options, "limit", *share.rows);
}

}  // namespace

TMongoSource::TMongoSource(const TDataSource& source, TStoreErrorKind kind)
    : database(textMember(source.definition, "database")),
      collection(textMember(source.definition, "collection")),
      query(textMember(source.definition, "query")) {
  if (database.empty() || collection.empty())
    throw TStoreError(kind, "Data source " + source.name + " names no MongoDB database and collection.");
}

TBsonPtr TMongoSource::filter(const TDateTimeText& dates) const {
  if (query.empty()) return TBsonPtr(bson_new());
  std::string reason = "it is not an object";
  try {
    const TValue value = parseJson(query);
    if (value.is(TKind::Object)) return filterToBson(value.asObject(), dates);
  } catch (const TJsonError& error) {
    reason = error.what();
  }
  failSource("Invalid MongoDB JSON query.", "(" + reason + ")");
}

TMongoReader::TMongoReader(const TStoreOptions& options)
    : client_(connectMongo(options, "Unable to connect to source MongoDB.")),
      fetchLimit_(options.fetchLimit) {}

void TMongoReader::openRoot(const TDataSource& source, const TShare& share) {
  const TMongoSource query(source);
  const TBsonPtr filter = query.filter(dates_);
  const TBsonPtr options = batchOptions(fetchLimit_);
  addShare(options.get(), share);
  row_ = nullptr;
  cursor_.reset();
  collection_ = getCollection(client_.get(), query);
  cursor_.reset(mongoc_collection_find_with_opts(collection_.get(), filter.get(), options.get(), nullptr));
  rowWaits_ = advance();
  if (!rowWaits_) failSource("MongoDB data source does not return documents.");
}

/// To the next row; false at the end.
bool TMongoReader::advance() {
  row_ = nullptr;
  if (mongoc_cursor_next(cursor_.get(), &row_)) return true;
  bson_error_t error{};
  if (mongoc_cursor_error(cursor_.get(), &error)) failSource(mongoErrorText(error));
  return false;
}

std::optional<TObject> TMongoReader::getMongoJSON() {
  if (!cursor_) return std::nullopt;
  if (!rowWaits_ && !advance()) {
    cursor_.reset();
    return std::nullopt;
  }
  rowWaits_ = false;
  return BsonToJson(*row_);
}

std::string TMongoReader::rowText() {
  return row_ ? toJson(BsonToJson(*row_), TTextForm::Markers) : std::string();
}

/// The query of a nested data source, prepared once.
const TJsonQuery& TMongoReader::nestedQuery(const TDataSource& source, const TMongoSource& query) {
  if (const auto found = nestedQueries_.find(source.name); found != nestedQueries_.end())
    return found->second;
  try {
    TJsonQuery prepared(query.query);
    prepared.convertTexts([this](const std::string& text, bool inList) {
      return convertText(text, inList, dates_).value_or(TValue(text));
    });
    return nestedQueries_.emplace(source.name, std::move(prepared)).first->second;
  } catch (const std::runtime_error& error) {
    throw TStoreError(TStoreErrorKind::Read, "Invalid nested MongoDB JSON query: " + query.query,
                      "(" + std::string(error.what()) + ")");
  }
}

void TMongoReader::nested(const TDataSource& source, const TObject& parent, const TRowSink& row) {
  const TMongoSource query(source, TStoreErrorKind::Read);
  const TBsonPtr filter = boundFilterToBson(nestedQuery(source, query).bind(parent), dates_);
  const TBsonPtr options = batchOptions(fetchLimit_);
  const TMongoCollectionPtr collection = getCollection(client_.get(), query);
  const TMongoCursorPtr cursor(
      mongoc_collection_find_with_opts(collection.get(), filter.get(), options.get(), nullptr));
  const bson_t* found = nullptr;
  while (mongoc_cursor_next(cursor.get(), &found))
    if (!row(BsonToJson(*found))) return;
  bson_error_t error{};
  if (mongoc_cursor_error(cursor.get(), &error))
    throw TStoreError(TStoreErrorKind::Read, mongoErrorText(error));
}

}  // namespace hollowmere
