#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "json/value.h"

namespace hollowmere {

/// The kinds of store, in the order in which every list shows them. DbType is kept as its text, so that a
/// further store is one more line here.
namespace dbtype {
inline constexpr std::string_view oracle = "Oracle";
inline constexpr std::string_view mongodb = "MongoDB";
inline constexpr std::string_view cassandra = "Cassandra";
inline constexpr std::string_view hbase = "HBase";
inline constexpr std::string_view couchdb = "CouchDB";
inline constexpr std::string_view couchbase = "Couchbase";
inline constexpr std::string_view jsonFile = "JSON File";
inline constexpr std::array all = {oracle, mongodb, cassandra, hbase, couchdb, couchbase, jsonFile};
}  // namespace dbtype

/// One connection: a flat object whose member dbtype tells which others there are.
using ConnectionConfig = TObject;

enum class TFieldKind {
  Text,
  Number,    ///< a whole number from 0 to 65535; kept as a JSON number
  Password,  ///< shown as "*"
  Choice,    ///< one of the choices
};

/// One member of a connection record and its row in the connection dialog.
struct TConnectionField {
  std::string_view member;
  std::string_view caption;
  TFieldKind kind = TFieldKind::Text;
  std::string_view initial = {};  ///< of a new connection; a number in digits
  std::span<const std::string_view> choices = {};
  std::string_view required = {};  ///< the message when it is empty; empty: optional
  bool omitted = false;            ///< from the record when it is empty
};

/// One kind of store as the connection dialog knows it.
struct TConnectionType {
  std::string_view dbType;
  std::string_view helpFile;                 ///< in the program's Help folder
  std::span<const TConnectionField> fields;  ///< in the order of the record, behind dbtype
  std::span<const std::string_view> rows;    ///< members in the order of the dialog; empty: as fields
};

/// The types that have a connection record, in the order of dbtype::all.
std::span<const TConnectionType> connectionTypes();
/// nullptr for a type without a record. Names are compared exactly.
const TConnectionType* findConnectionType(std::string_view dbType);

/// What stands in the rows of the dialog: member to text.
using TFieldValues = std::map<std::string, std::string, std::less<>>;

/// What a choice offers while a text stands in it: the field's choices; before them, when they lack it, the
/// value of a new connection, so that it can be had again, and the text itself, so that it is kept.
std::vector<std::string> fieldChoices(const TConnectionField& field, std::string_view text);

/// The rows of a new connection.
TFieldValues newConnectionValues(const TConnectionType& type);
/// The rows for an existing record; a member it lacks stands as for a new connection.
TFieldValues connectionValues(const TConnectionType& type, const ConnectionConfig& record);
/// A row that cannot stay as it is.
struct TFieldFault {
  std::string_view member;
  std::string message;
};

/// The first fault of the rows, in the order of the checks; nothing when all is well.
std::optional<TFieldFault> findFieldFault(const TConnectionType& type, const TFieldValues& values);
/// Its message; empty when all is well.
std::string checkConnection(const TConnectionType& type, const TFieldValues& values);
/// The record of values that checkConnection() passed.
ConnectionConfig buildConnection(const TConnectionType& type, const TFieldValues& values);

/// A saved connection as the connection list shows it.
using TConnectionRow = std::array<std::string, 5>;
inline constexpr std::array<std::string_view, 5> connectionColumns = {"Host", "Port", "Database Type",
                                                                      "Configure", "Connection JSON"};
TConnectionRow connectionRow(const ConnectionConfig& record);

/// A copy for display and logs in which the values of all password members, at any depth, are "********".
TValue maskSecrets(const TValue& value);

/// A copy in which the values of all password members, at any depth, are empty.
TValue withoutSecrets(const TValue& value);

/// Whether a connection or a query is there: neither an empty object nor an empty text nor "{}".
bool isConfigured(const TValue& value);
/// "Configured" or "Not Configured".
std::string_view configuredText(const TValue& value);

}  // namespace hollowmere
