#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/cqlselect.h"

namespace hollowmere {

/// How often a read that failed is tried again: reads do no harm twice, and a server may come back.
class TCassRetry {
 public:
  static constexpr int usual = 5;

  explicit TCassRetry(const TStopFlag* stop, int attempts = usual) : stop_(stop), left_(attempts) {}

  /// Whether the fault may pass. Pauses, each time longer, unless a new statement is all that it takes.
  bool after(const TCassandraError& fault);
  /// Pauses; false when that was often or long enough, or is to stop.
  bool pause();

 private:
  using TClock = std::chrono::steady_clock;

  const TStopFlag* stop_;
  int left_;
  std::chrono::milliseconds pause_{300};
  TClock::time_point begin_ = TClock::now();
};

/// Runs what only reads, again over a new connection when that was lost, and when the server did not answer
/// in time. Throws what the last attempt did: TCassandraError or TStoreError (Connect).
template <typename TRead>
auto readPatiently(TCassandraClient& client, TCassRetry retry, const TRead& read) {
  for (;;) {
    try {
      if (!client.isConnected()) client.connect();
      return read();
    } catch (const TCassandraError& error) {
      if (!retry.after(error)) throw;
    } catch (const TStoreError& error) {
      if (error.kind() != TStoreErrorKind::Connect || !retry.pause()) throw;
    }
  }
}

/// Statements of one keyspace: each is prepared once, and again when the server has lost it. The client
/// outlives it. Throws TCassandraError.
class TCassStatements {
 public:
  TCassStatements(TCassandraClient& client, std::string keyspace)
      : client_(client), keyspace_(std::move(keyspace)) {}

  void prepare(const std::string& cql);
  TCassResult run(const std::string& cql, const std::vector<std::string>& values);

 private:
  TCassandraClient& client_;
  std::string keyspace_;
  std::map<std::string, std::int32_t> ids_;
};

/// All rows of a statement, at most mostWhole of them, for they stand in memory. Throws TCassandraError
/// (Refused) when there are more, and as readPatiently().
TCassResult readWhole(TCassandraClient& client, const std::string& keyspace, const TCqlSelect& select,
                      const TStopFlag* stop);
inline constexpr std::int64_t mostWhole = 1'000'000;

}  // namespace hollowmere
