#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/casswire/tables.h"

namespace hollowmere::casswire {

/// What becomes of an answer.
enum class TFault {
  Close,     ///< none, and the connection ends
  Tear,      ///< half of it, and the connection ends
  Oversize,  ///< a frame length of 2 GB
  Garbage,   ///< a frame of bytes that are no message
  Silence,   ///< none; the connection stays
  Refuse,    ///< an invalid request
  Unavailable,
  TimeOut,        ///< the server's own
  LosePrepared,   ///< all prepared statements are forgotten before the call runs
  CloseAfterRun,  ///< the call is done, the answer is not sent, the connection ends
};

/// A server in this process that speaks Cassandra's Thrift interface, with tables in memory. Starts in the
/// constructor. All methods are safe in any thread.
class TCassandraStandIn {
 public:
  explicit TCassandraStandIn(const std::string& releaseVersion = "3.11.19");
  ~TCassandraStandIn();
  TCassandraStandIn(const TCassandraStandIn&) = delete;
  TCassandraStandIn& operator=(const TCassandraStandIn&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }
  /// Ends all connections and listens no more; start() listens on the same port again, prepared statements
  /// forgotten.
  void stop();
  void start();

  /// Before the server is used, or between its calls.
  TTables& tables() { return tables_; }
  void add(const std::string& name, std::vector<TColumn> columns);

  /// The call of a method that comes after so many others of it meets the fault, and the count - 1 behind it.
  void fail(const std::string& method, TFault fault, int after = 0, int count = 1);
  void setPassword(std::string password) {
    const std::lock_guard lock(mutex_);
    password_ = std::move(password);
  }
  void setDelay(std::chrono::microseconds delay) { delay_ = delay; }
  [[nodiscard]] int calls(const std::string& method) const;
  [[nodiscard]] int connections() const { return connections_; }
  /// Frames that were too long, or no message.
  [[nodiscard]] int violations() const { return violations_; }

 private:
  class THandler;
  friend class THandler;
  struct TPrepared {
    std::string keyspace;
    std::string cql;
    std::uint64_t inserts = 0;  ///< rows that it writes
  };
  struct TPlanned {
    TFault fault;
    int after;
    int count;
  };

  void accept();
  void serve(int socket);
  bool answer(int socket, const std::string& request, class TSession& session);
  std::optional<TFault> faultFor(const std::string& method);

  std::atomic<int> listener_ = -1;
  std::uint16_t port_ = 0;
  TTables tables_;
  std::atomic<std::chrono::microseconds> delay_{std::chrono::microseconds(0)};
  mutable std::mutex mutex_;  ///< of all below, and of tables_ while a call runs
  std::string password_;
  std::map<std::string, std::deque<TPlanned>> faults_;
  std::map<std::string, int> calls_;
  std::map<std::int32_t, TPrepared> prepared_;
  std::vector<int> sockets_;
  std::vector<std::thread> threads_;
  std::thread acceptor_;
  std::atomic<int> connections_ = 0;
  std::atomic<int> violations_ = 0;
};

}  // namespace hollowmere::casswire
