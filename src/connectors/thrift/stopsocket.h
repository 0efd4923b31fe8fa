#pragma once

#include <thrift/transport/TVirtualTransport.h>

#include "connectors/thrift/thriftfault.h"
#include "connectors/thrift/thriftoptions.h"

struct addrinfo;

namespace hollowmere {

/// A TCP connection that a stop flag ends: the library's own waits for a server as long as its time-out.
/// After the stop a call still has a second from its beginning, in which a healthy server confirms the last
/// batch. A name that is looked up for longer than a connection may take is given up.
/// Everything throws TThriftFault. Belongs to one thread.
class TStopSocket : public apache::thrift::transport::TVirtualTransport<TStopSocket> {
 public:
  /// The configuration bounds what is read.
  TStopSocket(TThriftOptions options, std::shared_ptr<apache::thrift::TConfiguration> configuration);
  TStopSocket(const TStopSocket&) = delete;
  TStopSocket& operator=(const TStopSocket&) = delete;
  ~TStopSocket() override;

  [[nodiscard]] bool isOpen() const override { return socket_ >= 0; }
  void open() override;
  void close() override;
  /// 0 at the end of the stream.
  std::uint32_t read(std::uint8_t* buffer, std::uint32_t length);
  void write(const std::uint8_t* buffer, std::uint32_t length);

  /// The time for an answer begins anew.
  void startAnswer();
  /// From the next answer on.
  void setAnswerTime(std::chrono::milliseconds time) { options_.answerTime = time; }

 private:
  using TClock = std::chrono::steady_clock;

  bool tryAddress(const addrinfo& address);
  void wait(short events, TClock::time_point until, const char* what);

  TThriftOptions options_;
  int socket_ = -1;
  int error_ = 0;  ///< of the last address that was tried
  TClock::time_point callBegan_;
  TClock::time_point answerUntil_;
};

}  // namespace hollowmere
