#include "support/mongowire/virtualcollection.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "support/mongowire/replies.h"

namespace hollowmere::mongowire {

namespace {

constexpr std::uint64_t kFirstBatch = 101;
constexpr std::size_t kMostBatchBytes = 16 * 1024 * 1024;

struct TPatch {
  std::size_t offset;
  bson_type_t type;
};

TPatch patchAt(const bson_t* doc, const std::string& field) {
  bson_iter_t at;
  if (!bson_iter_init_find(&at, doc, field.c_str()))
    throw std::invalid_argument("the template has no field '" + field + "'");
  const bson_type_t type = bson_iter_type(&at);
  if (type != BSON_TYPE_INT32 && type != BSON_TYPE_INT64 && type != BSON_TYPE_OID)
    throw std::invalid_argument("field '" + field +
                                "' of the template is neither an integer nor an ObjectId");
  // An element is its type byte, its name and a zero, then the value.
  return {bson_iter_offset(&at) + 1 + field.size() + 1, type};
}

void patch(std::string& out, std::size_t start, const TPatch& patch, std::uint64_t index) {
  const std::size_t offset = start + patch.offset;
  if (patch.type == BSON_TYPE_INT32) {
    putInt32(out, offset, static_cast<std::int32_t>(index));
  } else if (patch.type == BSON_TYPE_INT64) {
    putInt64(out, offset, static_cast<std::int64_t>(index));
  } else {
    putInt64(out, offset + 4, static_cast<std::int64_t>(__builtin_bswap64(index)));
  }
}

std::uint64_t naturalField(const bson_t* body, const char* key, std::uint64_t otherwise) {
  const std::int64_t value = integerField(body, key, static_cast<std::int64_t>(otherwise));
  if (value < 0)
    throw TCommandError(51024, "Location51024", std::string("BSON field '") + key + "' value must be >= 0");
  return static_cast<std::uint64_t>(value);
}

std::string nameSpaceOf(const TRequest& request, const bson_t* body, const char* field) {
  return std::string(request.database) + "." + std::string(textField(body, field));
}

void replyWith(std::string& frame, const TRequest& request, const TBson& document) {
  frame.clear();
  appendReply(frame, request, document.bytes());
}

/// The value an equality filter asks for: an integer, or an ObjectId's last eight bytes; 0 for other types.
std::uint64_t wantedIndex(const bson_iter_t& value) {
  if (BSON_ITER_HOLDS_NUMBER(&value)) return static_cast<std::uint64_t>(bson_iter_as_int64(&value));
  if (!BSON_ITER_HOLDS_OID(&value)) return 0;
  std::uint64_t big;
  std::memcpy(&big, bson_iter_oid(&value)->bytes + 4, sizeof big);
  return __builtin_bswap64(big);
}

}  // namespace

TGenerator patchedTemplate(const TBson& document, const std::vector<std::string>& fields) {
  std::vector<TPatch> patches;
  const TBsonView view = document.view();
  for (const std::string& field : fields) patches.push_back(patchAt(view.get(), field));
  return [bytes = document.bytes(), patches = std::move(patches)](std::uint64_t index, std::string& out) {
    const std::size_t start = out.size();
    out.append(bytes);
    for (const TPatch& each : patches) patch(out, start, each, index);
  };
}

TBson sampleDocument(std::size_t bytes) {
  TBsonBuilder row;
  row.int64("_id", 0)
      .int64("number", 0)
      .text("name", "Ada Lovelace")
      .real("price", 12.5)
      .boolean("sold", true);
  BSON_APPEND_DATE_TIME(row.get(), "day", 1577934245000);
  constexpr std::size_t element = sizeof(
                                      "\x02"
                                      "text") +
                                  4 + 1;  // type, name, zero; length, zero
  const std::size_t have = row.get()->len + element;
  if (bytes < have || bytes < 128) throw std::invalid_argument("a sample document needs 128 bytes or more");
  return row.text("text", std::string(bytes - have, 'x')).take();
}

bool TVirtualCollection::answer(const TRequest& request, std::string& frame) {
  if (request.command == "find")
    find(request, frame);
  else if (request.command == "getMore")
    getMore(request, frame);
  else if (request.command == "killCursors")
    killCursors(request, frame);
  else if (request.command == "count")
    count(request, frame);
  else if (request.command == "aggregate")
    aggregate(request, frame);
  else if (request.command == "listCollections")
    listCollections(request, frame);
  else
    return false;
  return true;
}

std::uint64_t TVirtualCollection::served() const {
  const std::lock_guard lock(mutex_);
  return served_;
}

TVirtualCollection::TCursor TVirtualCollection::select(const bson_t* filter) const {
  bson_iter_t at;
  if (!bson_iter_init(&at, filter) || !bson_iter_next(&at)) return {{}, 0, options_.count};
  const std::string_view field = bson_iter_key(&at);
  const std::uint64_t wanted = wantedIndex(at);
  if (!nestedBytes(at).empty() || field.starts_with('$') || bson_iter_next(&at))
    throw TCommandError(2, "BadValue", "this server filters by one field's equality only");
  if (field == "_id") return {{}, wanted, wanted < options_.count ? wanted + 1 : wanted};
  const std::uint64_t first = wanted * options_.rowsPerMatch;
  return {{}, first, options_.count > 0 ? first + options_.rowsPerMatch : first};
}

void TVirtualCollection::find(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  const std::string_view filterBytes = nestedField(body.get(), "filter");
  const TBson none;
  const TBsonView filter(filterBytes.empty() ? std::string_view(none.bytes()) : filterBytes);
  TCursor cursor = select(filter.get());
  cursor.nameSpace = nameSpaceOf(request, body.get(), "find");
  cursor.next = std::min(cursor.next + naturalField(body.get(), "skip", 0), cursor.end);
  const std::uint64_t limit = naturalField(body.get(), "limit", 0);
  if (limit > 0) cursor.end = std::min(cursor.end, cursor.next + limit);
  TCursorReply reply(frame, request, cursor.nameSpace, true);
  fillBatch(reply, cursor, naturalField(body.get(), "batchSize", kFirstBatch));
  if (cursor.next == cursor.end || truthField(body.get(), "singleBatch", false)) return reply.finish(0);
  const std::lock_guard lock(mutex_);
  reply.finish(++lastCursor_);
  cursors_.emplace(lastCursor_, std::move(cursor));
}

void TVirtualCollection::getMore(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  const std::int64_t id = integerField(body.get(), "getMore", 0);
  std::uint64_t batchSize = naturalField(body.get(), "batchSize", 0);
  if (batchSize == 0) batchSize = UINT64_MAX;
  // Taken out while it is being served, so that connections encode their batches side by side.
  std::unique_lock lock(mutex_);
  auto node = cursors_.extract(id);
  lock.unlock();
  if (node.empty())
    throw TCommandError(43, "CursorNotFound", "cursor id " + std::to_string(id) + " not found");
  TCursor& cursor = node.mapped();
  TCursorReply reply(frame, request, cursor.nameSpace, false);
  fillBatch(reply, cursor, batchSize);
  const bool over = cursor.next == cursor.end;
  reply.finish(over ? 0 : id);
  if (over) return;
  lock.lock();
  cursors_.insert(std::move(node));
}

void TVirtualCollection::killCursors(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  const std::string_view ids = nestedField(body.get(), "cursors");
  if (!ids.empty()) {
    const TBsonView list(ids);
    bson_iter_t at;
    const std::lock_guard lock(mutex_);
    if (bson_iter_init(&at, list.get()))
      while (bson_iter_next(&at)) cursors_.erase(bson_iter_as_int64(&at));
  }
  replyWith(frame, request, okReply());
}

void TVirtualCollection::count(const TRequest& request, std::string& frame) {
  const auto n = static_cast<std::int64_t>(options_.count);
  replyWith(frame, request, TBsonBuilder().int64("n", n).real("ok", 1.0).take());
}

void TVirtualCollection::aggregate(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  const std::string nameSpace = nameSpaceOf(request, body.get(), "aggregate");
  TCursorReply reply(frame, request, nameSpace, true);
  if (options_.count > 0) {
    const auto n = static_cast<std::int64_t>(options_.count);
    reply.element().append(TBsonBuilder().int32("_id", 1).int64("n", n).take().bytes());
  }
  reply.finish(0);
}

/// The collection asked for by name is there, whatever its name.
void TVirtualCollection::listCollections(const TRequest& request, std::string& frame) {
  const TBsonView body(request.body);
  TCursorReply reply(frame, request, std::string(request.database) + ".$cmd.listCollections", true);
  if (const std::string_view filter = nestedField(body.get(), "filter"); !filter.empty()) {
    const TBsonView wanted(filter);
    const std::string name(textField(wanted.get(), "name"));
    reply.element().append(TBsonBuilder()
                               .text("name", name)
                               .text("type", "collection")
                               .document("options", TBson())
                               .take()
                               .bytes());
  }
  reply.finish(0);
}

void TVirtualCollection::fillBatch(TCursorReply& reply, TCursor& cursor, std::uint64_t batchSize) {
  const std::uint64_t start = cursor.next;
  std::size_t largest = 0;
  while (cursor.next < cursor.end && cursor.next - start < batchSize) {
    const std::size_t before = reply.bytes();
    if (before + largest > kMostBatchBytes) break;
    options_.generate(cursor.next % options_.count, reply.element());
    largest = std::max(largest, reply.bytes() - before);
    ++cursor.next;
  }
  const std::lock_guard lock(mutex_);
  served_ += cursor.next - start;
}

}  // namespace hollowmere::mongowire
