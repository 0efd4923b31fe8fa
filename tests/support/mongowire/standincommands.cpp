#include "support/mongowire/standincommands.h"

#include <algorithm>
#include <array>
#include <functional>

#include "support/mongowire/replies.h"
#include "support/mongowire/values.h"

namespace hollowmere::mongowire {

namespace {

using TRows = TMemoryStore::TRows;

constexpr std::int64_t kFirstBatch = 101;
constexpr std::int64_t kNoLimit = INT64_MAX;
constexpr std::size_t kMostBatchBytes = 16 * 1024 * 1024;

[[noreturn]] void badValue(const std::string& text) { throw TCommandError(2, "BadValue", text); }

/// A command's first value: the collection's name.
std::string nameSpaceOf(const TRequest& request) {
  const TBsonView body(request.body);
  const std::string command(request.command);
  const std::string_view collection = textField(body.get(), command.c_str());
  if (collection.empty())
    throw TCommandError(73, "InvalidNamespace", "collection name has invalid type or is empty");
  return std::string(request.database) + "." + std::string(collection);
}

TBson nestedOrEmpty(const bson_t* doc, const char* key) {
  const std::string_view bytes = nestedField(doc, key);
  return bytes.empty() ? TBson() : TBson(bytes);
}

TRows matching(const TMemoryStore& store, const std::string& nameSpace, const TBson& filter) {
  const TBsonView view = filter.view();
  checkFilter(view.get());
  return store.find(nameSpace, view.get());
}

void keepMatching(TRows& rows, const bson_t* filter) {
  checkFilter(filter);
  std::erase_if(rows, [filter](const TBson& row) {
    const TBsonView view = row.view();
    return !matches(view.get(), filter);
  });
}

void sortBy(TRows& rows, const bson_t* sort) {
  bson_iter_t at;
  if (!bson_iter_init(&at, sort) || !bson_iter_next(&at)) return;
  const std::string field = bson_iter_key(&at);
  const std::int64_t direction = bson_iter_as_int64(&at);
  if (bson_iter_next(&at) || (direction != 1 && direction != -1)) badValue("this server sorts by one field");
  sortRows(rows, field.c_str(), direction < 0);
}

void skipAndLimit(TRows& rows, std::int64_t skip, std::int64_t limit) {
  const auto size = static_cast<std::int64_t>(rows.size());
  rows.erase(rows.begin(), rows.begin() + std::min(skip, size));
  if (limit > 0 && limit < static_cast<std::int64_t>(rows.size()))
    rows.resize(static_cast<std::size_t>(limit));
}

std::int64_t naturalField(const bson_t* body, const char* key, std::int64_t otherwise) {
  const std::int64_t value = integerField(body, key, otherwise);
  if (value < 0)
    throw TCommandError(51024, "Location51024",
                        std::string("BSON field '") + key + "' value must be >= 0, actual value '" +
                            std::to_string(value) + "'");
  return value;
}

void refuseUnknownFindFields(const bson_t* body) {
  static constexpr std::array kKnown = {
      "find",         "filter", "sort", "skip",      "limit",           "batchSize",   "singleBatch",
      "$db",          "lsid",   "hint", "maxTimeMS", "$readPreference", "readConcern", "noCursorTimeout",
      "allowDiskUse", "comment"};
  bson_iter_t at;
  if (!bson_iter_init(&at, body)) return;
  while (bson_iter_next(&at)) {
    const std::string_view key = bson_iter_key(&at);
    if (std::find(kKnown.begin(), kKnown.end(), key) == kKnown.end())
      throw TCommandError(40415, "Location40415",
                          "BSON field 'find." + std::string(key) + "' is an unknown field.");
  }
}

/// {$group: {_id: <constant>, <name>: {$sum: 1}}}, the way a client counts.
void groupToCount(TRows& rows, const bson_t* group) {
  bson_iter_t at;
  bson_iter_t sum;
  TBsonBuilder counted;
  const bool idFirst = bson_iter_init(&at, group) && bson_iter_next(&at) &&
                       std::string_view(bson_iter_key(&at)) == "_id" && !BSON_ITER_HOLDS_UTF8(&at);
  if (idFirst) bson_append_iter(counted.get(), "_id", 3, &at);
  const bool sums = idFirst && bson_iter_next(&at) && BSON_ITER_HOLDS_DOCUMENT(&at) &&
                    bson_iter_recurse(&at, &sum) && bson_iter_next(&sum) &&
                    std::string_view(bson_iter_key(&sum)) == "$sum" && bson_iter_as_int64(&sum) == 1;
  if (!sums) badValue("this server groups only to count: {_id: constant, n: {$sum: 1}}");
  counted.int32(bson_iter_key(&at), static_cast<std::int32_t>(rows.size()));
  if (!rows.empty()) rows = {counted.take()};
}

void applyStage(TRows& rows, const bson_t* stage) {
  bson_iter_t at;
  if (!bson_iter_init(&at, stage) || !bson_iter_next(&at)) badValue("an empty pipeline stage");
  const std::string name = bson_iter_key(&at);
  const std::string_view nested = nestedBytes(at);
  if (name == "$skip") return skipAndLimit(rows, bson_iter_as_int64(&at), 0);
  if (name == "$limit") return skipAndLimit(rows, 0, bson_iter_as_int64(&at));
  if (nested.empty() || (name != "$match" && name != "$sort" && name != "$group"))
    throw TCommandError(40324, "Location40324", "Unrecognized pipeline stage name: '" + name + "'");
  const TBsonView argument(nested);
  if (name == "$match") keepMatching(rows, argument.get());
  if (name == "$sort") sortBy(rows, argument.get());
  if (name == "$group") groupToCount(rows, argument.get());
}

bool hasOperators(const bson_t* document) {
  bson_iter_t at;
  return bson_iter_init(&at, document) && bson_iter_next(&at) && bson_iter_key(&at)[0] == '$';
}

/// Goes through the rows of a write command, leaves out those the script refuses and stops where an ordered
/// command has to. `carryOut` answers with the refusal of its own, if any.
struct TRowFailure {
  std::int32_t code;
  std::string text;
};
using TRowAction = std::function<std::optional<TRowFailure>(std::int32_t index, std::string_view row)>;

void eachRow(const TRequest& request, const char* list, TFaultScript& faults, const TFaultScript::TPlan& plan,
             TWriteReply& reply, const TRowAction& carryOut) {
  const TBsonView body(request.body);
  const bool ordered = truthField(body.get(), "ordered", true);
  std::int32_t index = 0;
  eachDocument(request, list, [&](std::string_view bytes) {
    const TBsonView row(bytes);
    std::optional<TRowFailure> failure;
    if (const TFault* refused = faults.refusal(plan, static_cast<std::size_t>(index), row))
      failure = TRowFailure{refused->number, refused->text};
    else
      failure = carryOut(index, bytes);
    if (failure) reply.refuse(index, failure->code, failure->text);
    ++index;
    return !failure || !ordered;
  });
}

}  // namespace

void TStandInCommands::carryOut(const TRequest& request, const TPlan& plan, std::string& frame) {
  try {
    dispatch(request, plan, frame);
  } catch (const TCommandError& error) {
    frame.clear();
    appendReply(frame, request, error.reply().bytes());
  }
}

void TStandInCommands::dispatch(const TRequest& request, const TPlan& plan, std::string& frame) {
  const std::string_view command = request.command;
  if (command == "find") return find(request, frame);
  if (command == "getMore") return getMore(request, frame);
  if (command == "aggregate") return aggregate(request, frame);
  if (command == "listCollections") return listCollections(request, frame);
  TBson reply;
  if (command == "insert")
    reply = insert(request, plan);
  else if (command == "update")
    reply = update(request, plan);
  else if (command == "delete")
    reply = remove(request, plan);
  else if (command == "drop")
    reply = drop(request);
  else if (command == "count")
    reply = count(request);
  else if (command == "killCursors")
    reply = killCursors(request);
  else if (command == "listDatabases")
    reply = listDatabases();
  else if (command == "saslStart" || command == "saslContinue")
    throw TCommandError(18, "AuthenticationFailed", "Authentication failed.");
  else
    reply = unknownCommand(command);
  frame.clear();
  appendReply(frame, request, reply.bytes());
}

TBson TStandInCommands::insert(const TRequest& request, const TPlan& plan) {
  const std::string nameSpace = nameSpaceOf(request);
  TWriteReply reply;
  std::int32_t inserted = 0;
  eachRow(request, "documents", faults_, plan, reply,
          [&](std::int32_t, std::string_view row) -> std::optional<TRowFailure> {
            const std::optional<std::string> duplicate = store_.insert(nameSpace, row);
            if (duplicate) return TRowFailure{11000, *duplicate};
            ++inserted;
            return std::nullopt;
          });
  return reply.finish(inserted);
}

TBson TStandInCommands::update(const TRequest& request, const TPlan& plan) {
  const std::string nameSpace = nameSpaceOf(request);
  TWriteReply reply;
  TBsonBuilder upserted;
  std::int32_t matched = 0;
  std::int32_t added = 0;
  eachRow(request, "updates", faults_, plan, reply,
          [&](std::int32_t index, std::string_view row) -> std::optional<TRowFailure> {
            const TBsonView statement(row);
            const TBson filter = nestedOrEmpty(statement.get(), "q");
            const TBson document = nestedOrEmpty(statement.get(), "u");
            const TBsonView filterView = filter.view();
            const TBsonView documentView = document.view();
            checkFilter(filterView.get());
            if (hasOperators(documentView.get())) badValue("this server replaces whole documents only");
            const bool upsert = truthField(statement.get(), "upsert", false);
            const auto done = store_.replace(nameSpace, filterView.get(), documentView.get(), upsert);
            if (done.matched) ++matched;
            if (done.upsertedId) {
              const TBsonView id = done.upsertedId->view();
              TBsonBuilder entry;
              entry.int32("index", index);
              bson_concat(entry.get(), id.get());
              upserted.document(std::to_string(added++).c_str(), entry.take());
            }
            return std::nullopt;
          });
  return reply.finish(matched + added, matched, added > 0 ? std::optional(upserted.take()) : std::nullopt);
}

TBson TStandInCommands::remove(const TRequest& request, const TPlan& plan) {
  const std::string nameSpace = nameSpaceOf(request);
  TWriteReply reply;
  std::size_t removed = 0;
  eachRow(request, "deletes", faults_, plan, reply,
          [&](std::int32_t, std::string_view row) -> std::optional<TRowFailure> {
            const TBsonView statement(row);
            const TBson filter = nestedOrEmpty(statement.get(), "q");
            const TBsonView filterView = filter.view();
            checkFilter(filterView.get());
            removed +=
                store_.remove(nameSpace, filterView.get(), integerField(statement.get(), "limit", 0) == 1);
            return std::nullopt;
          });
  return reply.finish(static_cast<std::int32_t>(removed));
}

TBson TStandInCommands::drop(const TRequest& request) {
  if (!store_.drop(nameSpaceOf(request))) throw TCommandError(26, "NamespaceNotFound", "ns not found");
  return okReply();
}

TBson TStandInCommands::count(const TRequest& request) {
  const TBsonView body(request.body);
  TRows rows = matching(store_, nameSpaceOf(request), nestedOrEmpty(body.get(), "query"));
  skipAndLimit(rows, naturalField(body.get(), "skip", 0), naturalField(body.get(), "limit", 0));
  return TBsonBuilder().int32("n", static_cast<std::int32_t>(rows.size())).real("ok", 1.0).take();
}

TBson TStandInCommands::killCursors(const TRequest& request) {
  const TBsonView body(request.body);
  const TBson ids = nestedOrEmpty(body.get(), "cursors");
  const TBsonView list = ids.view();
  TBsonBuilder killed;
  bson_iter_t at;
  std::uint32_t index = 0;
  const std::lock_guard lock(mutex_);
  if (bson_iter_init(&at, list.get()))
    while (bson_iter_next(&at))
      if (cursors_.erase(bson_iter_as_int64(&at)) > 0)
        killed.int64(std::to_string(index++).c_str(), bson_iter_as_int64(&at));
  return TBsonBuilder().array("cursorsKilled", killed.take()).real("ok", 1.0).take();
}

TBson TStandInCommands::listDatabases() {
  TBsonBuilder databases;
  std::uint32_t index = 0;
  std::string last;
  for (const std::string& name : store_.nameSpaces()) {
    const std::string database = name.substr(0, name.find('.'));
    if (database == last) continue;
    last = database;
    TBsonBuilder entry;
    entry.text("name", database).int64("sizeOnDisk", 0).boolean("empty", false);
    databases.document(std::to_string(index++).c_str(), entry.take());
  }
  return TBsonBuilder().array("databases", databases.take()).int64("totalSize", 0).real("ok", 1.0).take();
}

void TStandInCommands::find(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  refuseUnknownFindFields(body.get());
  const std::int64_t skip = naturalField(body.get(), "skip", 0);
  const std::int64_t limit = naturalField(body.get(), "limit", 0);
  const std::int64_t batchSize = naturalField(body.get(), "batchSize", kFirstBatch);
  TCursor cursor{nameSpaceOf(request), {}, 0};
  cursor.rows = matching(store_, cursor.nameSpace, nestedOrEmpty(body.get(), "filter"));
  const TBson sort = nestedOrEmpty(body.get(), "sort");
  const TBsonView sortView = sort.view();
  sortBy(cursor.rows, sortView.get());
  skipAndLimit(cursor.rows, skip, limit);
  openCursor(request, std::move(cursor), batchSize, !truthField(body.get(), "singleBatch", false), frame);
}

void TStandInCommands::aggregate(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  TCursor cursor{nameSpaceOf(request), {}, 0};
  cursor.rows = store_.rows(cursor.nameSpace);
  const TBson pipeline = nestedOrEmpty(body.get(), "pipeline");
  const TBsonView stages = pipeline.view();
  bson_iter_t at;
  if (bson_iter_init(&at, stages.get())) {
    while (bson_iter_next(&at)) {
      const TBsonView stage(nestedBytes(at));
      applyStage(cursor.rows, stage.get());
    }
  }
  const TBson options = nestedOrEmpty(body.get(), "cursor");
  const TBsonView optionsView = options.view();
  const std::int64_t batchSize = naturalField(optionsView.get(), "batchSize", kFirstBatch);
  openCursor(request, std::move(cursor), batchSize, true, frame);
}

void TStandInCommands::listCollections(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  const std::string prefix = std::string(request.database) + ".";
  TCursor cursor{prefix + "$cmd.listCollections", {}, 0};
  for (const std::string& name : store_.nameSpaces()) {
    if (!name.starts_with(prefix)) continue;
    TBsonBuilder entry;
    entry.text("name", name.substr(prefix.size())).text("type", "collection").document("options", TBson());
    entry.document("info", TBsonBuilder().boolean("readOnly", false).take());
    cursor.rows.push_back(entry.take());
  }
  const TBson filter = nestedOrEmpty(body.get(), "filter");
  const TBsonView filterView = filter.view();
  keepMatching(cursor.rows, filterView.get());
  openCursor(request, std::move(cursor), kNoLimit, true, frame);
}

namespace {

/// Moves rows into the answer as far as the batch size and the size of a message allow.
template <typename TCursorKind>
void fillBatch(TCursorReply& reply, TCursorKind& cursor, std::int64_t batchSize) {
  for (std::int64_t taken = 0; taken < batchSize && cursor.next < cursor.rows.size(); ++taken) {
    const std::string& row = cursor.rows[cursor.next].bytes();
    if (taken > 0 && reply.bytes() + row.size() > kMostBatchBytes) return;
    reply.element().append(row);
    ++cursor.next;
  }
}

}  // namespace

void TStandInCommands::openCursor(const TRequest& request, TCursor cursor, std::int64_t batchSize, bool keep,
                                  std::string& frame) {
  TCursorReply reply(frame, request, cursor.nameSpace, true);
  fillBatch(reply, cursor, batchSize);
  if (!keep || cursor.next == cursor.rows.size()) return reply.finish(0);
  const std::lock_guard lock(mutex_);
  reply.finish(++lastCursor_);
  cursors_.emplace(lastCursor_, std::move(cursor));
}

void TStandInCommands::getMore(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  const std::int64_t id = integerField(body.get(), "getMore", 0);
  std::int64_t batchSize = naturalField(body.get(), "batchSize", 0);
  if (batchSize == 0) batchSize = kNoLimit;
  const std::lock_guard lock(mutex_);
  const auto found = cursors_.find(id);
  if (found == cursors_.end())
    throw TCommandError(43, "CursorNotFound", "cursor id " + std::to_string(id) + " not found");
  TCursor& cursor = found->second;
  TCursorReply reply(frame, request, cursor.nameSpace, false);
  fillBatch(reply, cursor, batchSize);
  const bool over = cursor.next == cursor.rows.size();
  reply.finish(over ? 0 : id);
  if (over) cursors_.erase(found);
}

}  // namespace hollowmere::mongowire
