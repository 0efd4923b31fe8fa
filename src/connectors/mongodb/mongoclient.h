#pragma once

#include <mongoc/mongoc.h>

#include <memory>
#include <string>

#include "connectors/storeapi.h"

namespace hollowmere {

struct TMongoDeleter {
  void operator()(mongoc_client_t* client) const { mongoc_client_destroy(client); }
  void operator()(mongoc_collection_t* collection) const { mongoc_collection_destroy(collection); }
  void operator()(mongoc_cursor_t* cursor) const { mongoc_cursor_destroy(cursor); }
  void operator()(mongoc_bulk_operation_t* bulk) const { mongoc_bulk_operation_destroy(bulk); }
  void operator()(mongoc_uri_t* uri) const { mongoc_uri_destroy(uri); }
};
using TMongoClientPtr = std::unique_ptr<mongoc_client_t, TMongoDeleter>;
using TMongoCollectionPtr = std::unique_ptr<mongoc_collection_t, TMongoDeleter>;
using TMongoCursorPtr = std::unique_ptr<mongoc_cursor_t, TMongoDeleter>;
using TMongoBulkPtr = std::unique_ptr<mongoc_bulk_operation_t, TMongoDeleter>;
using TMongoUriPtr = std::unique_ptr<mongoc_uri_t, TMongoDeleter>;

/// Connects by a connection record (members host, port, database, user, password, mechanism, authdb),
/// logs in and proves it by a command. fixedText is the text of the error thrown, TStoreError (Connect);
/// its detail is the server's or the driver's, never with the password.
TMongoClientPtr connectMongo(const TStoreOptions& options, const std::string& fixedText);

/// A text member of a record or of a query object, trimmed; empty when it is not there.
std::string textMember(const TValue& record, std::string_view name);

/// The port of a connection record, 27017 when it names none. Throws TStoreError (Connect) for what is no
/// port.
std::uint16_t mongoPort(const TValue& record);

/// "Error Code: " + code + a carriage return + "Error Message: " + message.
std::string mongoErrorText(std::uint32_t code, const std::string& message);
std::string mongoErrorText(const bson_error_t& error);

}  // namespace hollowmere
