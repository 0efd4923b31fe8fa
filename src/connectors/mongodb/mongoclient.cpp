#include "connectors/mongodb/mongoclient.h"

#include <charconv>

#include "connectors/mongodb/bsonvalue.h"
#include "connectors/mongodb/stopstream.h"

namespace hollowmere {

namespace {

/// The driver's set-up and clean-up of the whole process.
struct TMongoLibrary {
  TMongoLibrary() {
    mongoc_init();
    // Its default handler writes to standard output, where our data goes.
    mongoc_log_set_handler(nullptr, nullptr);
  }
  ~TMongoLibrary() { mongoc_cleanup(); }
  TMongoLibrary(const TMongoLibrary&) = delete;
  TMongoLibrary& operator=(const TMongoLibrary&) = delete;
};

void initLibrary() { static const TMongoLibrary library; }

TMongoUriPtr makeUri(const TValue& record) {
  const std::string host = textMember(record, "host");
  TMongoUriPtr uri(
      mongoc_uri_new_for_host_port(host.empty() ? "localhost" : host.c_str(), mongoPort(record)));
  if (!uri) return nullptr;
  bool good = true;
  if (const std::string user = textMember(record, "user"); !user.empty()) {
    const std::string mechanism = textMember(record, "mechanism");
    std::string authdb = textMember(record, "authdb");
    if (authdb.empty()) authdb = textMember(record, "database");
    good = mongoc_uri_set_username(uri.get(), user.c_str()) &&
           mongoc_uri_set_password(uri.get(), textMember(record, "password").c_str()) &&
           (authdb.empty() || mongoc_uri_set_auth_source(uri.get(), authdb.c_str())) &&
           (mechanism.empty() || mongoc_uri_set_auth_mechanism(uri.get(), mechanism.c_str()));
  }
  mongoc_uri_set_appname(uri.get(), "hollowmere");
  return good ? std::move(uri) : nullptr;
}

/// The driver does not always say which server it could not reach.
std::string detailOf(const bson_error_t& error, const mongoc_uri_t& uri) {
  std::string detail = error.message;
  const mongoc_host_list_t* host = mongoc_uri_get_hosts(&uri);
  if (host && detail.find(host->host_and_port) == std::string::npos)
    detail = std::string(host->host_and_port) + ": " + detail;
  const bool versions =
      error.domain == MONGOC_ERROR_PROTOCOL && error.code == MONGOC_ERROR_PROTOCOL_BAD_WIRE_VERSION;
  if (versions) detail += " (servers of version 3.6 or later can be used)";
  return detail;
}

}  // namespace

std::uint16_t mongoPort(const TValue& record) {
  const TValue* port = record.asObject().find("port");
  if (!port || port->isNull() || *port == TValue("")) return 27017;
  std::int64_t number = port->is(TKind::Int) ? port->asInt() : 0;
  if (port->is(TKind::Text)) {
    const std::string text = textMember(record, "port");
    if (std::from_chars(text.data(), text.data() + text.size(), number).ptr != text.data() + text.size())
      number = 0;
  }
  if (number < 1 || number > 65535)
    throw TStoreError(TStoreErrorKind::Connect,
                      "The port of the MongoDB connection must be a number from 1 to 65535.");
  return static_cast<std::uint16_t>(number);
}

TMongoClientPtr connectMongo(const TStoreOptions& options, const std::string& fixedText) {
  initLibrary();
  const TValue& record = options.connection;
  const TMongoUriPtr uri = record.is(TKind::Object) ? makeUri(record) : nullptr;
  if (!uri)
    throw TStoreError(TStoreErrorKind::Connect,
                      fixedText.substr(0, fixedText.size() - 1) + ": unable to parse connection string.");
  bson_error_t error{};
  TMongoClientPtr client(mongoc_client_new_from_uri_with_error(uri.get(), &error));
  if (!client) throw TStoreError(TStoreErrorKind::Connect, fixedText, detailOf(error, *uri));
  mongoc_client_set_error_api(client.get(), MONGOC_ERROR_API_VERSION_2);
  useStopStreams(client.get(), options.stop);
  const TBsonPtr ping(bson_new());
  BSON_APPEND_INT32(ping.get(), "ping", 1);
  const std::string database = textMember(record, "database");
  if (!mongoc_client_command_simple(client.get(), database.empty() ? "admin" : database.c_str(), ping.get(),
                                    nullptr, nullptr, &error))
    throw TStoreError(TStoreErrorKind::Connect, fixedText, detailOf(error, *uri));
  return client;
}

std::string textMember(const TValue& record, std::string_view name) {
  if (!record.is(TKind::Object)) return {};
  const TValue* member = record.asObject().find(name);
  if (!member || !member->is(TKind::Text)) return {};
  const std::string& text = member->asText();
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string mongoErrorText(std::uint32_t code, const std::string& message) {
  return "Error Code: " + std::to_string(code) + "\rError Message: " + message;
}

std::string mongoErrorText(const bson_error_t& error) { return mongoErrorText(error.code, error.message); }

}  // namespace hollowmere
