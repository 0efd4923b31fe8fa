#include "support/mongowire/wire.h"

#include <atomic>
#include <bit>
#include <charconv>
#include <cstring>
#include <optional>

#include "support/mongowire/bsondoc.h"

namespace hollowmere::mongowire {

namespace {

static_assert(std::endian::native == std::endian::little, "the wire format is little-endian");

constexpr std::int32_t kOpReply = 1;
constexpr std::int32_t kOpQuery = 2004;
constexpr std::int32_t kOpMsg = 2013;
constexpr std::uint32_t kMoreToCome = 1u << 1;
constexpr std::uint32_t kExhaustAllowed = 1u << 16;
constexpr std::size_t kEmptyDocument = 5;

std::int32_t int32At(std::string_view bytes, std::size_t offset) {
  std::int32_t value;
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

void appendInt32(std::string& out, std::int32_t value) {
  out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void appendInt64(std::string& out, std::int64_t value) {
  out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

[[noreturn]] void violated(const std::string& what) { throw TWireViolation(what); }

/// A cursor over one message that cannot run past its end.
class TReader {
 public:
  explicit TReader(std::string_view bytes) : rest_(bytes) {}
  bool atEnd() const { return rest_.empty(); }

  std::string_view bytes(std::size_t count, const char* what) {
    if (count > rest_.size()) violated(std::string(what) + " runs past the end of its message");
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }
  std::int32_t int32(const char* what) { return int32At(bytes(4, what), 0); }
  std::string_view cstring(const char* what) {
    const std::size_t length = rest_.find('\0');
    if (length == std::string_view::npos) violated(std::string(what) + " has no end");
    return bytes(length + 1, what).substr(0, length);
  }
  std::string_view document(const char* what) {
    if (rest_.size() < kEmptyDocument) violated(std::string(what) + " is cut short");
    const std::int32_t length = int32At(rest_, 0);
    if (length < static_cast<std::int32_t>(kEmptyDocument))
      violated(std::string(what) + " claims a length of " + std::to_string(length));
    const std::string_view doc = bytes(static_cast<std::size_t>(length), what);
    if (doc.back() != '\0') violated(std::string(what) + " does not end in a zero byte");
    return doc;
  }

 private:
  std::string_view rest_;
};

/// libbson's own validation lets broken UTF-8 in string values pass, up to version 1.23 at least.
bool textsAreUtf8(const bson_t* document) {
  bson_iter_t at;
  if (!bson_iter_init(&at, document)) return true;
  while (bson_iter_next(&at)) {
    const char* key = bson_iter_key(&at);
    if (!bson_utf8_validate(key, std::strlen(key), false)) return false;
    std::uint32_t length = 0;
    const char* text = BSON_ITER_HOLDS_UTF8(&at) ? bson_iter_utf8(&at, &length) : nullptr;
    if (text && !bson_utf8_validate(text, length, true)) return false;
    const std::string_view nested = nestedBytes(at);
    if (!nested.empty() && !textsAreUtf8(TBsonView(nested).get())) return false;
  }
  return true;
}

void validateDocument(std::string_view bytes, const char* what) {
  const TBsonView view(bytes);
  std::size_t offset = 0;
  if (!bson_validate(view.get(), BSON_VALIDATE_NONE, &offset))
    violated(std::string(what) + " is not valid BSON at byte " + std::to_string(offset));
  if (!textsAreUtf8(view.get())) violated(std::string(what) + " is not valid UTF-8");
}

TSequence readSequence(TReader& message, bool validateBson) {
  const std::int32_t size = message.int32("a section size");
  if (size < 5) violated("a kind-1 section claims a size of " + std::to_string(size));
  TReader section(message.bytes(static_cast<std::size_t>(size) - 4, "a kind-1 section"));
  TSequence sequence;
  sequence.name = section.cstring("a section's name");
  if (sequence.name.empty()) violated("a kind-1 section has no name");
  const char* first = nullptr;
  std::size_t total = 0;
  while (!section.atEnd()) {
    const std::string_view doc = section.document("a document of a section");
    if (validateBson) validateDocument(doc, "a document of a section");
    if (!first) first = doc.data();
    total += doc.size();
    ++sequence.count;
  }
  sequence.documents = {first, total};
  return sequence;
}

void readMessage(TReader& reader, bool validateBson, TRequest& out) {
  const auto flags = static_cast<std::uint32_t>(reader.int32("the flags"));
  // The checksum bit is refused too: no client here sends one, and one that is not checked is no check.
  if ((flags & ~(kMoreToCome | kExhaustAllowed)) != 0)
    violated("OP_MSG with unknown flags " + std::to_string(flags));
  out.answerWanted = (flags & kMoreToCome) == 0;
  while (!reader.atEnd()) {
    const char kind = reader.bytes(1, "a section's kind")[0];
    if (kind == 1) {
      out.sequences.push_back(readSequence(reader, validateBson));
    } else if (kind == 0) {
      if (!out.body.empty()) violated("OP_MSG with two bodies");
      out.body = reader.document("the body");
    } else {
      violated("OP_MSG with a section of kind " + std::to_string(kind));
    }
  }
  if (out.body.empty()) violated("OP_MSG without a body");
}

void readQuery(TReader& reader, TRequest& out) {
  reader.int32("the flags");
  const std::string_view name = reader.cstring("the collection's name");
  constexpr std::string_view suffix = ".$cmd";
  if (!name.ends_with(suffix)) violated("OP_QUERY on '" + std::string(name) + "', not on a $cmd collection");
  reader.int32("the number to skip");
  reader.int32("the number to return");
  out.body = reader.document("the query");
  if (!reader.atEnd()) violated("OP_QUERY with bytes after the query");
  out.database = name.substr(0, name.size() - suffix.size());
}

void nameCommand(TRequest& out) {
  const TBsonView body(out.body);
  bson_iter_t at;
  if (!bson_iter_init(&at, body.get()) || !bson_iter_next(&at)) violated("a command without a name");
  // The key is inside the message, not inside the iterator.
  out.command = bson_iter_key(&at);
  if (out.command == "isMaster" || out.command == "ismaster") out.command = "hello";
  if (out.query) return;
  out.database = textField(body.get(), "$db");
  if (out.database.empty()) violated("OP_MSG command '" + std::string(out.command) + "' without $db");
}

std::int32_t nextReplyId() {
  static std::atomic<std::int32_t> next{0};
  return next.fetch_add(1, std::memory_order_relaxed);
}

std::size_t openFrame(std::string& out, const TRequest& request) {
  const std::size_t start = out.size();
  appendInt32(out, 0);
  appendInt32(out, nextReplyId());
  appendInt32(out, request.id);
  appendInt32(out, request.query ? kOpReply : kOpMsg);
  if (request.query) {
    appendInt32(out, 8);  // flags: AwaitCapable, as every server since 1.6 answers
    appendInt64(out, 0);
    appendInt32(out, 0);
    appendInt32(out, 1);
  } else {
    appendInt32(out, 0);
    out.push_back('\0');
  }
  return start;
}

void closeLength(std::string& out, std::size_t start) {
  putInt32(out, start, static_cast<std::int32_t>(out.size() - start));
}

std::optional<TBsonView> listInBody(const TRequest& request, std::string_view list) {
  const TBsonView body(request.body);
  const std::string_view bytes = nestedField(body.get(), std::string(list).c_str());
  if (bytes.empty()) return std::nullopt;
  return std::optional<TBsonView>(std::in_place, bytes);
}

}  // namespace

std::size_t messageLength(std::string_view bytes, std::size_t limit) {
  const std::int32_t length = int32At(bytes, 0);
  if (length < static_cast<std::int32_t>(kHeaderBytes) || static_cast<std::size_t>(length) > limit)
    violated("a message claims a length of " + std::to_string(length));
  return static_cast<std::size_t>(length);
}

void parseRequest(std::string_view message, bool validateBson, TRequest& out) {
  out.sequences.clear();
  out.body = {};
  out.answerWanted = true;
  out.messageBytes = message.size();
  out.id = int32At(message, 4);
  const std::int32_t opcode = int32At(message, 12);
  TReader reader(message.substr(kHeaderBytes));
  out.query = opcode == kOpQuery;
  if (opcode == kOpMsg)
    readMessage(reader, validateBson, out);
  else if (opcode == kOpQuery)
    readQuery(reader, out);
  else
    violated("a message with opcode " + std::to_string(opcode));
  if (validateBson) validateDocument(out.body, "a command");
  nameCommand(out);
}

void eachDocument(const TRequest& request, std::string_view list,
                  const std::function<bool(std::string_view)>& take) {
  for (const TSequence& sequence : request.sequences) {
    if (sequence.name != list) continue;
    TReader reader(sequence.documents);
    while (!reader.atEnd())
      if (!take(reader.document("a document"))) return;
  }
  const std::optional<TBsonView> array = listInBody(request, list);
  bson_iter_t at;
  if (!array || !bson_iter_init(&at, array->get())) return;
  while (bson_iter_next(&at)) {
    const std::string_view bytes = nestedBytes(at);
    if (!bytes.empty() && !take(bytes)) return;
  }
}

TListSize listSize(const TRequest& request, std::string_view list) {
  TListSize size;
  for (const TSequence& sequence : request.sequences) {
    if (sequence.name != list) continue;
    size.documents += sequence.count;
    size.bytes += sequence.documents.size();
  }
  // A list is sent one way or the other, so the body is searched only when there was no section.
  if (size.documents > 0) return size;
  eachDocument(request, list, [&size](std::string_view bytes) {
    ++size.documents;
    size.bytes += bytes.size();
    return true;
  });
  return size;
}

void appendReply(std::string& out, const TRequest& request, std::string_view document) {
  const std::size_t start = openFrame(out, request);
  out.append(document);
  closeLength(out, start);
}

std::size_t replyBodyOffset(std::string_view frame) {
  // After an OP_REPLY: flags, cursor id, start, count; after an OP_MSG: flags and the section's kind.
  return kHeaderBytes + (int32At(frame, 12) == kOpReply ? 20 : 5);
}

void putInt32(std::string& frame, std::size_t offset, std::int32_t value) {
  std::memcpy(frame.data() + offset, &value, sizeof value);
}

void putInt64(std::string& frame, std::size_t offset, std::int64_t value) {
  std::memcpy(frame.data() + offset, &value, sizeof value);
}

TCursorReply::TCursorReply(std::string& out, const TRequest& request, std::string_view nameSpace, bool first)
    : out_(out) {
  out_.clear();
  openFrame(out_, request);
  document_ = out_.size();
  appendInt32(out_, 0);
  out_.append(
          "\x03"
          "cursor",
          7)
      .push_back('\0');
  cursor_ = out_.size();
  appendInt32(out_, 0);
  out_.append("\x12id", 3).push_back('\0');
  cursorId_ = out_.size();
  appendInt64(out_, 0);
  out_.append("\x02ns", 3).push_back('\0');
  appendInt32(out_, static_cast<std::int32_t>(nameSpace.size() + 1));
  out_.append(nameSpace).push_back('\0');
  out_.append(first ? "\x04"
                      "firstBatch"
                    : "\x04"
                      "nextBatch")
      .push_back('\0');
  batch_ = out_.size();
  appendInt32(out_, 0);
}

std::string& TCursorReply::element() {
  char key[24];
  const auto end = std::to_chars(key, key + sizeof key - 1, index_++).ptr;
  *end = '\0';
  out_.push_back('\x03');
  out_.append(key, static_cast<std::size_t>(end - key) + 1);
  return out_;
}

void TCursorReply::finish(std::int64_t cursorId) {
  out_.push_back('\0');
  closeLength(out_, batch_);
  out_.push_back('\0');
  closeLength(out_, cursor_);
  putInt64(out_, cursorId_, cursorId);
  const double ok = 1.0;
  out_.append("\x01ok", 3).push_back('\0');
  out_.append(reinterpret_cast<const char*>(&ok), sizeof ok).push_back('\0');
  closeLength(out_, document_);
  closeLength(out_, 0);
}

}  // namespace hollowmere::mongowire
