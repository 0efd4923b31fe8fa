#pragma once

#include <thrift/transport/TBufferTransports.h>

#include <functional>

#include "connectors/thrift/stopsocket.h"

namespace hollowmere {

/// Gathers what is written while it holds. Reads ahead, so that small answers share one system call.
class THolding : public apache::thrift::transport::TBufferedTransport {
 public:
  explicit THolding(std::shared_ptr<TStopSocket> socket,
                    std::shared_ptr<apache::thrift::TConfiguration> configuration);

  void flush() override;
  void hold() { held_ = true; }
  void release();

 private:
  bool held_ = false;
};

/// The library's frames, with texts that say what a server did wrong, and an end to an answer that stops
/// short: the library would wait for the rest in the next frame.
class TFrames : public apache::thrift::transport::TFramedTransport {
 public:
  TFrames(std::shared_ptr<THolding> below, std::shared_ptr<TStopSocket> socket, const TThriftOptions& options,
          std::shared_ptr<apache::thrift::TConfiguration> configuration);

  /// Is told the bytes of each answer before it is taken apart.
  void onAnswer(std::function<void(std::uint32_t)> listener) { onAnswer_ = std::move(listener); }

  void flush() override;
  std::uint32_t readEnd() override;
  [[nodiscard]] std::uint64_t sentBytes() const { return sentBytes_; }

 protected:
  bool readFrame() override;

 private:
  std::uint32_t readLength();
  [[noreturn]] void fail(TThriftFaultKind kind, const std::string& text);

  std::shared_ptr<TStopSocket> socket_;
  std::string where_;
  std::function<void(std::uint32_t)> onAnswer_;
  bool inAnswer_ = false;
  std::uint64_t sentBytes_ = 0;
};

}  // namespace hollowmere
