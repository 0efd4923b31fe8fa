#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/mongowire/bsondoc.h"
#include "support/mongowire/server.h"

namespace hollowmere::mongowire {

/// Says whether a row of a write is to be refused. Called with the row's place in its command (from 0) and
/// the document (for update and delete the whole statement {q, u, ...}), by one thread at a time.
using TRowTest = std::function<bool(std::size_t index, const TBsonView& row)>;

/// One way to misbehave. Made by the functions in namespace `fault`.
struct TFault {
  enum class TKind {
    delay,            ///< the usual answer, later; goes together with any other fault
    refuseRows,       ///< writeErrors for the rows that `test` picks; the others are carried out
    answer,           ///< `document` instead of carrying the command out
    silence,          ///< not carried out, never answered; the connection stays open
    close,            ///< not carried out, connection closed
    halfThenClose,    ///< carried out; half of the answer's bytes, then the end
    halfThenSilence,  ///< carried out; half of the answer's bytes, then nothing
    wrongLength,      ///< carried out; the answer's header claims `number` bytes
    wrongResponse,    ///< carried out; the answer names another request
    garbageFrame,     ///< carried out; bytes that are no frame
    garbageBody,      ///< carried out; a sound frame with garbage between its document's length and end
  };
  TKind kind = TKind::close;
  std::chrono::milliseconds pause{0};
  TBson document;
  TRowTest test;
  std::int32_t number = 0;
  std::string text;
};

namespace fault {
TFault delay(std::chrono::milliseconds pause);
/// Any document; see also error().
TFault answer(TBson document);
/// {ok: 0, errmsg: text, code, codeName}
TFault error(std::int32_t code, std::string_view codeName, std::string_view text);
/// Refuses the rows at these places of the command.
TFault refuseAt(std::vector<std::size_t> indexes, std::int32_t code = 121,
                std::string_view text = "Document failed validation");
/// Refuses each `every`-th row the rule gets to see, counted over all commands.
TFault refuseEvery(std::uint64_t every, std::int32_t code = 121,
                   std::string_view text = "Document failed validation");
TFault refuseIf(TRowTest test, std::int32_t code = 121, std::string_view text = "Document failed validation");
TFault silence();
TFault close();
TFault halfThenClose();
TFault halfThenSilence();
/// Below 16 or above what a client accepts makes it give up; a little too much makes it wait.
TFault wrongLength(std::int32_t claimed);
TFault wrongResponse();
TFault garbageFrame();
/// libmongoc 1.23 takes it for success with a count of 0; the document's length is left alone, for a wrong
/// one makes that library read past its buffer.
TFault garbageBody();
}  // namespace fault

/// What a connection meets before any command.
enum class TManner {
  ordinary,
  closeAtOnce,
  neverRead,      ///< accepted, never read, open until the peer closes
  otherProtocol,  ///< "HTTP/1.1 400 Bad Request\r\n\r\n" to whatever comes first, then the end
};

/// The rules of misbehaviour. Safe in any thread, before and while the server runs.
class TFaultScript {
 public:
  static constexpr std::uint64_t kEvery = 0;

  /// The `nth` request (from 1, counted from now) named `command` meets `fault`; kEvery for each of them.
  /// "*" stands for every command except hello and endSessions; "hello" covers isMaster as well.
  /// All delays that apply add up, all row refusals apply; of the other faults the rule made first wins.
  void onCommand(std::string_view command, std::uint64_t nth, TFault fault);
  /// Forgets the rules and goes back to ordinary manners.
  void clear();
  /// For connections accepted from now on.
  void setManner(TManner manner);
  TManner manner() const;

  /// What applies to one request.
  struct TPlan {
    std::chrono::milliseconds pause{0};
    std::vector<TFault> refusals;
    std::optional<TFault> fault;
  };
  TPlan planFor(std::string_view command);

  /// The refusal that picks this row, or null. Tests run one at a time.
  const TFault* refusal(const TPlan& plan, std::size_t index, const TBsonView& row);

 private:
  struct TRule {
    std::string command;
    std::uint64_t nth;
    std::uint64_t seen = 0;
    TFault fault;
  };

  mutable std::mutex mutex_;
  std::vector<TRule> rules_;
  TManner manner_ = TManner::ordinary;
  std::mutex testMutex_;
};

/// Carries out the manner; false when the connection is over.
bool admit(TManner manner, TConnection& connection);
/// For faults that spoil the answer: sends `frame` spoilt. False when the connection is over.
bool sendSpoilt(const TFault& fault, TConnection& connection, std::string frame);

}  // namespace hollowmere::mongowire
