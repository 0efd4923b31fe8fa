#include "connectors/thrift/frames.h"

#include <arpa/inet.h>

namespace hollowmere {

namespace {

constexpr std::uint32_t bufferBytes = 64 * 1024;

/// Larger buffers are given back after each answer.
constexpr std::uint32_t keptBytes = 1024 * 1024;

}  // namespace

THolding::THolding(std::shared_ptr<TStopSocket> socket,
                   std::shared_ptr<apache::thrift::TConfiguration> configuration)
    : TBufferedTransport(std::move(socket), bufferBytes, std::move(configuration)) {}

void THolding::flush() {
  if (!held_) TBufferedTransport::flush();
}

void THolding::release() {
  held_ = false;
  TBufferedTransport::flush();
}

TFrames::TFrames(std::shared_ptr<THolding> below, std::shared_ptr<TStopSocket> socket,
                 const TThriftOptions& options, std::shared_ptr<apache::thrift::TConfiguration> configuration)
    : TFramedTransport(std::move(below), DEFAULT_BUFFER_SIZE, keptBytes, std::move(configuration)),
      socket_(std::move(socket)),
      where_(options.where()) {}

void TFrames::fail(TThriftFaultKind kind, const std::string& text) {
  socket_->close();
  throw TThriftFault(kind, where_ + text);
}

void TFrames::flush() {
  sentBytes_ += static_cast<std::uint64_t>(wBase_ - wBuf_.get());
  TFramedTransport::flush();
}

std::uint32_t TFrames::readEnd() {
  inAnswer_ = false;
  return TFramedTransport::readEnd();
}

std::uint32_t TFrames::readLength() {
  std::uint8_t bytes[4];
  std::uint32_t got = 0;
  while (got < sizeof bytes) {
    const std::uint32_t more = transport_->read(bytes + got, static_cast<std::uint32_t>(sizeof bytes) - got);
    if (more == 0 && got == 0) fail(TThriftFaultKind::Closed, " closed the connection without an answer.");
    if (more == 0) fail(TThriftFaultKind::Torn, " ended the connection within an answer.");
    got += more;
  }
  return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
         static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
}

bool TFrames::readFrame() {
  if (inAnswer_) fail(TThriftFaultKind::Torn, " sent an answer that is cut short.");
  const std::uint32_t size = readLength();
  // A message that stands without a frame begins with its version.
  if (size >> 16 == 0x8001)
    fail(TThriftFaultKind::NotFramed, " answers without frames; it must use the framed transport.");
  if (size == 0x48545450)  // "HTTP"
    fail(TThriftFaultKind::NotFramed, " is a web server, not a Thrift server with framed transport.");
  // The head of that protocol's answers: their version with the top bit set.
  if (size >> 24 >= 0x81 && size >> 24 <= 0x86)
    fail(TThriftFaultKind::NotFramed,
         " answers in Cassandra's native protocol; the Thrift interface is on another port (9160).");
  if (size > maxFrameSize_)
    fail(TThriftFaultKind::Oversized, " announced an answer of " + std::to_string(size) + " bytes; at most " +
                                          std::to_string(maxFrameSize_) + " are taken.");
  if (size > rBufSize_) {
    rBuf_.reset(new std::uint8_t[size]);
    rBufSize_ = size;
  }
  for (std::uint32_t got = 0; got < size;) {
    const std::uint32_t more = transport_->read(rBuf_.get() + got, size - got);
    if (more == 0) fail(TThriftFaultKind::Torn, " ended the connection within an answer.");
    // Bytes that keep coming are no silence, however long a large answer takes.
    socket_->startAnswer();
    got += more;
  }
  setReadBuffer(rBuf_.get(), size);
  inAnswer_ = true;
  if (onAnswer_) onAnswer_(size);
  return true;
}

}  // namespace hollowmere
