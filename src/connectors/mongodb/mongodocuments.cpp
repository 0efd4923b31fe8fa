// The documents of TMongoAdmin.
#include <algorithm>

#include "connectors/mongodb/mongoadmin.h"
#include "connectors/mongodb/mongolink.h"

namespace hollowmere {

namespace {

void append(bson_t* options, const char* name, const TObject& document) {
  if (!document.empty()) BSON_APPEND_DOCUMENT(options, name, exactBson(document).get());
}

TBsonPtr findOptions(const TMongoQuery& query) {
  TBsonPtr options(bson_new());
  append(options.get(), "sort", query.sort);
  append(options.get(), "projection", query.projection);
  if (query.skip > 0) BSON_APPEND_INT64(options.get(), "skip", query.skip);
  if (query.limit > 0) BSON_APPEND_INT64(options.get(), "limit", query.limit);
  if (query.batchSize > 0) BSON_APPEND_INT64(options.get(), "batchSize", query.batchSize);
  return options;
}

class TRows : public TMongoRows {
 public:
  TRows(const TMongoLink& link, const TMongoQuery& query)
      : collection_(link.collection(query.database, query.collection)) {
    const TBsonPtr filter = filterToBson(query.filter, TDateTimeText());
    const TBsonPtr options = findOptions(query);
    const TReadPrefsPtr prefs = readPreference(query.readPreference);
    cursor_.reset(
        mongoc_collection_find_with_opts(collection_.get(), filter.get(), options.get(), prefs.get()));
  }

  std::optional<TObject> next() override {
    const bson_t* document = nullptr;
    if (mongoc_cursor_next(cursor_.get(), &document)) {
      checkReply(*document);
      return BsonToJson(*document);
    }
    checkCursor(cursor_.get());
    return std::nullopt;
  }

 private:
  TMongoCollectionPtr collection_;
  TMongoCursorPtr cursor_;
};

/// As the designer of collections names them.
std::string_view typeLabel(const TValue& value) {
  switch (value.kind()) {
    case TKind::Null: return "<Unknown>";
    case TKind::Boolean: return "Boolean";
    case TKind::Int: return value.subtype() == 1 ? "Int64" : "Integer";
    case TKind::Double:
    case TKind::Decimal: return "Double";
    case TKind::Text: return "String";
    case TKind::DateTime: return "DateTime";
    case TKind::Binary: return "Binary";
    case TKind::ObjectId: return "String Value";
    case TKind::List: return "Collection";
    case TKind::Object: return "Nested Object";
  }
  return "<Unknown>";
}

TBsonPtr identity(const TValue& id) { return exactBson({{"_id", id}}); }

/// Takes a reply's number and frees the reply.
std::int64_t takeNumber(bson_t& reply, const char* name) {
  bson_iter_t iter;
  const std::int64_t number = bson_iter_init_find(&iter, &reply, name) ? bson_iter_as_int64(&iter) : 0;
  bson_destroy(&reply);
  return number;
}

}  // namespace

std::unique_ptr<TMongoRows> TMongoAdmin::find(const TMongoQuery& query) {
  return std::make_unique<TRows>(*link_, query);
}

std::int64_t TMongoAdmin::count(const TMongoQuery& query) {
  const TMongoCollectionPtr handle = link_->collection(query.database, query.collection);
  const TBsonPtr filter = filterToBson(query.filter, TDateTimeText());
  const TReadPrefsPtr prefs = readPreference(query.readPreference);
  bson_error_t error{};
  const std::int64_t counted =
      mongoc_collection_count_documents(handle.get(), filter.get(), nullptr, prefs.get(), nullptr, &error);
  if (counted < 0) throwMongoError(error);
  return counted;
}

std::vector<TMongoAttribute> TMongoAdmin::attributes(const std::string& database,
                                                     const std::string& collection, std::int64_t documents) {
  std::vector<TMongoAttribute> found;
  TMongoQuery query;
  query.database = database;
  query.collection = collection;
  query.limit = documents;
  const auto rows = find(query);
  while (const auto row = rows->next()) {
    for (const TMember& member : *row) {
      const std::string type(typeLabel(member.value));
      const auto known = std::find_if(found.begin(), found.end(),
                                      [&](const auto& other) { return other.name == member.name; });
      if (known == found.end())
        found.push_back({member.name, type});
      else if (known->type == "<Unknown>")
        known->type = type;
    }
  }
  return found;
}

TValue TMongoAdmin::insert(const std::string& database, const std::string& collection,
                           const TObject& document) {
  const TMongoCollectionPtr handle = link_->collection(database, collection);
  const TBsonPtr sent(bson_new());
  TValue id;
  if (const TValue* own = document.find("_id")) {
    id = *own;
  } else {
    bson_oid_t made;
    bson_oid_init(&made, nullptr);
    BSON_APPEND_OID(sent.get(), "_id", &made);
    id = BsonToJson(*sent.get()).begin()->value;
  }
  JsonToBson(document, sent.get(), TDateTimeText());
  bson_error_t error{};
  if (!mongoc_collection_insert_one(handle.get(), sent.get(), nullptr, nullptr, &error))
    throwMongoError(error);
  return id;
}

bool TMongoAdmin::replace(const std::string& database, const std::string& collection,
                          const TObject& document) {
  const TValue* id = document.find("_id");
  if (!id) throw TStoreError(TStoreErrorKind::Unsupported, "The document has no _id.");
  const TMongoCollectionPtr handle = link_->collection(database, collection);
  // An identifier that is a text stays one, whatever it looks like.
  const TBsonPtr sent = identity(*id);
  TObject rest = document;
  rest.remove("_id");
  JsonToBson(rest, sent.get(), TDateTimeText());
  bson_t reply;
  bson_error_t error{};
  const bool good =
      mongoc_collection_replace_one(handle.get(), identity(*id).get(), sent.get(), nullptr, &reply, &error);
  const bool matched = takeNumber(reply, "matchedCount") > 0;
  if (!good) throwMongoError(error);
  return matched;
}

bool TMongoAdmin::remove(const std::string& database, const std::string& collection, const TValue& id) {
  const TMongoCollectionPtr handle = link_->collection(database, collection);
  bson_t reply;
  bson_error_t error{};
  const bool good = mongoc_collection_delete_one(handle.get(), identity(id).get(), nullptr, &reply, &error);
  const bool removed = takeNumber(reply, "deletedCount") > 0;
  if (!good) throwMongoError(error);
  return removed;
}

}  // namespace hollowmere
