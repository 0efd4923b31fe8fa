#include "support/thriftwire/wireserver.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

namespace hollowmere::thriftwire {

namespace {

using apache::thrift::TConfiguration;
using apache::thrift::protocol::TBinaryProtocolT;
using apache::thrift::transport::TMemoryBuffer;

constexpr int most = 0x7fffffff;

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::system_category(), what); }

bool readAll(int socket, char* to, std::size_t bytes) {
  while (bytes > 0) {
    const ssize_t got = recv(socket, to, bytes, 0);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    to += got;
    bytes -= static_cast<std::size_t>(got);
  }
  return true;
}

bool sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t put = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(put));
  }
  return true;
}

std::uint32_t number(const char* bytes) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return ntohl(value);
}

std::string bytesOf(std::uint32_t number) {
  number = htonl(number);
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

/// Of a call in the strict binary protocol; empty when it is none.
std::string methodOf(const std::string& call) {
  if (call.size() < 8 || number(call.data()) != 0x80010001) return {};
  const std::uint32_t length = number(call.data() + 4);
  return length <= call.size() - 8 ? call.substr(8, length) : std::string();
}

/// An exception of kind 6, "internal error".
std::string internalError(const std::string& call) {
  const std::string method = methodOf(call);
  const std::string text = "Internal error processing " + method;
  const std::string sequence = call.substr(8 + method.size(), 4);
  return bytesOf(0x80010003) + call.substr(4, 4 + method.size()) + sequence + std::string("\x0b\x00\x01", 3) +
         bytesOf(static_cast<std::uint32_t>(text.size())) + text + std::string("\x08\x00\x02", 3) +
         bytesOf(6) + std::string(1, '\0');
}

/// Waits until the peer closes.
void waitForPeer(int socket) {
  char ignored[4096];
  while (recv(socket, ignored, sizeof ignored, 0) > 0) continue;
}

/// Sleeping alone is too coarse for a millisecond.
void pause(std::chrono::microseconds time) {
  const auto until = std::chrono::steady_clock::now() + time;
  constexpr std::chrono::microseconds coarse{200};
  if (time > coarse) std::this_thread::sleep_for(time - coarse);
  while (std::chrono::steady_clock::now() < until) std::this_thread::yield();
}

}  // namespace

TWireServer::TWireServer(const TOptions& options, std::shared_ptr<apache::thrift::TProcessor> processor)
    : options_(options), processor_(std::move(processor)) {
  listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener_ < 0) fail("socket");
  const int yes = 1;
  setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(options.port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (bind(listener_, reinterpret_cast<sockaddr*>(&address), length) < 0) fail("bind");
  if (listen(listener_, 64) < 0) fail("listen");
  getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
  port_ = ntohs(address.sin_port);
  acceptor_ = std::thread([this] { acceptLoop(); });
}

void TWireServer::stop() {
  if (stopping_.exchange(true)) return;
  shutdown(listener_, SHUT_RDWR);
  acceptor_.join();
  close(listener_);
  dropConnections();
  for (TPeer& peer : peers_) peer.thread.join();
  peers_.clear();
}

void TWireServer::dropConnections() {
  const std::lock_guard lock(peersMutex_);
  for (const TPeer& peer : peers_) shutdown(peer.socket, SHUT_RDWR);
}

void TWireServer::onCall(const std::string& method, int nth, TFault fault) {
  const std::lock_guard lock(mutex_);
  rules_.push_back({method, nth, 0, fault});
}

void TWireServer::clearFaults() {
  const std::lock_guard lock(mutex_);
  rules_.clear();
}

std::uint64_t TWireServer::calls(const std::string& method) const {
  const std::lock_guard lock(mutex_);
  const auto found = calls_.find(method);
  return found == calls_.end() ? 0 : found->second;
}

std::map<std::string, std::uint64_t> TWireServer::calls() const {
  const std::lock_guard lock(mutex_);
  return calls_;
}

void TWireServer::acceptLoop() {
  while (!stopping_) {
    const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) continue;
    const int yes = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    joinFinished();
    ++opened_;
    const std::lock_guard lock(peersMutex_);
    TPeer& peer = peers_.emplace_back();
    peer.socket = socket;
    peer.thread = std::thread([this, &peer] {
      converse(peer.socket);
      const std::lock_guard ending(peersMutex_);
      close(peer.socket);
      peer.socket = -1;
      peer.done = true;
    });
  }
}

void TWireServer::joinFinished() {
  const std::lock_guard lock(peersMutex_);
  for (auto peer = peers_.begin(); peer != peers_.end();) {
    if (!peer->done) {
      ++peer;
      continue;
    }
    peer->thread.join();
    peer = peers_.erase(peer);
  }
}

void TWireServer::converse(int socket) {
  char head[4];
  std::string call;
  while (readAll(socket, head, sizeof head)) {
    if (!options_.framed) {
      // The test of a client for it: its call without arguments, bytes 4 on.
      std::string rest(4, '\0');
      if (number(head) != 0x80010001) return waitForPeer(socket);
      if (!readAll(socket, rest.data(), 4)) return;
      const std::uint32_t length = number(rest.data());
      std::string name(length + 5, '\0');
      if (length > 1000 || !readAll(socket, name.data(), name.size())) return;
      if (!sendAll(socket, carryOut(std::string(head, 4) + rest + name))) return;
      continue;
    }
    const std::uint32_t length = number(head);
    if (length > options_.longestCall) return;
    call.resize(length);
    if (!readAll(socket, call.data(), length) || !serve(socket, call)) return;
  }
}

/// Sets fault when there is one.
const TFault* TWireServer::faultFor(const std::string& method, TFault& fault) {
  const std::lock_guard lock(mutex_);
  ++calls_[method];
  const TFault* found = nullptr;
  for (TRule& rule : rules_) {
    if (rule.method != method) continue;
    ++rule.seen;
    if ((rule.nth == every || rule.nth == rule.seen) && !found) found = &(fault = rule.fault);
  }
  return found;
}

bool TWireServer::serve(int socket, const std::string& call) {
  TFault kind{};
  const TFault* fault = faultFor(methodOf(call), kind);
  if (options_.delay.count() > 0) pause(options_.delay);
  if (fault && *fault == TFault::close) return false;
  if (fault && *fault == TFault::silence) {
    waitForPeer(socket);
    return false;
  }
  if (fault && *fault == TFault::internalError) {
    const std::string answer = internalError(call);
    return sendAll(socket, bytesOf(static_cast<std::uint32_t>(answer.size())) + answer);
  }
  std::string answer = carryOut(call);
  if (answer.empty()) return false;
  if (fault) return spoil(socket, *fault, call, std::move(answer));
  return sendAll(socket, bytesOf(static_cast<std::uint32_t>(answer.size())) + answer);
}

bool TWireServer::spoil(int socket, TFault fault, const std::string& call, std::string answer) {
  const std::string frame = bytesOf(static_cast<std::uint32_t>(answer.size())) + answer;
  if (fault == TFault::halfThenClose || fault == TFault::halfThenSilence)
    sendAll(socket, std::string_view(frame).substr(0, frame.size() / 2));
  if (fault == TFault::halfThenSilence) waitForPeer(socket);
  if (fault == TFault::cutShort) {
    answer.resize(answer.size() / 2);
    return sendAll(socket, bytesOf(static_cast<std::uint32_t>(answer.size())) + answer);
  }
  if (fault == TFault::hugeFrame) sendAll(socket, bytesOf(0x7fffffff) + answer);
  if (fault == TFault::garbage) sendAll(socket, bytesOf(64) + std::string(64, '\x7e'));
  return fault == TFault::garbage && !call.empty();
}

/// The answer; empty when the call is no message.
std::string TWireServer::carryOut(const std::string& call) {
  if (options_.quick)
    if (auto answer = options_.quick(methodOf(call), call)) return std::move(*answer);
  const auto configuration = std::make_shared<TConfiguration>(most, most);
  auto* bytes = reinterpret_cast<std::uint8_t*>(const_cast<char*>(call.data()));
  const auto in = std::make_shared<TMemoryBuffer>(bytes, static_cast<std::uint32_t>(call.size()),
                                                  TMemoryBuffer::OBSERVE, configuration);
  const auto out = std::make_shared<TMemoryBuffer>(configuration);
  const auto reading = std::make_shared<TBinaryProtocolT<TMemoryBuffer>>(in);
  reading->setStrict(true, true);
  try {
    processor_->process(reading, std::make_shared<TBinaryProtocolT<TMemoryBuffer>>(out), nullptr);
  } catch (const apache::thrift::TException&) {
    return {};
  }
  return out->getBufferAsString();
}

}  // namespace hollowmere::thriftwire
