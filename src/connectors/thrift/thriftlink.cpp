#include "connectors/thrift/thriftlink.h"

#include <thrift/protocol/TBinaryProtocol.h>

#include <algorithm>

#include "connectors/thrift/frames.h"

namespace hollowmere {

namespace {

using apache::thrift::TConfiguration;
using apache::thrift::protocol::TBinaryProtocolT;
using apache::thrift::transport::TFramedTransport;

/// The least that an element of a list or map takes: the length of a text, or a field and the end of a
/// struct.
constexpr int elementBytes = 4;

std::shared_ptr<TConfiguration> configurationOf(const TThriftOptions& options) {
  return std::make_shared<TConfiguration>(options.frameBytes, options.frameBytes);
}

}  // namespace

TThriftLink::TThriftLink(const TThriftOptions& options) {
  const auto configuration = configurationOf(options);
  socket_ = std::make_shared<TStopSocket>(options, configuration);
  holding_ = std::make_shared<THolding>(socket_, configuration);
  frames_ = std::make_shared<TFrames>(holding_, socket_, options, configuration);
  // Known by its own type, the transport costs no virtual call per byte.
  auto protocol = std::make_shared<TBinaryProtocolT<TFramedTransport>>(frames_);
  protocol->setStrict(true, true);
  // The library makes room for what an answer announces before it looks for it. No answer holds more than
  // its bytes. A limit of 0 would be none.
  frames_->onAnswer([bounded = protocol.get()](std::uint32_t bytes) {
    bounded->setStringSizeLimit(static_cast<std::int32_t>(std::max(bytes, 1U)));
    bounded->setContainerSizeLimit(std::max(static_cast<std::int32_t>(bytes) / elementBytes, 1));
  });
  protocol_ = std::move(protocol);
  socket_->open();
}

TThriftLink::~TThriftLink() = default;

void TThriftLink::hold() { holding_->hold(); }

void TThriftLink::release() { holding_->release(); }

void TThriftLink::setAnswerTime(std::chrono::milliseconds time) { socket_->setAnswerTime(time); }

std::uint64_t TThriftLink::sentBytes() const { return frames_->sentBytes(); }

bool answersUnframed(const TThriftOptions& options, const std::string& method) {
  // A call without arguments: version and kind, name, sequence number, end of the arguments.
  std::string call("\x80\x01\x00\x01\x00\x00\x00", 7);
  call += static_cast<char>(method.size());
  call += method + std::string("\x00\x00\x00\x01\x00", 5);
  TThriftOptions quick = options;
  quick.answerTime = std::min(quick.answerTime, std::chrono::milliseconds(2000));
  try {
    TStopSocket socket(quick, configurationOf(quick));
    socket.open();
    socket.write(reinterpret_cast<const std::uint8_t*>(call.data()), static_cast<std::uint32_t>(call.size()));
    std::uint8_t reply[2] = {};
    return socket.read(reply, 1) == 1 && socket.read(reply + 1, 1) == 1 && reply[0] == 0x80 &&
           reply[1] == 0x01;
  } catch (const TThriftFault&) {
    return false;
  }
}

}  // namespace hollowmere
