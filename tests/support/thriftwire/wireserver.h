#pragma once

#include <thrift/TProcessor.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace hollowmere::thriftwire {

/// One way to misbehave.
enum class TFault {
  silence,          ///< not carried out, never answered
  close,            ///< not carried out, connection closed
  doneThenClose,    ///< carried out, but the connection closed instead of an answer
  halfThenClose,    ///< carried out; half of the answer's bytes, then the end
  halfThenSilence,  ///< carried out; half of the answer's bytes, then nothing
  cutShort,         ///< carried out; a whole frame that ends within the answer
  hugeFrame,        ///< carried out; a frame of 2 GB is announced
  garbage,          ///< a frame of bytes that are no message
  internalError,    ///< not carried out; an error of the server without a reason
};

struct TOptions {
  std::uint16_t port = 0;  ///< 0: of the system's choice
  bool framed = true;
  std::chrono::microseconds delay{0};  ///< from a call to its answer
  std::size_t longestCall = 2 * 1024 * 1024;
  /// May answer a call (both as messages, without frames) in the place of the processor.
  std::function<std::optional<std::string>(const std::string& method, const std::string& call)> quick{};
};

/// A server on loopback for any Thrift service, binary protocol, one thread a connection. All methods are
/// safe in any thread.
class TWireServer {
 public:
  /// Listens at once. The processor's handler is called from all connections' threads.
  TWireServer(const TOptions& options, std::shared_ptr<apache::thrift::TProcessor> processor);
  ~TWireServer() { stop(); }
  TWireServer(const TWireServer&) = delete;
  TWireServer& operator=(const TWireServer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }
  /// Closes everything and joins all threads. Idempotent.
  void stop();
  /// Ends the connections that are open now; new ones are welcome.
  void dropConnections();

  static constexpr int every = 0;
  /// The nth call (from 1, counted from now) of a method meets the fault; `every` for each.
  void onCall(const std::string& method, int nth, TFault fault);
  void clearFaults();

  [[nodiscard]] std::uint64_t calls(const std::string& method) const;
  [[nodiscard]] std::map<std::string, std::uint64_t> calls() const;
  [[nodiscard]] std::uint64_t connections() const { return opened_; }

 private:
  struct TPeer {
    int socket = -1;
    std::thread thread;
    std::atomic<bool> done{false};
  };
  struct TRule {
    std::string method;
    int nth;
    int seen = 0;
    TFault fault;
  };

  void acceptLoop();
  void converse(int socket);
  bool serve(int socket, const std::string& call);
  bool spoil(int socket, TFault fault, const std::string& call, std::string answer);
  const TFault* faultFor(const std::string& method, TFault& fault);
  std::string carryOut(const std::string& call);
  void joinFinished();

  TOptions options_;
  std::shared_ptr<apache::thrift::TProcessor> processor_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  std::atomic<bool> stopping_{false};
  std::atomic<std::uint64_t> opened_{0};
  mutable std::mutex mutex_;
  std::vector<TRule> rules_;
  std::map<std::string, std::uint64_t> calls_;
  std::mutex peersMutex_;
  std::list<TPeer> peers_;
  std::thread acceptor_;
};

}  // namespace hollowmere::thriftwire
