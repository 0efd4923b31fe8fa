#pragma once

#include <thrift/transport/TTransportException.h>

#include <string>

namespace hollowmere {

/// What went wrong between us and a Thrift server.
enum class TThriftFaultKind {
  Unreachable,  ///< no such host, no way to it
  Refused,      ///< nobody listens on the port
  TimedOut,     ///< no connection, or no answer, within the time
  Stopped,      ///< the user stopped the work
  Closed,       ///< the server closed the connection instead of answering
  Torn,         ///< the connection ended, or the frame did, within an answer
  Oversized,    ///< an answer longer than is allowed
  NotFramed,    ///< the bytes are no frames: another transport, or another kind of server
};

/// A fault of the transport, with a plain text that names the server. It passes through generated clients.
/// The connection is of no use afterwards.
class TThriftFault : public apache::thrift::transport::TTransportException {
 public:
  TThriftFault(TThriftFaultKind kind, const std::string& text)
      : TTransportException(typeOf(kind), text), kind_(kind) {}

  [[nodiscard]] TThriftFaultKind kind() const { return kind_; }

 private:
  static TTransportExceptionType typeOf(TThriftFaultKind kind) {
    if (kind == TThriftFaultKind::TimedOut) return TIMED_OUT;
    return kind == TThriftFaultKind::Closed ? END_OF_FILE : NOT_OPEN;
  }

  TThriftFaultKind kind_;
};

}  // namespace hollowmere
