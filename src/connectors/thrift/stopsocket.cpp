#include "connectors/thrift/stopsocket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

namespace hollowmere {

namespace {

constexpr std::chrono::milliseconds slice{50};
constexpr std::int64_t graceMilliseconds = 1000;

std::string systemText(int code) { return std::system_category().message(code); }

std::string secondsText(std::chrono::milliseconds time) {
  return std::to_string(std::max<std::int64_t>(1, time.count() / 1000)) + " seconds";
}

struct TAddressDeleter {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};
using TAddresses = std::unique_ptr<addrinfo, TAddressDeleter>;

TAddresses resolve(const TThriftOptions& options) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  const int code = getaddrinfo(options.host.c_str(), std::to_string(options.port).c_str(), &hints, &list);
  if (code != 0)
    throw TThriftFault(TThriftFaultKind::Unreachable,
                       options.where() + ": the host is not known (" + gai_strerror(code) + ").");
  return TAddresses(list);
}

}  // namespace

TStopSocket::TStopSocket(TThriftOptions options,
                         std::shared_ptr<apache::thrift::TConfiguration> configuration)
    : TVirtualTransport(std::move(configuration)), options_(std::move(options)) {}

TStopSocket::~TStopSocket() { TStopSocket::close(); }

void TStopSocket::close() {
  if (socket_ >= 0) ::close(socket_);
  socket_ = -1;
}

/// Waits for the socket in slices, so that a stop is seen.
void TStopSocket::wait(short events, TClock::time_point until, const char* what) {
  for (;;) {
    if (options_.stop && options_.stop->milliseconds() > graceMilliseconds)
      throw TThriftFault(TThriftFaultKind::Stopped, options_.where() + ": stopped while waiting.");
    pollfd entry{socket_, events, 0};
    if (poll(&entry, 1, static_cast<int>(slice.count())) > 0) return;
    if (TClock::now() >= until)
      throw TThriftFault(TThriftFaultKind::TimedOut,
                         options_.where() + what + secondsText(options_.answerTime) + ".");
  }
}

/// False, with error_ set, when this address does not take the connection.
bool TStopSocket::tryAddress(const addrinfo& address) {
  socket_ =
      socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol);
  if (socket_ < 0) {
    error_ = errno;
    return false;
  }
  const int yes = 1;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
  setsockopt(socket_, SOL_SOCKET, SO_KEEPALIVE, &yes, sizeof yes);
  if (connect(socket_, address.ai_addr, address.ai_addrlen) == 0) return true;
  error_ = errno;
  const auto until = TClock::now() + options_.connectTime;
  while (error_ == EINPROGRESS || error_ == EINTR) {
    if (options_.stop && options_.stop->isSet())
      throw TThriftFault(TThriftFaultKind::Stopped, options_.where() + ": stopped while connecting.");
    pollfd entry{socket_, POLLOUT, 0};
    socklen_t length = sizeof error_;
    if (poll(&entry, 1, static_cast<int>(slice.count())) > 0)
      getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error_, &length);
    else if (TClock::now() >= until)
      error_ = ETIMEDOUT;
  }
  if (error_ != 0) close();
  return error_ == 0;
}

void TStopSocket::open() {
  if (isOpen()) return;
  const TAddresses addresses = resolve(options_);
  for (const addrinfo* address = addresses.get(); address; address = address->ai_next)
    if (tryAddress(*address)) return startAnswer();
  if (error_ == ECONNREFUSED)
    throw TThriftFault(TThriftFaultKind::Refused, options_.where() + " refused the connection.");
  if (error_ == ETIMEDOUT)
    throw TThriftFault(TThriftFaultKind::TimedOut, options_.where() + " took no connection within " +
                                                       secondsText(options_.connectTime) + ".");
  throw TThriftFault(TThriftFaultKind::Unreachable,
                     options_.where() + " cannot be reached: " + systemText(error_) + ".");
}

void TStopSocket::startAnswer() { answerUntil_ = TClock::now() + options_.answerTime; }

std::uint32_t TStopSocket::read(std::uint8_t* buffer, std::uint32_t length) {
  for (;;) {
    const ssize_t got = isOpen() ? recv(socket_, buffer, length, 0) : 0;
    if (got >= 0) return static_cast<std::uint32_t>(got);
    const int code = errno;
    // A reset is an end like another: what was asked was not answered.
    if (code == ECONNRESET) return 0;
    if (code == EAGAIN || code == EWOULDBLOCK)
      wait(POLLIN, answerUntil_, " did not answer within ");
    else if (code != EINTR)
      throw TThriftFault(TThriftFaultKind::Closed,
                         options_.where() + ": the connection is lost (" + systemText(code) + ").");
  }
}

void TStopSocket::write(const std::uint8_t* buffer, std::uint32_t length) {
  startAnswer();
  while (length > 0) {
    const ssize_t put = isOpen() ? send(socket_, buffer, length, MSG_NOSIGNAL) : 0;
    if (put > 0) {
      buffer += put;
      length -= static_cast<std::uint32_t>(put);
      startAnswer();
      continue;
    }
    const int code = put == 0 ? ENOTCONN : errno;
    if (code == EAGAIN || code == EWOULDBLOCK)
      wait(POLLOUT, answerUntil_, " took nothing more within ");
    else if (code != EINTR)
      throw TThriftFault(TThriftFaultKind::Closed,
                         options_.where() + " closed the connection (" + systemText(code) + ").");
  }
}

}  // namespace hollowmere
