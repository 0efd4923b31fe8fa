#include "connectors/mongodb/shellscript.h"

#include "connectors/mongodb/mongoclient.h"
#include "connectors/mongodb/shellstatements.h"
#include "json/json.h"

namespace hollowmere {

namespace {

/// As a text of JavaScript; what ends a line there but not in JSON is escaped.
std::string literal(std::string_view text) {
  std::string out = toJson(TValue(text));
  for (const char* separator : {"\xE2\x80\xA8", "\xE2\x80\xA9"})
    for (std::size_t at = 0; (at = out.find(separator, at)) != std::string::npos;)
      out.replace(at, 3, separator[2] == '\xA8' ? "\\u2028" : "\\u2029");
  return out;
}

std::string connectionString(const TValue& record, const std::string& database) {
  const std::string user = textMember(record, "user");
  std::string host = textMember(record, "host");
  if (host.empty()) host = "localhost";
  if (host.find(':') != std::string::npos && !host.starts_with('[')) host = "[" + host + "]";
  std::string uri = "mongodb://";
  if (!user.empty()) uri += percentEncoded(user) + ":" + percentEncoded(textMember(record, "password")) + "@";
  uri += host + ":" + std::to_string(mongoPort(record)) + "/" + percentEncoded(database) +
         "?directConnection=true&serverSelectionTimeoutMS=10000&appName=hollowmere";
  if (user.empty()) return uri;
  std::string authdb = textMember(record, "authdb");
  if (authdb.empty()) authdb = textMember(record, "database");
  if (!authdb.empty()) uri += "&authSource=" + percentEncoded(authdb);
  const std::string mechanism = textMember(record, "mechanism");
  return mechanism.empty() ? uri : uri + "&authMechanism=" + percentEncoded(mechanism);
}

constexpr char helpers[] = R"(function __hmSay(kind, value) {
  let text;
  try { text = EJSON.stringify(value, {relaxed: false}); } catch (e) { text = JSON.stringify(String(value)); }
  if (text !== undefined) print(__hmMark + kind + text);
}
function __hmShow(value) {
  if (value === undefined || typeof value === 'function') return;
  if (value === null || typeof value !== 'object' || typeof value.hasNext !== 'function' ||
      typeof value.next !== 'function') {
    __hmSay('R', value);
    return;
  }
  for (let n = 0; n < __hmSkip && value.hasNext(); ++n) value.next();
  for (let n = 0; n < __hmSize && value.hasNext(); ++n) __hmSay('R', value.next());
  if (value.hasNext()) __hmSay('M', null);
  value.close();
}
)";

constexpr char ending[] = R"(
} catch (e) {
  __hmSay('E', {name: String(e.name), code: typeof e.code === 'number' ? e.code : 0,
    errmsg: String(e.errmsg || e.message || e)});
  quit(1);
}
)";

}  // namespace

std::string percentEncoded(std::string_view text) {
  constexpr char digits[] = "0123456789ABCDEF";
  constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.~";
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (plain.find(c) != std::string_view::npos)
      out += c;
    else
      out += std::string{'%', digits[byte >> 4], digits[byte & 15]};
  }
  return out;
}

std::string legacyScript(const TShellCommand& command) {
  std::string script;
  if (!command.database.empty()) script += "use " + command.database + "\n";
  script += "DBQuery.shellBatchSize = " + std::to_string(command.pageSize) + "\n";
  if (command.readPreference != "primary")
    script += "db.getMongo().setReadPref('" + command.readPreference + "')\n";
  script += command.command + "\n";
  for (std::int64_t page = 0; page < command.page; ++page) script += "it\n";
  return script;
}

std::string todayScript(const TShellCommand& command, const TValue& record, std::string_view mark) {
  const std::string database = command.database.empty() ? textMember(record, "database") : command.database;
  std::string script = "const __hmMark = " + literal(mark) + ";\n";
  script += "const __hmSize = " + std::to_string(command.pageSize) + ";\n";
  script += "const __hmSkip = " + std::to_string(command.pageSize * command.page) + ";\n";
  script += helpers;
  script +=
      "try {\ndb = connect(" + literal(connectionString(record, textMember(record, "database"))) + ");\n";
  if (!database.empty()) script += "db = db.getSiblingDB(" + literal(database) + ");\n";
  if (command.readPreference != "primary")
    script += "db.getMongo().setReadPref(" + literal(command.readPreference) + ");\n";
  return script + scriptStatements(command.command) + ending;
}

std::string scriptStatements(std::string_view command) {
  std::string out;
  for (const TShellStatement& statement : splitStatements(command)) {
    using enum TShellStatement::TKind;
    switch (statement.kind) {
      case Expression: out += "__hmShow((" + statement.text + "\n));\n"; break;
      case Other: out += statement.text + "\n"; break;
      case Use: out += "db = db.getSiblingDB(" + literal(statement.text) + ");\n"; break;
      case ShowDatabases: out += "__hmShow(db.adminCommand({listDatabases: 1}).databases);\n"; break;
      case ShowCollections: out += "__hmShow(db.getCollectionNames());\n"; break;
      case ShowUsers: out += "__hmShow(db.getUsers().users);\n"; break;
      case ShowRoles: out += "__hmShow(db.getRoles({showBuiltinRoles: true}).roles);\n"; break;
      case Exit: out += "quit(0);\n"; break;
    }
  }
  return out;
}

}  // namespace hollowmere
