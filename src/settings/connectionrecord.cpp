#include "settings/connectionrecord.h"

#include <algorithm>
#include <charconv>

#include "json/json.h"

namespace hollowmere {

namespace {

using enum TFieldKind;
using TTexts = std::string_view;

constexpr std::array<TTexts, 2> mechanisms = {"MONGODB-CR", "SCRAM-SHA-1"};
constexpr std::array<TTexts, 8> encodings = {
    "Default", "Operating System Default", "8 Bit", "ASCII", "UTF7", "UTF8", "UTF16BE", "UTF16LE"};
constexpr std::array<TTexts, 9> readLevels = {
    "ONE", "QUORUM", "LOCAL_QUORUM", "EACH_QUORUM", "ALL", "ANY", "TWO", "THREE", ""};
constexpr std::span<const TTexts> writeLevels{readLevels.data(), readLevels.size() - 1};
constexpr std::array<TTexts, 2> protocols = {"http", "https"};
constexpr std::array<TTexts, 4> proxyTypes = {"None", "Basic", "Ntlm", "Digest"};

constexpr std::array<TConnectionField, 3> oracleFields = {{
    {"user", "User name", Text, "", {}, "Please specify Oracle database user."},
    {"password", "Password", Password, "", {}, "Please specify Oracle database user password."},
    {"database",
     "Oracle TNS Service Name/host:port:SID or host:port:SN=dbservice",
     Text,
     "",
     {},
     "Please specify Oracle database service name."},
}};

constexpr std::array<TConnectionField, 7> mongodbFields = {{
    {"host", "Host", Text, "", {}, "Please specify MongoDB instance host."},
    {"port", "Port", Number, "27017"},
    {"database", "Database Name", Text, "", {}, "Please specify MongoDB database name."},
    {"user", "User name"},
    {"password", "Password", Password},
    {"mechanism", "Authentication Mechanism", Choice, "", mechanisms},
    {"authdb", "Authentication Database"},
}};

/// Beyond what these stores' records always had.
constexpr TConnectionField answerTime = {"timeout", "Answer Time-Out (Seconds)", Number, "", {}, {}, true};

constexpr std::array<TConnectionField, 8> cassandraFields = {{
    {"host", "Host", Text, "", {}, "Please specify Cassandra database host."},
    {"port", "Port", Number, "9160"},
    {"user", "User name"},
    {"password", "Password", Password},
    {"encoding", "Encoding", Choice, "Default", encodings},
    {"readlevel", "Read Consistency Level", Choice, "ONE", readLevels},
    {"writelevel", "Write Consistency Level", Choice, "ANY", writeLevels},
    answerTime,
}};

constexpr std::array<TConnectionField, 5> hbaseFields = {{
    {"host", "Host", Text, "", {}, "Please specify HBase database host."},
    {"port", "Port", Number, "9090"},
    {"infoport", "Info Port", Number, "60010"},
    {"encoding", "Encoding", Choice, "Default", encodings},
    answerTime,
}};

constexpr std::array<TConnectionField, 10> couchdbFields = {{
    {"host", "Host", Text, "", {}, "Please specify CouchDB database host."},
    {"port", "Port", Number, "5984"},
    {"protocol", "Protocol", Choice, "http", protocols, "Please specify protocol."},
    {"proxyauthtype", "Proxy Authetication Type", Choice, "None", proxyTypes},
    {"proxyhost", "Proxy Server Host"},
    {"proxyport", "Proxy Server Port", Number, "0"},
    {"proxyuser", "Proxy Server User"},
    {"proxypwd", "Proxy Server User Password", Password},
    {"user", "User name"},
    {"password", "Password", Password},
}};

constexpr std::array<TTexts, 10> couchdbRows = {"host",      "port",          "protocol",  "user",
                                                "password",  "proxyauthtype", "proxyhost", "proxyport",
                                                "proxyuser", "proxypwd"};

constexpr std::array<TConnectionField, 11> couchbaseFields = {{
    {"host", "Host", Text, "", {}, "Please specify Couchbase database host."},
    {"port", "Port", Number, "8091"},
    {"restport", "REST Port", Number, "8092"},
    {"protocol", "Protocol", Choice, "http", protocols, "Please specify protocol."},
    {"proxyauthtype", "Proxy Authentication Type", Choice, "None", proxyTypes},
    {"proxyhost", "Proxy Server Host"},
    {"proxyport", "Proxy Server Port", Number, "0"},
    {"proxyuser", "Proxy Server User"},
    {"proxypwd", "Proxy Server User Password", Password},
    {"user", "User name"},
    {"password", "Password", Password},
}};

constexpr std::array<TTexts, 11> couchbaseRows = {"host",      "port",      "restport",      "protocol",
                                                  "user",      "password",  "proxyauthtype", "proxyhost",
                                                  "proxyport", "proxyuser", "proxypwd"};

constexpr std::array<TConnectionType, 6> types = {{
    {dbtype::oracle, "oracle.rtf", oracleFields, {}},
    {dbtype::mongodb, "mongodb.rtf", mongodbFields, {}},
    {dbtype::cassandra, "cassandra.rtf", cassandraFields, {}},
    {dbtype::hbase, "hbase.rtf", hbaseFields, {}},
    {dbtype::couchdb, "couchdb.rtf", couchdbFields, couchdbRows},
    {dbtype::couchbase, "couchbase.rtf", couchbaseFields, couchbaseRows},
}};

std::string valueOf(const TFieldValues& values, std::string_view member) {
  const auto found = values.find(member);
  return found == values.end() ? std::string() : found->second;
}

std::string textOf(const ConnectionConfig& record, std::string_view member) {
  const TValue* value = record.find(member);
  if (value == nullptr || value->isNull()) return {};
  return value->is(TKind::Text) ? value->asText() : toJson(*value);
}

/// The number of a cell; an empty cell is 0. -1 when it is none or no port.
int portOf(const std::string& text) {
  if (text.empty()) return 0;
  int port = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  const bool whole = error == std::errc() && stop == text.data() + text.size();
  return whole && port >= 0 && port <= 65535 ? port : -1;
}

bool holdsProtocol(std::string host) {
  std::ranges::transform(host, host.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return host.find("http:") != std::string::npos || host.find("https:") != std::string::npos;
}

bool isSecret(std::string_view member) {
  constexpr std::array<TTexts, 3> secrets = {"password", "proxypwd", "saslpwd"};
  return std::ranges::any_of(secrets, [member](TTexts name) { return equalIgnoringCase(name, member); });
}

TValue replaceSecrets(const TValue& value, TTexts text) {
  TValue changed = value;
  if (changed.is(TKind::List))
    for (TValue& item : changed.asList()) item = replaceSecrets(item, text);
  if (changed.is(TKind::Object))
    for (TMember& member : changed.asObject())
      member.value = isSecret(member.name) ? TValue(text) : replaceSecrets(member.value, text);
  return changed;
}

std::string hostColumn(const ConnectionConfig& record, std::string_view type) {
  if (type == dbtype::mongodb)
    return textOf(record, "host") + "@" + textOf(record, "database") + "/" + textOf(record, "user");
  if (type == dbtype::oracle) return textOf(record, "user") + "@" + textOf(record, "database");
  return textOf(record, "host");
}

}  // namespace

std::span<const TConnectionType> connectionTypes() { return types; }

const TConnectionType* findConnectionType(std::string_view dbType) {
  const auto* const found = std::ranges::find(types, dbType, &TConnectionType::dbType);
  return found == types.end() ? nullptr : found;
}

std::vector<std::string> fieldChoices(const TConnectionField& field, std::string_view text) {
  std::vector<std::string> choices(field.choices.begin(), field.choices.end());
  for (const std::string_view further : {field.initial, text})
    if (std::ranges::find(choices, further) == choices.end()) choices.emplace(choices.begin(), further);
  return choices;
}

TFieldValues newConnectionValues(const TConnectionType& type) {
  TFieldValues values;
  for (const TConnectionField& field : type.fields) values.emplace(field.member, field.initial);
  return values;
}

TFieldValues connectionValues(const TConnectionType& type, const ConnectionConfig& record) {
  TFieldValues values = newConnectionValues(type);
  for (auto& [member, text] : values)
    if (record.contains(member)) text = textOf(record, member);
  return values;
}

std::optional<TFieldFault> findFieldFault(const TConnectionType& type, const TFieldValues& values) {
  for (const TConnectionField& field : type.fields)
    if (!field.required.empty() && valueOf(values, field.member).empty())
      return TFieldFault{field.member, std::string(field.required)};
  if (holdsProtocol(valueOf(values, "host")))
    return TFieldFault{"host", "Do not use http: or https: protocol prefixes in the host name."};
  for (const TConnectionField& field : type.fields)
    if (field.kind == Number && portOf(valueOf(values, field.member)) < 0)
      return TFieldFault{field.member,
                         std::string(field.caption) + " must be a whole number from 0 to 65535."};
  return std::nullopt;
}

std::string checkConnection(const TConnectionType& type, const TFieldValues& values) {
  const auto fault = findFieldFault(type, values);
  return fault ? fault->message : std::string();
}

ConnectionConfig buildConnection(const TConnectionType& type, const TFieldValues& values) {
  ConnectionConfig record;
  record.add("dbtype", type.dbType);
  for (const TConnectionField& field : type.fields) {
    std::string text = valueOf(values, field.member);
    if (field.omitted && text.empty()) continue;
    const bool number = field.kind == Number;
    record.add(std::string(field.member), number ? TValue(portOf(text)) : TValue(std::move(text)));
  }
  return record;
}

TConnectionRow connectionRow(const ConnectionConfig& record) {
  const std::string type = textOf(record, "dbtype");
  const std::string port = type == dbtype::oracle ? std::string() : textOf(record, "port");
  return {hostColumn(record, type), port, type, {}, toJson(record)};
}

TValue maskSecrets(const TValue& value) { return replaceSecrets(value, "********"); }

TValue withoutSecrets(const TValue& value) { return replaceSecrets(value, ""); }

bool isConfigured(const TValue& value) {
  if (value.is(TKind::Object)) return !value.asObject().empty();
  return value.is(TKind::Text) && !value.asText().empty() && value.asText() != "{}";
}

std::string_view configuredText(const TValue& value) {
  return isConfigured(value) ? "Configured" : "Not Configured";
}

}  // namespace hollowmere
