#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "support/mongowire/bsondoc.h"
#include "support/mongowire/faults.h"
#include "support/mongowire/memorystore.h"
#include "support/mongowire/replies.h"
#include "support/mongowire/server.h"
#include "support/mongowire/standincommands.h"

namespace hollowmere::mongowire {

/// A request as a test looks back on it.
struct TSeenRequest {
  std::uint64_t connection = 0;
  std::string command;  ///< every spelling of the handshake reads "hello"
  std::string database;
  std::string collection;  ///< the command's first value where that is a string
  TBson body;              ///< without the rows that came in sections of their own
  std::size_t rows = 0;    ///< of documents, updates or deletes
};

/// A small in-memory server on loopback for tests, with ways to fail on demand.
///
/// Knows hello, ping, buildInfo, find (empty filter or top-level equality; sort on one field, skip, limit,
/// batchSize), getMore, killCursors, count, aggregate ($match, $sort, $skip, $limit, $group that counts),
/// insert, update (whole-document replacement, upsert), delete, drop, listDatabases, listCollections and
/// endSessions; refuses every login (code 18) and every other command (code 59). What it cannot do it refuses
/// by a command error and never passes over. Starts in the constructor. All methods are safe in any thread.
class TMongoStandIn {
 public:
  explicit TMongoStandIn(TServerOptions options = {.validateBson = true});
  ~TMongoStandIn() { stop(); }

  std::uint16_t port() const { return server_.port(); }
  /// mongodb://127.0.0.1:port/
  std::string uri() const;
  void stop() { server_.stop(); }
  TWireServer& server() { return server_; }

  TFaultScript& faults() { return faults_; }
  /// For handshakes from now on; version 5 looks too old to today's clients, 18 to 30 too new to older ones.
  void setWireVersions(std::int32_t lowest, std::int32_t highest);
  /// The limits a client splits its writes by, and the versions.
  void setHello(const THello& hello);

  /// Adds documents as insert would; throws std::invalid_argument for a duplicate _id.
  void fill(const std::string& database, const std::string& collection, const std::vector<TBson>& documents);
  void fillJson(const std::string& database, const std::string& collection,
                const std::vector<std::string>& documents);
  /// In the order of their insertion.
  std::vector<TBson> documents(const std::string& database, const std::string& collection) const;
  /// The same as relaxed extended JSON.
  std::vector<std::string> documentsJson(const std::string& database, const std::string& collection) const;

  /// Every request so far, in the order of arrival; and how many had this name.
  std::vector<TSeenRequest> requests() const;
  std::vector<TSeenRequest> requests(std::string_view command) const;
  std::size_t requestCount(std::string_view command) const;

 private:
  class TStandInSession;

  void record(const TConnection& connection, const TRequest& request);
  THello hello() const;
  void answer(const TConnection& connection, const TRequest& request, const TFaultScript::TPlan& plan,
              std::string& frame);

  TMemoryStore store_;
  TFaultScript faults_;
  TStandInCommands commands_;
  mutable std::mutex mutex_;
  THello hello_;
  std::vector<TSeenRequest> requests_;
  TWireServer server_;  // last: its threads use all of the above
};

}  // namespace hollowmere::mongowire
