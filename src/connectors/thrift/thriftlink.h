#pragma once

#include <thrift/protocol/TProtocol.h>

#include <memory>
#include <string>

#include "connectors/thrift/thriftfault.h"
#include "connectors/thrift/thriftoptions.h"

namespace hollowmere {

class TFrames;
class THolding;
class TStopSocket;

/// An open connection to a Thrift server, framed transport and binary protocol, that a generated client runs
/// over. Belongs to one thread; faults are TThriftFault and end it. What an answer claims to hold is bounded
/// by its own length: the library throws TProtocolException for more.
class TThriftLink {
 public:
  /// Connects.
  explicit TThriftLink(const TThriftOptions& options);
  TThriftLink(const TThriftLink&) = delete;
  TThriftLink& operator=(const TThriftLink&) = delete;
  ~TThriftLink();

  [[nodiscard]] const std::shared_ptr<apache::thrift::protocol::TProtocol>& protocol() const {
    return protocol_;
  }

  /// Calls sent from now on (a generated client's send_ methods) are gathered and go out with release() or
  /// when some tens of kilobytes are waiting. Their answers come in the order of the calls.
  void hold();
  void release();

  /// Another time for each answer than the options say.
  void setAnswerTime(std::chrono::milliseconds time);

  /// Bytes that were sent since the connection began, those held among them.
  [[nodiscard]] std::uint64_t sentBytes() const;

 private:
  std::shared_ptr<TStopSocket> socket_;
  std::shared_ptr<THolding> holding_;
  std::shared_ptr<TFrames> frames_;
  std::shared_ptr<apache::thrift::protocol::TProtocol> protocol_;
};

/// Whether the server there answers a call of that method without frames: its Thrift interface has another
/// transport than ours. Asked when a server closes the connection or is silent. Gives false on any fault.
bool answersUnframed(const TThriftOptions& options, const std::string& method);

}  // namespace hollowmere
