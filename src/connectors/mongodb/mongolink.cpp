#include "connectors/mongodb/mongolink.h"

#include <array>
#include <utility>

namespace hollowmere {

namespace {

constexpr std::uint32_t commandNotFound = 59;

}  // namespace

TMongoLink::TMongoLink(const TStoreOptions& options, const std::string& fixedText)
    : client_(connectMongo(options, fixedText)) {}

TMongoCollectionPtr TMongoLink::collection(const std::string& database, const std::string& name) const {
  return TMongoCollectionPtr(mongoc_client_get_collection(client_.get(), database.c_str(), name.c_str()));
}

TObject TMongoLink::run(const std::string& database, const TObject& command) const {
  const TBsonPtr sent = exactBson(command);
  bson_t reply;
  bson_error_t error{};
  const bool good =
      mongoc_client_command_simple(client_.get(), database.c_str(), sent.get(), nullptr, &reply, &error);
  const TBsonPtr owned(bson_copy(&reply));
  bson_destroy(&reply);
  if (!good) throwMongoError(error, command.empty() ? std::string() : command.begin()->name);
  return BsonToJson(*owned.get());
}

std::vector<TObject> TMongoLink::all(const TMongoCursorPtr& cursor) {
  std::vector<TObject> found;
  const bson_t* document = nullptr;
  while (mongoc_cursor_next(cursor.get(), &document)) {
    checkReply(*document);
    found.push_back(BsonToJson(*document));
  }
  checkCursor(cursor.get());
  return found;
}

void checkCursor(mongoc_cursor_t* cursor) {
  bson_error_t error{};
  if (mongoc_cursor_error(cursor, &error)) throwMongoError(error);
}

void checkReply(const bson_t& reply) {
  bson_iter_t iter;
  if (!bson_iter_init_find(&iter, &reply, "$err")) return;
  const std::string text = BSON_ITER_HOLDS_UTF8(&iter) ? bson_iter_utf8(&iter, nullptr) : "";
  std::uint32_t code = 0;
  if (bson_iter_init_find(&iter, &reply, "code"))
    code = static_cast<std::uint32_t>(bson_iter_as_int64(&iter));
  throw TMongoError(code, text);
}

void throwMongoError(const bson_error_t& error, const std::string& command) {
  throw TMongoError(error.code, error.message,
                    error.code == commandNotFound ? removedCommandAdvice(command) : std::string());
}

TBsonPtr exactBson(const TObject& object) { return boundFilterToBson(object, TDateTimeText("C")); }

TReadPrefsPtr readPreference(const std::string& name) {
  static constexpr std::array<std::pair<std::string_view, mongoc_read_mode_t>, 5> modes{
      {{"primary", MONGOC_READ_PRIMARY},
       {"primaryPreferred", MONGOC_READ_PRIMARY_PREFERRED},
       {"secondary", MONGOC_READ_SECONDARY},
       {"secondaryPreferred", MONGOC_READ_SECONDARY_PREFERRED},
       {"nearest", MONGOC_READ_NEAREST}}};
  for (const auto& [known, mode] : modes)
    if (name == known) return TReadPrefsPtr(mongoc_read_prefs_new(mode));
  throw TStoreError(TStoreErrorKind::Unsupported, "There is no read preference " + name + ".");
}

}  // namespace hollowmere
