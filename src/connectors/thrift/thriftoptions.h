#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "connectors/storeapi.h"

namespace hollowmere {

/// Where a Thrift server is, and how long and how much of it to bear.
struct TThriftOptions {
  std::string host;
  std::uint16_t port = 0;
  std::chrono::milliseconds connectTime{10'000};
  /// For one answer. Longer than the longest time-out of a server's own, a minute.
  std::chrono::milliseconds answerTime{65'000};
  int frameBytes = 256 * 1024 * 1024;  ///< the longest answer
  const TStopFlag* stop = nullptr;     ///< waiting ends soon after it is set; outlives the connection

  /// "host:port"
  [[nodiscard]] std::string where() const { return host + ":" + std::to_string(port); }
};

/// From a connection record: members host ("localhost" when empty) and port (a number, or its text; the
/// store's usual port when there is none), and, for whom the times above do not suit, "timeout", seconds for
/// an answer. Throws TStoreError (Connect) for what is no port or no time.
TThriftOptions thriftOptions(const TStoreOptions& options, const char* store, std::uint16_t usualPort);

/// A text member of a record or of a query object, trimmed; empty when it is not there.
std::string trimmedMember(const TValue& record, std::string_view name);

}  // namespace hollowmere
