#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "support/mongowire/bsondoc.h"
#include "support/mongowire/wire.h"

namespace hollowmere::mongowire {

class TWireServer;

/// One accepted socket, used only in its own thread except for drop().
class TConnection {
 public:
  TConnection(TWireServer& server, int socket, std::uint64_t id);
  ~TConnection();
  TConnection(const TConnection&) = delete;
  TConnection& operator=(const TConnection&) = delete;

  /// 1 for the server's first connection, and so on.
  std::uint64_t id() const { return id_; }
  /// When the request being served had arrived whole.
  std::chrono::steady_clock::time_point receivedAt() const { return receivedAt_; }

  /// Sends everything, or false when the peer is gone.
  bool send(std::string_view bytes);
  /// Frames and sends one document; sends nothing when the client wants no answer.
  bool reply(const TRequest& request, const TBson& document);
  /// A send buffer that keeps its memory from answer to answer.
  std::string& frame() { return frame_; }
  /// Sleeps to within some microseconds of `when`. False when the server is stopping meanwhile.
  bool pauseUntil(std::chrono::steady_clock::time_point when);
  /// Says nothing and reads nothing until the peer closes or the server stops.
  void waitForPeer();
  /// Takes whatever bytes come next, without framing; empty at the end of the stream.
  std::string receiveAnything();

  /// Ends the connection from any thread.
  void drop();

 private:
  friend class TWireServer;

  /// The next whole message, borrowed from the buffer; false when the peer ended between two messages.
  bool receive(std::string_view& message);
  void makeRoom(std::size_t message);
  void closeSocket();

  TWireServer& server_;
  const int socket_;
  const std::uint64_t id_;
  std::mutex closing_;
  bool closed_ = false;
  std::atomic<bool> dropped_{false};
  std::chrono::steady_clock::time_point receivedAt_;
  std::unique_ptr<char[]> buffer_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::string frame_;
};

/// What a server does on one connection. Made and used in that connection's thread.
class TSession {
 public:
  virtual ~TSession() = default;
  /// Before the first byte is read; false closes the connection.
  virtual bool open(TConnection&) { return true; }
  /// For each well-framed request; false closes the connection.
  virtual bool serve(TConnection& connection, const TRequest& request) = 0;
};

using TSessionFactory = std::function<std::unique_ptr<TSession>(TConnection&)>;

struct TServerOptions {
  std::size_t maxMessageBytes = 48000000;
  bool validateBson = false;  ///< look inside every document, not only at its length
};

/// Listens on 127.0.0.1, on a port of the system's choice, with one thread a connection.
/// A peer that breaks the protocol is counted and its connection closed. All methods are safe in any thread.
class TWireServer {
 public:
  /// Listens at once. Throws std::system_error. `factory` is called in the connections' threads and must
  /// stay usable until stop() has returned.
  TWireServer(TServerOptions options, TSessionFactory factory);
  ~TWireServer();
  TWireServer(const TWireServer&) = delete;
  TWireServer& operator=(const TWireServer&) = delete;

  std::uint16_t port() const { return port_; }
  /// Closes the listening socket and every connection, wakes every pause and joins all threads.
  /// Idempotent; must not be called from a session.
  void stop();
  /// Ends the connections that are open now; new ones are welcome.
  void dropConnections();

  /// How many times a peer broke the protocol, and the first hundred complaints.
  std::uint64_t violations() const { return violations_; }
  std::vector<std::string> violationTexts() const;
  std::uint64_t connectionsOpened() const { return opened_; }

 private:
  friend class TConnection;
  struct TPeer {
    std::unique_ptr<TConnection> connection;
    std::thread thread;
    std::atomic<bool> done{false};
  };

  void acceptLoop();
  void admit(int socket);
  void joinFinished();
  void run(TPeer& peer);
  void converse(TConnection& connection);
  void addViolation(const std::string& text);

  const TServerOptions options_;
  const TSessionFactory factory_;
  int listener_ = -1;
  int stopSignal_ = -1;  // an eventfd that turns readable for good when the server stops
  std::uint16_t port_ = 0;
  std::atomic<bool> stopping_{false};
  std::atomic<std::uint64_t> opened_{0};
  std::atomic<std::uint64_t> violations_{0};
  mutable std::mutex textsMutex_;
  std::vector<std::string> texts_;
  std::mutex stopMutex_;
  std::mutex peersMutex_;
  std::list<TPeer> peers_;
  std::thread acceptor_;
};

}  // namespace hollowmere::mongowire
