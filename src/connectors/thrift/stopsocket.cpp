#include "connectors/thrift/stopsocket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <future>
#include <memory>
#include <system_error>
#include <thread>

namespace hollowmere {

namespace {

constexpr std::chrono::milliseconds slice{50};
constexpr std::chrono::milliseconds grace{1000};

std::string systemText(int code) { return std::system_category().message(code); }

std::string secondsText(std::chrono::milliseconds time) {
  const std::int64_t seconds = std::max<std::int64_t>(1, time.count() / 1000);
  return std::to_string(seconds) + (seconds == 1 ? " second" : " seconds");
}

struct TAddressDeleter {
  void operator()(addrinfo* list) const { freeaddrinfo(list); }
};
using TAddresses = std::unique_ptr<addrinfo, TAddressDeleter>;

struct TLookup {
  TAddresses addresses;
  int code = 0;
};

TLookup lookUp(const std::string& host, std::uint16_t port, int flags) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags;
  addrinfo* list = nullptr;
  const int code = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list);
  return {TAddresses(code == 0 ? list : nullptr), code};
}

/// In a thread of its own, since nothing ends a look-up: it is left to its end when it takes too long.
std::future<TLookup> lookUpBeside(const TThriftOptions& options) {
  std::packaged_task<TLookup()> task(
      [host = options.host, port = options.port] { return lookUp(host, port, 0); });
  std::future<TLookup> found = task.get_future();
  std::thread(std::move(task)).detach();
  return found;
}

TAddresses resolve(const TThriftOptions& options) {
  TLookup found = lookUp(options.host, options.port, AI_NUMERICHOST);
  if (found.code == 0) return std::move(found.addresses);
  const auto until = std::chrono::steady_clock::now() + options.connectTime;
  std::future<TLookup> beside = lookUpBeside(options);
  while (beside.wait_for(slice) != std::future_status::ready) {
    if (options.stop && options.stop->isSet())
      throw TThriftFault(TThriftFaultKind::Stopped, options.where() + ": stopped while connecting.");
    if (std::chrono::steady_clock::now() >= until)
      throw TThriftFault(TThriftFaultKind::Unreachable, options.where() + ": the host was not found within " +
                                                            secondsText(options.connectTime) + ".");
  }
  found = beside.get();
  if (found.code != 0)
    throw TThriftFault(TThriftFaultKind::Unreachable,
                       options.where() + ": the host is not known (" + gai_strerror(found.code) + ").");
  return std::move(found.addresses);
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
    if (options_.stop && options_.stop->milliseconds() > grace.count() && TClock::now() - callBegan_ > grace)
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
  if (options_.stop && options_.stop->isSet())
    throw TThriftFault(TThriftFaultKind::Stopped, options_.where() + ": stopped before connecting.");
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
  callBegan_ = TClock::now();
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
