#include "connectors/mongodb/stopstream.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <vector>

namespace hollowmere {

namespace {

constexpr std::int64_t sliceMicroseconds = 50'000;
constexpr std::int64_t graceMilliseconds = 1000;

struct TSocketDeleter {
  void operator()(mongoc_socket_t* socket) const { mongoc_socket_destroy(socket); }
};
using TSocketPtr = std::unique_ptr<mongoc_socket_t, TSocketDeleter>;

bool isAgain(int code) {
  return code == EAGAIN || code == EWOULDBLOCK || code == EINTR || code == EINPROGRESS || code == ETIMEDOUT;
}

/// Ends waiting at a time limit or some time after the stop.
class TPatience {
 public:
  TPatience(const TStopFlag* stop, std::int32_t timeoutMilliseconds) : stop_(stop) {
    if (timeoutMilliseconds >= 0) limit_ = bson_get_monotonic_time() + timeoutMilliseconds * 1000LL;
  }

  /// Until when the next wait may last; false when there is no time left.
  bool next(std::int64_t& expireAt) {
    const std::int64_t now = bson_get_monotonic_time();
    if (stop_ && stop_->milliseconds() > graceMilliseconds) return false;
    if (limit_ >= 0 && now >= limit_ && !first_) return false;
    first_ = false;
    expireAt = now + sliceMicroseconds;
    if (limit_ >= 0) expireAt = std::min(expireAt, limit_);
    return true;
  }

 private:
  const TStopFlag* stop_;
  std::int64_t limit_ = -1;
  bool first_ = true;  ///< a time limit of 0 still means one try
};

/// The driver's stream interface over one of its own sockets.
struct TStopStream {
  mongoc_stream_t stream{};  // first: the driver hands out its address
  TSocketPtr socket;
  const TStopFlag* stop = nullptr;
  bool timedOut = false;

  [[nodiscard]] TPatience patience(std::int32_t timeout) const { return {stop, timeout}; }
};

constexpr int streamType = 0x484d;

TStopStream& own(mongoc_stream_t* stream) { return *reinterpret_cast<TStopStream*>(stream); }

void destroy(mongoc_stream_t* stream) { delete &own(stream); }

int closeStream(mongoc_stream_t* stream) {
  own(stream).socket.reset();
  return 0;
}

int flush(mongoc_stream_t*) { return 0; }

/// Drops the first count bytes of a list of pieces.
void advance(std::vector<mongoc_iovec_t>& pieces, std::size_t& first, std::size_t count) {
  while (first < pieces.size() && count >= pieces[first].iov_len) count -= pieces[first++].iov_len;
  if (first < pieces.size() && count > 0) {
    pieces[first].iov_base = static_cast<char*>(pieces[first].iov_base) + count;
    pieces[first].iov_len -= count;
  }
}

ssize_t writev(mongoc_stream_t* stream, mongoc_iovec_t* iov, std::size_t count, std::int32_t timeout) {
  TStopStream& self = own(stream);
  if (!self.socket) return -1;
  std::vector<mongoc_iovec_t> pieces(iov, iov + count);
  std::size_t first = 0;
  ssize_t sent = 0;
  TPatience patience = self.patience(timeout);
  std::int64_t expireAt = 0;
  while (first < pieces.size()) {
    if (!patience.next(expireAt)) {
      self.timedOut = true;
      errno = ETIMEDOUT;
      return timeout == 0 || sent > 0 ? sent : -1;
    }
    const ssize_t put =
        mongoc_socket_sendv(self.socket.get(), pieces.data() + first, pieces.size() - first, expireAt);
    if (put < 0 && !isAgain(mongoc_socket_errno(self.socket.get()))) return -1;
    if (put <= 0) continue;
    sent += put;
    advance(pieces, first, static_cast<std::size_t>(put));
  }
  return sent;
}

/// Fills one piece as far as bytes come; -1 on failure, 0 at the end of the stream.
ssize_t receive(TStopStream& self, const mongoc_iovec_t& piece, std::size_t offset, std::int64_t expireAt) {
  return mongoc_socket_recv(self.socket.get(), static_cast<char*>(piece.iov_base) + offset,
                            piece.iov_len - offset, 0, expireAt);
}

ssize_t readv(mongoc_stream_t* stream, mongoc_iovec_t* iov, std::size_t count, std::size_t least,
              std::int32_t timeout) {
  TStopStream& self = own(stream);
  if (!self.socket) return -1;
  self.timedOut = false;
  TPatience patience = self.patience(timeout);
  std::int64_t expireAt = 0;
  std::size_t got = 0;
  std::size_t piece = 0;
  std::size_t offset = 0;
  while (piece < count) {
    if (!patience.next(expireAt)) {
      // Asked for what is there, and there was some: it must not be lost.
      if (got > 0 && got >= least) return static_cast<ssize_t>(got);
      self.timedOut = true;
      errno = ETIMEDOUT;
      return -1;
    }
    const ssize_t now = receive(self, iov[piece], offset, expireAt);
    if (now == 0) return got >= least && got > 0 ? static_cast<ssize_t>(got) : 0;
    if (now < 0 && !isAgain(mongoc_socket_errno(self.socket.get()))) return -1;
    if (now < 0) {
      if (timeout == 0) return got > 0 ? static_cast<ssize_t>(got) : -1;
      continue;
    }
    got += static_cast<std::size_t>(now);
    offset += static_cast<std::size_t>(now);
    if (offset == iov[piece].iov_len) {
      ++piece;
      offset = 0;
    }
    if (got >= least && least > 0) break;
  }
  return static_cast<ssize_t>(got);
}

int setOption(mongoc_stream_t* stream, int level, int name, void* value, mongoc_socklen_t length) {
  return own(stream).socket ? mongoc_socket_setsockopt(own(stream).socket.get(), level, name, value, length)
                            : -1;
}

bool checkClosed(mongoc_stream_t* stream) {
  return !own(stream).socket || mongoc_socket_check_closed(own(stream).socket.get());
}

bool timedOut(mongoc_stream_t* stream) { return own(stream).timedOut; }

bool shouldRetry(mongoc_stream_t* stream) {
  return own(stream).socket && isAgain(mongoc_socket_errno(own(stream).socket.get()));
}

/// Waits for several streams at once; the driver does so while it looks for a server.
ssize_t poll(mongoc_stream_poll_t* streams, std::size_t count, std::int32_t timeout) {
  std::vector<mongoc_socket_poll_t> sockets(count);
  for (std::size_t i = 0; i < count; ++i)
    sockets[i] = {own(streams[i].stream).socket.get(), streams[i].events, 0};
  TPatience patience = own(streams[0].stream).patience(timeout);
  std::int64_t expireAt = 0;
  while (patience.next(expireAt)) {
    const std::int64_t wait = std::max<std::int64_t>(0, expireAt - bson_get_monotonic_time());
    const ssize_t ready =
        mongoc_socket_poll(sockets.data(), count, static_cast<std::int32_t>((wait + 999) / 1000));
    if (ready == 0) continue;
    for (std::size_t i = 0; i < count; ++i) streams[i].revents = sockets[i].revents;
    return ready;
  }
  const TStopStream& first = own(streams[0].stream);
  if (!first.stop || !first.stop->isSet()) return 0;
  // Called off: every stream reports a failure, so that the driver gives up on it.
  for (std::size_t i = 0; i < count; ++i) streams[i].revents = POLLERR;
  return static_cast<ssize_t>(count);
}

mongoc_stream_t* newStream(TSocketPtr socket, const TStopFlag* stop) {
  auto made = std::make_unique<TStopStream>();
  made->socket = std::move(socket);
  made->stop = stop;
  mongoc_stream_t& stream = made->stream;
  stream.type = streamType;
  stream.destroy = destroy;
  stream.failed = destroy;
  stream.close = closeStream;
  stream.flush = flush;
  stream.writev = writev;
  stream.readv = readv;
  stream.setsockopt = setOption;
  stream.check_closed = checkClosed;
  stream.poll = poll;
  stream.timed_out = timedOut;
  stream.should_retry = shouldRetry;
  return &made.release()->stream;
}

/// Connects within the time limit; 0 or the error number.
int connectSocket(mongoc_socket_t* socket, const addrinfo& address, TPatience patience) {
  std::int64_t expireAt = 0;
  while (patience.next(expireAt)) {
    if (mongoc_socket_connect(socket, address.ai_addr, static_cast<mongoc_socklen_t>(address.ai_addrlen),
                              expireAt) == 0)
      return 0;
    const int code = mongoc_socket_errno(socket);
    // The call before has got through in the meantime.
    if (code == EISCONN) return 0;
    if (!isAgain(code) && code != EALREADY && code != 0) return code;
  }
  return ETIMEDOUT;
}

mongoc_stream_t* initiate(const mongoc_uri_t* uri, const mongoc_host_list_t* host, void* stop,
                          bson_error_t* error) {
  const auto* flag = static_cast<const TStopFlag*>(stop);
  // The driver tries once more what has failed; when all is to end, it may not.
  if (flag && flag->isSet()) {
    bson_set_error(error, MONGOC_ERROR_STREAM, MONGOC_ERROR_STREAM_CONNECT, "stopped");
    return nullptr;
  }
  addrinfo hints{};
  hints.ai_family = host->family;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(host->host, std::to_string(host->port).c_str(), &hints, &found) != 0) {
    bson_set_error(error, MONGOC_ERROR_STREAM, MONGOC_ERROR_STREAM_NAME_RESOLUTION, "Failed to resolve '%s'",
                   host->host);
    return nullptr;
  }
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, &freeaddrinfo);
  const std::int32_t timeout = mongoc_uri_get_option_as_int32(uri, MONGOC_URI_CONNECTTIMEOUTMS, 10000);
  int code = ECONNREFUSED;
  for (const addrinfo* at = addresses.get(); at; at = at->ai_next) {
    TSocketPtr socket(mongoc_socket_new(at->ai_family, at->ai_socktype, at->ai_protocol));
    if (!socket) continue;
    code = connectSocket(socket.get(), *at, TPatience(flag, timeout));
    if (code == 0) return newStream(std::move(socket), flag);
  }
  bson_set_error(error, MONGOC_ERROR_STREAM, MONGOC_ERROR_STREAM_CONNECT, "%s",
                 code == ECONNREFUSED ? "connection refused"
                 : code == ETIMEDOUT  ? "connection timed out"
                                      : "connection failed");
  return nullptr;
}

}  // namespace

void useStopStreams(mongoc_client_t* client, const TStopFlag* stop) {
  mongoc_client_set_stream_initiator(client, initiate, const_cast<TStopFlag*>(stop));
}

}  // namespace hollowmere
