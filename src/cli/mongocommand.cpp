#include "cli/mongocommand.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <iostream>
#include <iterator>
#include <map>

#include "app/consolerun.h"
#include "cli/mongocall.h"
#include "connectors/mongodb/mongoadmin.h"
#include "connectors/mongodb/mongocopy.h"
#include "connectors/mongodb/shellrunner.h"
#include "connectors/mongodb/sqlform.h"
#include "json/json.h"
#include "settings/connectionlist.h"

namespace hollowmere {

namespace {

constexpr int pollMilliseconds = 20;

std::string readAll(std::istream& in) { return {std::istreambuf_iterator<char>(in), {}}; }

TObject parseObject(const std::string& text, const std::string& what) {
  try {
    TValue value = parseJson(text);
    if (value.is(TKind::Object)) return std::move(value.asObject());
  } catch (const TJsonError& error) {
    throw TUsageError(what + " is no JSON text: " + error.what());
  }
  throw TUsageError(what + " is no JSON object");
}

/// The whole of a text as a number.
std::int64_t parseNumber(const std::string& text, const std::string& what) {
  std::int64_t number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (fault != std::errc() || end != text.data() + text.size() || number < 0)
    throw TUsageError(what + " needs a number, not " + text);
  return number;
}

bool sameServer(const ConnectionConfig& record, const TObject& address) {
  const auto text = [](const TObject& object, const char* name) {
    const TValue* member = object.find(name);
    return member ? member->is(TKind::Int)    ? std::to_string(member->asInt())
                    : member->is(TKind::Text) ? member->asText()
                                              : std::string()
                  : std::string();
  };
  return text(record, "dbtype") == dbtype::mongodb && text(record, "host") == text(address, "host") &&
         text(record, "port") == text(address, "port");
}

/// HOST[:PORT][/DATABASE]; passwords are never asked for here, so they cannot end up in an argument list.
TObject parseAddress(const std::string& address, TProgram& program) {
  const std::size_t slash = address.find('/');
  std::string host = address.substr(0, slash);
  const std::string database = slash == std::string::npos ? std::string() : address.substr(slash + 1);
  std::int64_t port = 27017;
  if (const std::size_t colon = host.rfind(':'); colon != std::string::npos) {
    port = parseNumber(host.substr(colon + 1), "the port");
    host.resize(colon);
  }
  TObject record{{"dbtype", dbtype::mongodb}, {"host", host}, {"port", port}};
  const TConnectionListFile file(program.folder.connectionListFile(), program.cipher, program.files);
  const TConnectionList list = file.load();
  for (const ConnectionConfig& kept : list.records())
    if (sameServer(kept, record)) {
      record = kept;
      break;
    }
  if (!database.empty()) record.set("database", database);
  return record;
}

TObject findConnection(const std::string& name, TProgram& program, std::istream& in) {
  if (name == "-") return parseObject(readAll(in), "the connection");
  if (fileExists(name)) return parseObject(readWholeFile(name), name);
  return parseAddress(name, program);
}

std::string textOf(const TObject& record, const char* name) {
  const TValue* member = record.find(name);
  return member && member->is(TKind::Text) ? member->asText() : std::string();
}

int listDatabases(const TMongoCall& call) {
  for (const std::string& name : TMongoAdmin(call.options()).databases())
    call.streams.out << toJson(TValue(name)) << '\n';
  return 0;
}

int listCollections(const TMongoCall& call) {
  for (const TMongoCollectionInfo& each : TMongoAdmin(call.options()).collections(call.needDatabase()))
    call.streams.out << toJson(TObject{{"name", each.name}, {"type", each.kind}, {"options", each.options}})
                     << '\n';
  return 0;
}

int listIndexes(const TMongoCall& call) {
  const std::string collection = call.argument(0, "COLLECTION");
  for (const TObject& index : TMongoAdmin(call.options()).indexes(call.needDatabase(), collection))
    call.streams.out << toJson(index) << '\n';
  return 0;
}

int showStats(const TMongoCall& call) {
  TMongoAdmin admin(call.options());
  const TObject stats = call.hasArgument(0)
                            ? admin.collectionStats(call.needDatabase(), call.argument(0, "COLLECTION"))
                            : admin.databaseStats(call.needDatabase());
  call.streams.out << toJson(stats) << '\n';
  return 0;
}

int findDocuments(const TMongoCall& call) {
  TMongoQuery query;
  query.database = call.needDatabase();
  query.collection = call.argument(0, "COLLECTION");
  if (call.hasArgument(1)) query.filter = parseObject(call.argument(1, "FILTER"), "the filter");
  query.sort = parseObject(call.option("--sort", "{}"), "--sort");
  query.projection = parseObject(call.option("--projection", "{}"), "--projection");
  query.skip = call.number("--skip", 0);
  query.limit = call.number("-n", 0);
  query.readPreference = call.option("--read", "primary");
  TMongoAdmin admin(call.options());
  const auto rows = admin.find(query);
  while (const auto row = rows->next()) {
    call.streams.out << toJson(*row) << '\n';
    if (call.stop->isSet() || !call.streams.out) break;
  }
  return 0;
}

int runCommand(const TMongoCall& call) {
  const TObject command = parseObject(call.argument(0, "JSON"), "the command");
  const std::string database = call.database.empty() ? "admin" : call.database;
  call.streams.out << toJson(TMongoAdmin(call.options()).runCommand(database, command)) << '\n';
  return 0;
}

/// A SQL statement as the shell's command for the server at hand.
std::string translated(const TMongoCall& call, const std::string& sql) {
  const std::string version = TMongoAdmin(call.options()).serverVersion();
  const TSqlToMongo made = SqlToMongo(sql, sqlFormFor(version, TSqlFormChoice::ByServer));
  if (!made.translated()) throw TStoreError(TStoreErrorKind::Unsupported, made.message);
  return made.shellText;
}

int runShell(const TMongoCall& call) {
  TShellSettings settings;
  settings.program = call.option("--shell", call.program.settings.mongoDBshellExe);
  if (settings.program.empty())
    throw TUsageError("no shell is set: name one with --shell, or in the program's options");
  settings.dataFolder = call.program.folder.path();
  settings.timeoutMilliseconds = call.program.settings.shellTimeout * 1000;
  settings.stop = call.stop;
  TShellCommand command;
  command.database = call.database;
  command.command = call.argument(0, "COMMAND");
  if (command.command == "-") command.command = readAll(call.streams.in);
  if (isSqlStatement(command.command)) command.command = translated(call, command.command);
  command.pageSize = call.program.settings.fetchSize;
  command.page = call.number("--page", 0);
  const TShellResult result = TShellRunner(settings, call.program.dates).run(toJson(call.record), command);
  for (const TValue& value : result.values) call.streams.out << toJson(value) << '\n';
  if (!result.text.empty()) call.streams.out << result.text << '\n';
  if (result.more) call.streams.err << "There is more; --page " << command.page + 1 << " shows it.\n";
  if (result.error.empty()) return 0;
  throw TStoreError(TStoreErrorKind::Read, result.error);
}

int copyDocuments(const TMongoCall& call) {
  TCopyOrder order;
  order.source = {call.options(), call.needDatabase(), call.argument(0, "COLLECTION")};
  TObject target = findConnection(call.argument(1, "CONNECTION"), call.program, call.streams.in);
  std::string database = textOf(target, "database");
  if (database.empty()) database = call.database;
  order.target = {call.options(), database,
                  call.hasArgument(2) ? call.argument(2, "") : order.source.collection};
  order.target.options.connection = std::move(target);
  if (const std::string fault = checkCopy(order, true); !fault.empty()) throw TUsageError(fault);
  const TCopyResult result = copyCollection(order);
  call.streams.err << result.copied << " documents have been successfully copied.\n";
  if (!result.error.empty()) throw TStoreError(TStoreErrorKind::Write, result.error);
  return 0;
}

using TAction = int (*)(const TMongoCall&);

const std::map<std::string, TAction>& actions() {
  static const std::map<std::string, TAction> table{{"databases", listDatabases},
                                                    {"collections", listCollections},
                                                    {"indexes", listIndexes},
                                                    {"stats", showStats},
                                                    {"find", findDocuments},
                                                    {"command", runCommand},
                                                    {"run", runShell},
                                                    {"copy", copyDocuments},
                                                    {"gridfs", gridFsCommand}};
  return table;
}

}  // namespace

TSignalStop::TSignalStop() {
  watchSignals();
  watcher_ = std::thread([this] {
    while (!over_.load()) {
      if (interrupted()) stop_.set();
      std::this_thread::sleep_for(std::chrono::milliseconds(pollMilliseconds));
    }
  });
}

TSignalStop::~TSignalStop() {
  over_.store(true);
  watcher_.join();
}

std::string TMongoCall::argument(std::size_t place, const char* name) const {
  if (!hasArgument(place)) throw TUsageError("the argument " + std::string(name) + " is missing");
  return line.positional[place + 2];
}

std::string TMongoCall::option(const char* name, const std::string& otherwise) const {
  const auto found = line.values.find(name);
  return found == line.values.end() ? otherwise : found->second;
}

std::int64_t TMongoCall::number(const char* name, std::int64_t otherwise) const {
  const auto found = line.values.find(name);
  return found == line.values.end() ? otherwise : parseNumber(found->second, name);
}

TStoreOptions TMongoCall::options() const {
  TStoreOptions made;
  made.connection = record;
  made.stop = stop;
  return made;
}

const std::string& TMongoCall::needDatabase() const {
  if (database.empty()) throw TUsageError("no database is named: use --db");
  return database;
}

TCommandSyntax mongoSyntax() {
  return {{"CONNECTION", "ACTION"},
          {},
          {"--db", "--sort", "--projection", "--skip", "-n", "--read", "--shell", "--page"},
          3};
}

int mongoCommand(const TCommandLine& line, const TCliStreams& streams, TPrompt& prompt) {
  const auto action = actions().find(line.positional[1]);
  if (action == actions().end()) throw TUsageError("unknown action " + line.positional[1]);
  TProgram program(prompt);
  const TSignalStop stop;
  TMongoCall call{program, line, streams, stop.flag(), {}, {}};
  call.record = findConnection(line.positional[0], program, streams.in);
  call.database = call.option("--db", textOf(call.record, "database"));
  try {
    return action->second(call);
  } catch (const TUsageError&) {
    throw;
  } catch (const std::exception& error) {
    // A terminal would write the second line over the first.
    std::string text = error.what();
    std::replace(text.begin(), text.end(), '\r', '\n');
    prompt.error(text);
    return stop.flag()->isSet() ? stoppedBySignal : 1;
  }
}

}  // namespace hollowmere
