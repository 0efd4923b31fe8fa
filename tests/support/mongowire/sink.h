#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "support/mongowire/replies.h"
#include "support/mongowire/server.h"
#include "support/mongowire/virtualcollection.h"

namespace hollowmere::mongowire {

struct TSinkOptions {
  /// From the arrival of a request to its answer; not for handshakes, ping and endSessions.
  std::chrono::microseconds delay{0};
  /// Each this-many-th row the sink goes through is refused; 0 for none. Counted over all connections.
  std::uint64_t refuseEvery = 0;
  std::int32_t refuseCode = 121;
  std::string refuseText = "Document failed validation";
  THello hello;
  TServerOptions server;
  /// Answers reads where given; else they are unknown commands.
  std::shared_ptr<TVirtualCollection> source;
};

/// What came in over one connection, or all.
struct TSinkCounts {
  std::map<std::string, std::uint64_t, std::less<>> requests;  ///< by command name
  std::uint64_t documents = 0;      ///< rows in the frames of insert, update and delete
  std::uint64_t documentBytes = 0;  ///< their encoded bytes
  std::uint64_t messageBytes = 0;   ///< of whole messages, headers included
  std::uint64_t stored = 0;         ///< rows answered as taken
  std::uint64_t refused = 0;  ///< rows answered in writeErrors: (stored + refused) / refuseEvery of them
};

/// A server that takes writes as fast as they come: rows are checked as to framing and counted, never parsed,
/// never kept. Starts in the constructor. All methods are safe in any thread.
class TMongoSink {
 public:
  explicit TMongoSink(TSinkOptions options = {});
  ~TMongoSink() { stop(); }

  std::uint16_t port() const { return server_.port(); }
  /// mongodb://127.0.0.1:port/
  std::string uri() const;
  void stop() { server_.stop(); }
  const TWireServer& server() const { return server_; }

  TSinkCounts counts() const;
  /// One for each connection so far, in the order of their first words.
  std::vector<TSinkCounts> countsByConnection() const;

 private:
  class TSinkSession;
  struct TTally {
    mutable std::mutex mutex;
    TSinkCounts counts;
  };
  struct TOutcome;

  TTally& newTally();
  void write(const TRequest& request, const char* list, std::string& frame, TTally& tally);
  void judge(const TRequest& request, TOutcome& outcome);

  const TSinkOptions options_;
  mutable std::mutex talliesMutex_;
  std::list<TTally> tallies_;
  std::mutex rowsMutex_;
  std::uint64_t rowsSeen_ = 0;
  TWireServer server_;  // last: its threads use all of the above
};

}  // namespace hollowmere::mongowire
