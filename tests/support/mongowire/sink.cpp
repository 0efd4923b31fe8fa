#include "support/mongowire/sink.h"

namespace hollowmere::mongowire {

namespace {

const char* rowsOf(std::string_view command) {
  if (command == "insert") return "documents";
  if (command == "update") return "updates";
  if (command == "delete") return "deletes";
  return nullptr;
}

void add(TSinkCounts& sum, const TSinkCounts& more) {
  for (const auto& [command, count] : more.requests) sum.requests[command] += count;
  sum.documents += more.documents;
  sum.documentBytes += more.documentBytes;
  sum.messageBytes += more.messageBytes;
  sum.stored += more.stored;
  sum.refused += more.refused;
}

void countRequest(TSinkCounts& counts, const TRequest& request) {
  counts.messageBytes += request.messageBytes;
  const auto known = counts.requests.find(request.command);
  if (known != counts.requests.end())
    ++known->second;
  else
    counts.requests.emplace(request.command, 1);
}

}  // namespace

class TMongoSink::TSinkSession : public TSession {
 public:
  explicit TSinkSession(TMongoSink& owner) : owner_(owner), tally_(owner.newTally()) {}

  bool serve(TConnection& connection, const TRequest& request) override {
    std::string& frame = connection.frame();
    const bool slow = prepare(connection, request, frame) && owner_.options_.delay.count() > 0;
    if (slow && !connection.pauseUntil(connection.receivedAt() + owner_.options_.delay)) return false;
    return !request.answerWanted || connection.send(frame);
  }

 private:
  /// Fills the frame; false for the answers that are not delayed.
  bool prepare(const TConnection& connection, const TRequest& request, std::string& frame) {
    {
      const std::lock_guard lock(tally_.mutex);
      countRequest(tally_.counts, request);
    }
    if (const char* list = rowsOf(request.command)) {
      owner_.write(request, list, frame, tally_);
      return true;
    }
    const std::optional<TBson> common = commonReply(owner_.options_.hello, connection, request);
    if (!common && read(request, frame)) return true;
    frame.clear();
    appendReply(frame, request, common ? common->bytes() : unknownCommand(request.command).bytes());
    return !common;
  }

  bool read(const TRequest& request, std::string& frame) {
    if (!owner_.options_.source) return false;
    try {
      return owner_.options_.source->answer(request, frame);
    } catch (const TCommandError& error) {
      frame.clear();
      appendReply(frame, request, error.reply().bytes());
      return true;
    }
  }

  TMongoSink& owner_;
  TTally& tally_;
};

/// What becomes of the rows of one write command.
struct TMongoSink::TOutcome {
  std::size_t rows = 0;
  std::vector<std::size_t> refused;
  std::size_t passed = 0;  ///< rows gone through: all of them unless an ordered command stopped early
};

TMongoSink::TMongoSink(TSinkOptions options)
    : options_(std::move(options)),
      server_(options_.server, [this](TConnection&) { return std::make_unique<TSinkSession>(*this); }) {}

std::string TMongoSink::uri() const { return "mongodb://127.0.0.1:" + std::to_string(port()) + "/"; }

TSinkCounts TMongoSink::counts() const {
  TSinkCounts sum;
  for (const TSinkCounts& each : countsByConnection()) add(sum, each);
  return sum;
}

std::vector<TSinkCounts> TMongoSink::countsByConnection() const {
  std::vector<TSinkCounts> all;
  const std::lock_guard lock(talliesMutex_);
  for (const TTally& tally : tallies_) {
    const std::lock_guard inner(tally.mutex);
    all.push_back(tally.counts);
  }
  return all;
}

TMongoSink::TTally& TMongoSink::newTally() {
  const std::lock_guard lock(talliesMutex_);
  return tallies_.emplace_back();
}

void TMongoSink::judge(const TRequest& request, TOutcome& outcome) {
  outcome.passed = outcome.rows;
  if (options_.refuseEvery == 0) return;
  const TBsonView body(request.body);
  const bool ordered = truthField(body.get(), "ordered", true);
  const std::lock_guard lock(rowsMutex_);
  const std::uint64_t every = options_.refuseEvery;
  for (std::uint64_t at = every - 1 - rowsSeen_ % every; at < outcome.rows; at += every) {
    outcome.refused.push_back(static_cast<std::size_t>(at));
    if (ordered) outcome.passed = static_cast<std::size_t>(at) + 1;
    if (ordered) break;
  }
  rowsSeen_ += outcome.passed;
}

void TMongoSink::write(const TRequest& request, const char* list, std::string& frame, TTally& tally) {
  const TListSize size = listSize(request, list);
  TOutcome outcome;
  outcome.rows = size.documents;
  judge(request, outcome);
  const std::size_t stored = outcome.passed - outcome.refused.size();
  TWriteReply reply;
  for (const std::size_t index : outcome.refused)
    reply.refuse(static_cast<std::int32_t>(index), options_.refuseCode, options_.refuseText);
  const auto n = static_cast<std::int32_t>(stored);
  frame.clear();
  appendReply(frame, request,
              reply.finish(n, request.command == "update" ? std::optional(n) : std::nullopt).bytes());
  const std::lock_guard lock(tally.mutex);
  tally.counts.documents += size.documents;
  tally.counts.documentBytes += size.bytes;
  tally.counts.stored += stored;
  tally.counts.refused += outcome.refused.size();
}

}  // namespace hollowmere::mongowire
