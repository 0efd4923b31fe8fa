#include "support/mongowire/server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace hollowmere::mongowire {

namespace {

constexpr std::size_t kFirstBuffer = 256 * 1024;
constexpr std::size_t kWholeReadFrom = 32 * 1024;
constexpr std::size_t kKeptTexts = 100;

[[noreturn]] void systemFailure(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

int listenOnLoopback(std::uint16_t& port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) systemFailure("socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* raw = reinterpret_cast<sockaddr*>(&address);
  if (::bind(fd, raw, length) < 0 || ::listen(fd, 128) < 0 || ::getsockname(fd, raw, &length) < 0) {
    const int failed = errno;
    ::close(fd);
    errno = failed;
    systemFailure("listen on 127.0.0.1");
  }
  port = ntohs(address.sin_port);
  return fd;
}

}  // namespace

TConnection::TConnection(TWireServer& server, int socket, std::uint64_t id)
    : server_(server), socket_(socket), id_(id) {
  const int on = 1;
  ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

TConnection::~TConnection() { closeSocket(); }

bool TConnection::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

bool TConnection::reply(const TRequest& request, const TBson& document) {
  if (!request.answerWanted) return true;
  frame_.clear();
  appendReply(frame_, request, document.bytes());
  return send(frame_);
}

bool TConnection::pauseUntil(std::chrono::steady_clock::time_point when) {
  while (true) {
    const auto left = when - std::chrono::steady_clock::now();
    if (left.count() <= 0) return !server_.stopping_;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec wait{seconds.count(), std::chrono::nanoseconds(left - seconds).count()};
    pollfd stop{server_.stopSignal_, POLLIN, 0};
    const int ready = ::ppoll(&stop, 1, &wait, nullptr);
    if (ready > 0 || (ready < 0 && errno != EINTR)) return false;
  }
}

void TConnection::waitForPeer() {
  pollfd fds[2] = {{socket_, POLLRDHUP, 0}, {server_.stopSignal_, POLLIN, 0}};
  while (::poll(fds, 2, -1) < 0 && errno == EINTR) {
  }
}

std::string TConnection::receiveAnything() {
  char bytes[4096];
  ssize_t got;
  do {
    got = ::recv(socket_, bytes, sizeof bytes, 0);
  } while (got < 0 && errno == EINTR);
  return got > 0 ? std::string(bytes, static_cast<std::size_t>(got)) : std::string();
}

void TConnection::drop() {
  const std::lock_guard lock(closing_);
  dropped_ = true;
  if (!closed_) ::shutdown(socket_, SHUT_RDWR);
}

void TConnection::closeSocket() {
  const std::lock_guard lock(closing_);
  if (!closed_) ::close(socket_);
  closed_ = true;
}

void TConnection::makeRoom(std::size_t message) {
  const std::size_t have = end_ - begin_;
  if (begin_ + message <= capacity_) return;
  if (message > capacity_) {
    const std::size_t larger = std::max({message, 2 * capacity_, kFirstBuffer});
    auto grown = std::make_unique_for_overwrite<char[]>(larger);
    if (have > 0) std::memcpy(grown.get(), buffer_.get() + begin_, have);
    buffer_ = std::move(grown);
    capacity_ = larger;
  } else {
    std::memmove(buffer_.get(), buffer_.get() + begin_, have);
  }
  begin_ = 0;
  end_ = have;
}

bool TConnection::receive(std::string_view& message) {
  if (begin_ == end_) begin_ = end_ = 0;
  while (true) {
    const std::size_t have = end_ - begin_;
    std::size_t length = kHeaderBytes;
    if (have >= 4) length = messageLength({buffer_.get() + begin_, have}, server_.options_.maxMessageBytes);
    if (have >= length) {
      message = {buffer_.get() + begin_, length};
      begin_ += length;
      receivedAt_ = std::chrono::steady_clock::now();
      return true;
    }
    makeRoom(length);
    // The bulk of a large message comes in one call, however small the pieces it arrives in.
    const bool whole = length - have >= kWholeReadFrom;
    const std::size_t room = whole ? length - have : capacity_ - end_;
    const ssize_t got = ::recv(socket_, buffer_.get() + end_, room, whole ? MSG_WAITALL : 0);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      if (have > 0 && !dropped_) throw TWireViolation("the connection ended inside a message");
      return false;
    }
    end_ += static_cast<std::size_t>(got);
  }
}

TWireServer::TWireServer(TServerOptions options, TSessionFactory factory)
    : options_(options), factory_(std::move(factory)) {
  stopSignal_ = ::eventfd(0, EFD_CLOEXEC);
  if (stopSignal_ < 0) systemFailure("eventfd");
  try {
    listener_ = listenOnLoopback(port_);
  } catch (...) {
    ::close(stopSignal_);
    throw;
  }
  acceptor_ = std::thread([this] { acceptLoop(); });
}

TWireServer::~TWireServer() {
  stop();
  ::close(stopSignal_);
}

void TWireServer::stop() {
  const std::lock_guard once(stopMutex_);
  if (stopping_.exchange(true)) return;
  const std::uint64_t one = 1;
  while (::write(stopSignal_, &one, sizeof one) < 0 && errno == EINTR) {
  }
  acceptor_.join();
  ::close(listener_);
  dropConnections();
  // Nobody adds peers any more, and the sessions' threads never touch the list.
  for (TPeer& peer : peers_) peer.thread.join();
  const std::lock_guard lock(peersMutex_);
  peers_.clear();
}

void TWireServer::dropConnections() {
  const std::lock_guard lock(peersMutex_);
  for (TPeer& peer : peers_) peer.connection->drop();
}

std::vector<std::string> TWireServer::violationTexts() const {
  const std::lock_guard lock(textsMutex_);
  return texts_;
}

void TWireServer::acceptLoop() {
  while (true) {
    pollfd fds[2] = {{listener_, POLLIN, 0}, {stopSignal_, POLLIN, 0}};
    if (::poll(fds, 2, -1) < 0 && errno != EINTR) return;
    if (stopping_) return;
    if (fds[0].revents == 0) continue;
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket >= 0)
      admit(socket);
    else
      ::poll(&fds[1], 1, 10);  // out of descriptors: give the others time to close some
  }
}

void TWireServer::admit(int socket) {
  const std::lock_guard lock(peersMutex_);
  joinFinished();
  TPeer& peer = peers_.emplace_back();
  peer.connection = std::make_unique<TConnection>(*this, socket, ++opened_);
  peer.thread = std::thread([this, &peer] { run(peer); });
}

void TWireServer::joinFinished() {
  for (auto peer = peers_.begin(); peer != peers_.end();) {
    if (!peer->done) {
      ++peer;
      continue;
    }
    peer->thread.join();
    peer = peers_.erase(peer);
  }
}

void TWireServer::run(TPeer& peer) {
  // Without this the kernel may add 50 microseconds to each pause, much beside a delay of one millisecond.
  ::prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
  try {
    converse(*peer.connection);
  } catch (const std::exception& error) {
    // Also what lies deeper than framing, such as a nested document that overruns its parent.
    addViolation("connection " + std::to_string(peer.connection->id()) + ": " + error.what());
  }
  peer.connection->closeSocket();
  peer.done = true;
}

void TWireServer::converse(TConnection& connection) {
  const std::unique_ptr<TSession> session = factory_(connection);
  if (!session->open(connection)) return;
  std::string_view message;
  TRequest request;
  while (connection.receive(message)) {
    parseRequest(message, options_.validateBson, request);
    if (!session->serve(connection, request)) return;
  }
}

void TWireServer::addViolation(const std::string& text) {
  ++violations_;
  const std::lock_guard lock(textsMutex_);
  if (texts_.size() < kKeptTexts) texts_.push_back(text);
}

}  // namespace hollowmere::mongowire
