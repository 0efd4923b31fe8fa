#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace hollowmere::mongowire {

/// A message that breaks the wire protocol; the text says what was found and where.
class TWireViolation : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A kind-1 section: documents one after the other, checked to fill the section exactly.
struct TSequence {
  std::string_view name;
  std::string_view documents;
  std::size_t count = 0;
};

/// One request, borrowed from the receive buffer: valid until the next one is read.
struct TRequest {
  std::int32_t id = 0;
  bool query = false;        ///< came as OP_QUERY, so the answer goes out as OP_REPLY
  bool answerWanted = true;  ///< false when the client set moreToCome
  std::size_t messageBytes = 0;
  std::string_view body;     ///< the command document
  std::string_view command;  ///< its first key; every spelling of the handshake reads "hello"
  std::string_view database;
  std::vector<TSequence> sequences;
};

/// Bytes in a message header: length, request id, response to, opcode, each a little-endian int32.
constexpr std::size_t kHeaderBytes = 16;

/// Reads the length field of a message that starts at `bytes` (at least four of them).
/// Throws TWireViolation when it is shorter than a header or above `limit`.
std::size_t messageLength(std::string_view bytes, std::size_t limit);

/// Checks one whole message and describes it in `out` (reused between calls to spare allocations).
/// Framing is checked to the byte: section sizes, document lengths and terminators, one body, no
/// unknown flag; `validateBson` also looks inside every document. Throws TWireViolation.
/// Format: MongoDB wire protocol, OP_MSG and OP_QUERY.
void parseRequest(std::string_view message, bool validateBson, TRequest& out);

/// Calls `take` with each document of the named list, be it a kind-1 section or an array in the body.
/// `take` returns false to stop.
void eachDocument(const TRequest& request, std::string_view list,
                  const std::function<bool(std::string_view)>& take);
/// How many documents and bytes of documents that list holds. A section costs nothing: it was counted.
struct TListSize {
  std::size_t documents = 0;
  std::size_t bytes = 0;
};
TListSize listSize(const TRequest& request, std::string_view list);

/// Appends a whole reply frame holding one document: OP_REPLY to a query, else OP_MSG.
void appendReply(std::string& out, const TRequest& request, std::string_view document);

/// Where the document of a reply frame begins.
std::size_t replyBodyOffset(std::string_view frame);

/// Little-endian stores into a frame that already has the bytes.
void putInt32(std::string& frame, std::size_t offset, std::int32_t value);
void putInt64(std::string& frame, std::size_t offset, std::int64_t value);

/// Writes a cursor reply ({cursor: {id, ns, firstBatch|nextBatch: [...]}, ok: 1}) document by document
/// straight into the send buffer, so that a batch is encoded once and never copied.
class TCursorReply {
 public:
  /// `out` is cleared and must live as long as this; `first` tells find's answer from getMore's.
  TCursorReply(std::string& out, const TRequest& request, std::string_view nameSpace, bool first);
  /// The next array element: the caller appends exactly one encoded document to the returned buffer.
  std::string& element();
  std::size_t bytes() const { return out_.size(); }
  /// `cursorId` 0 tells the client that there is no more.
  void finish(std::int64_t cursorId);

 private:
  std::string& out_;
  std::size_t document_ = 0;
  std::size_t cursor_ = 0;
  std::size_t cursorId_ = 0;
  std::size_t batch_ = 0;
  std::uint64_t index_ = 0;
};

}  // namespace hollowmere::mongowire
