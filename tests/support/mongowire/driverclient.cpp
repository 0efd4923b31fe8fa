#include "support/mongowire/driverclient.h"

#include <stdexcept>

namespace hollowmere::mongowire {

namespace {

/// The driver is started once a process, without its log: it would write to standard output.
struct TDriver {
  TDriver() {
    mongoc_log_set_handler(nullptr, nullptr);
    mongoc_init();
  }
  ~TDriver() { mongoc_cleanup(); }
};

void startDriver() { static const TDriver driver; }

}  // namespace

TDriverClient::TDriverClient(const std::string& uri, const char* database, const char* collection) {
  startDriver();
  client_.reset(mongoc_client_new(uri.c_str()));
  if (!client_) throw std::invalid_argument("not a connection text: " + uri);
  mongoc_client_set_error_api(client_.get(), MONGOC_ERROR_API_VERSION_2);
  collection_.reset(mongoc_client_get_collection(client_.get(), database, collection));
}

TDriverClient::TAnswer TDriverClient::command(const std::string& json) {
  TAnswer answer;
  const TBson request = TBson::fromJson(json);
  const TBsonView view = request.view();
  bson_t reply;
  answer.ok = mongoc_client_command_simple(client_.get(), "shop", view.get(), nullptr, &reply, &answer.error);
  answer.reply = TBson(&reply);
  bson_destroy(&reply);
  return answer;
}

TDriverClient::TAnswer TDriverClient::insertOne(const std::string& json) {
  TAnswer answer;
  const TBson document = TBson::fromJson(json);
  const TBsonView view = document.view();
  bson_t reply;
  answer.ok = mongoc_collection_insert_one(collection(), view.get(), nullptr, &reply, &answer.error);
  answer.reply = TBson(&reply);
  bson_destroy(&reply);
  return answer;
}

TDriverClient::TAnswer TDriverClient::bulk(const std::vector<TBson>& documents, bool ordered,
                                           const char* writeConcern) {
  TAnswer answer;
  TBsonBuilder options;
  options.boolean("ordered", ordered);
  if (writeConcern) options.document("writeConcern", TBson::fromJson(writeConcern));
  mongoc_bulk_operation_t* bulk =
      mongoc_collection_create_bulk_operation_with_opts(collection(), options.get());
  for (const TBson& document : documents) {
    const TBsonView view = document.view();
    mongoc_bulk_operation_insert_with_opts(bulk, view.get(), nullptr, nullptr);
  }
  bson_t reply;
  answer.ok = mongoc_bulk_operation_execute(bulk, &reply, &answer.error) != 0;
  answer.reply = TBson(&reply);
  bson_destroy(&reply);
  mongoc_bulk_operation_destroy(bulk);
  return answer;
}

std::vector<std::string> TDriverClient::find(const std::string& filter, const std::string& options,
                                             bson_error_t* error) {
  const TBson filterDocument = TBson::fromJson(filter);
  const TBson optionsDocument = TBson::fromJson(options);
  const TBsonView filterView = filterDocument.view();
  const TBsonView optionsView = optionsDocument.view();
  mongoc_cursor_t* cursor =
      mongoc_collection_find_with_opts(collection(), filterView.get(), optionsView.get(), nullptr);
  std::vector<std::string> rows;
  const bson_t* row = nullptr;
  while (mongoc_cursor_next(cursor, &row)) rows.push_back(TBson(row).json());
  bson_error_t failure{};
  mongoc_cursor_error(cursor, &failure);
  if (error) *error = failure;
  mongoc_cursor_destroy(cursor);
  return rows;
}

std::int64_t TDriverClient::count(const std::string& filter, bson_error_t* error) {
  const TBson filterDocument = TBson::fromJson(filter);
  const TBsonView view = filterDocument.view();
  return mongoc_collection_count_documents(collection(), view.get(), nullptr, nullptr, nullptr, error);
}

std::vector<TBson> numberedRows(int first, int count, std::size_t padding) {
  std::vector<TBson> rows;
  for (int id = first; id < first + count; ++id)
    rows.push_back(TBsonBuilder().int32("_id", id).text("text", std::string(padding, 'x')).take());
  return rows;
}

}  // namespace hollowmere::mongowire
