#include "connectors/mongodb/mongoadmin.h"

#include <algorithm>

#include "connectors/mongodb/mongolink.h"
#include "connectors/mongodb/mongotexts.h"

namespace hollowmere {

namespace {

/// The collection that a new database is made by.
constexpr char trialCollection[] = "quillbrook_test";

[[noreturn]] void refuse(const std::string& text) { throw TStoreError(TStoreErrorKind::Unsupported, text); }

bool flag(const TObject& object, const char* name) {
  const TValue* member = object.find(name);
  return member && member->is(TKind::Boolean) && member->asBool();
}

std::string text(const TObject& object, const char* name) {
  const TValue* member = object.find(name);
  return member && member->is(TKind::Text) ? member->asText() : std::string();
}

TObject withOptions(TObject command, const TObject& options) {
  for (const TMember& option : options) command.add(option.name, option.value);
  return command;
}

void checkIndex(const std::string& name, const TObject& keys) {
  if (name.empty()) refuse(mongotexts::noIndexName);
  if (keys.empty()) refuse(mongotexts::noIndexKeys);
  for (const TMember& key : keys)
    if (key.name.empty()) refuse(mongotexts::noKeyName);
}

/// "a_1_b_-1" is what shells call an index without a name; ours always has one.
TObject indexSpecification(const std::string& name, const TObject& keys, const TObject& options) {
  return withOptions({{"key", keys}, {"name", name}}, options);
}

}  // namespace

TMongoAdmin::TMongoAdmin(const TStoreOptions& options)
    : link_(std::make_unique<TMongoLink>(options, mongotexts::cannotConnect)) {}

TMongoAdmin::~TMongoAdmin() = default;

TObject TMongoAdmin::runCommand(const std::string& database, const TObject& command) {
  return link_->run(database, command);
}

std::string TMongoAdmin::serverVersion() { return text(runCommand("admin", {{"buildInfo", 1}}), "version"); }

TObject TMongoAdmin::databaseStats(const std::string& database) {
  return runCommand(database, {{"dbStats", 1}});
}

TObject TMongoAdmin::collectionStats(const std::string& database, const std::string& collection) {
  return runCommand(database, {{"collStats", collection}, {"verbose", true}});
}

std::vector<TMongoCommandInfo> TMongoAdmin::commands() {
  std::vector<TMongoCommandInfo> found;
  try {
    const TObject reply = runCommand("admin", {{"listCommands", 1}});
    const TValue* commands = reply.find("commands");
    if (!commands || !commands->is(TKind::Object)) return found;
    for (const TMember& command : commands->asObject()) {
      if (!command.value.is(TKind::Object)) continue;
      const TObject& about = command.value.asObject();
      found.push_back({command.name, text(about, "help"), flag(about, "internal"), flag(about, "adminOnly")});
    }
  } catch (const TMongoError& error) {
    throw TStoreError(TStoreErrorKind::Read,
                      mongotexts::commandsFault + std::string(error.what()) + mongotexts::noPrivileges);
  }
  return found;
}

std::vector<std::string> TMongoAdmin::databases() {
  std::vector<std::string> names;
  const TObject reply = runCommand("admin", {{"listDatabases", 1}, {"nameOnly", true}});
  if (const TValue* list = reply.find("databases"); list && list->is(TKind::List))
    for (const TValue& entry : list->asList())
      if (entry.is(TKind::Object)) names.push_back(text(entry.asObject(), "name"));
  return names;
}

void TMongoAdmin::createDatabase(const std::string& name) {
  if (name.empty()) refuse(mongotexts::noDatabaseName);
  const std::vector<std::string> known = databases();
  if (std::find(known.begin(), known.end(), name) != known.end()) refuse(mongotexts::databaseExists);
  try {
    runCommand(name, {{"create", trialCollection}});
    runCommand(name, {{"drop", trialCollection}});
  } catch (const TMongoError& error) {
    throw TStoreError(TStoreErrorKind::Read, mongotexts::cannotCreateDatabase,
                      "(" + std::string(error.what()) + ")");
  }
}

void TMongoAdmin::dropDatabase(const std::string& name) {
  if (name == "local" || name == "admin") refuse(mongotexts::cannotDropDatabase);
  runCommand(name, {{"dropDatabase", 1}});
}

std::vector<TMongoCollectionInfo> TMongoAdmin::collections(const std::string& database) {
  mongoc_database_t* handle = mongoc_client_get_database(link_->client(), database.c_str());
  const TMongoCursorPtr cursor(mongoc_database_find_collections_with_opts(handle, nullptr));
  mongoc_database_destroy(handle);
  std::vector<TMongoCollectionInfo> found;
  for (const TObject& entry : TMongoLink::all(cursor)) {
    const std::string kind = text(entry, "type");
    const TValue* options = entry.find("options");
    found.push_back({text(entry, "name"), kind.empty() ? "collection" : kind,
                     options && options->is(TKind::Object) ? options->asObject() : TObject()});
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return found;
}

void TMongoAdmin::createCollection(const std::string& database, const std::string& name,
                                   const TObject& options) {
  if (database.empty()) refuse(mongotexts::noDatabase);
  if (name.empty()) refuse(mongotexts::noCollectionName);
  for (const TMongoCollectionInfo& known : collections(database))
    if (known.name == name) refuse(mongotexts::collectionExists);
  runCommand(database, withOptions({{"create", name}}, options));
}

void TMongoAdmin::dropCollection(const std::string& database, const std::string& name) {
  if (name.starts_with("system.")) refuse(mongotexts::cannotDropSystem);
  runCommand(database, {{"drop", name}});
}

void TMongoAdmin::renameCollection(const std::string& database, const std::string& name,
                                   const std::string& newName) {
  if (newName.empty()) refuse(mongotexts::noCollectionName);
  runCommand("admin", {{"renameCollection", database + "." + name}, {"to", database + "." + newName}});
}

std::vector<TObject> TMongoAdmin::indexes(const std::string& database, const std::string& collection) {
  const TMongoCollectionPtr handle = link_->collection(database, collection);
  const TMongoCursorPtr cursor(mongoc_collection_find_indexes_with_opts(handle.get(), nullptr));
  return TMongoLink::all(cursor);
}

void TMongoAdmin::createIndex(const std::string& database, const std::string& collection,
                              const std::string& name, const TObject& keys, const TObject& options) {
  checkIndex(name, keys);
  runCommand(database,
             {{"createIndexes", collection}, {"indexes", TList{indexSpecification(name, keys, options)}}});
}

void TMongoAdmin::dropIndex(const std::string& database, const std::string& collection,
                            const std::string& name) {
  if (name.empty()) refuse(mongotexts::noIndexName);
  runCommand(database, {{"dropIndexes", collection}, {"index", name}});
}

void TMongoAdmin::dropAllIndexes(const std::string& database, const std::string& collection) {
  runCommand(database, {{"dropIndexes", collection}, {"index", "*"}});
}

}  // namespace hollowmere
