#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "connectors/storeregistry.h"
#include "settings/connectionrecord.h"

namespace hollowmere {

/// Tries a connection on a thread of its own, so that a window stays alive. Made, asked and ended on one
/// thread; the registry's connector outlives it.
class TConnectionCheck {
 public:
  /// How long a window waits for the store.
  static constexpr int seconds = 15;

  /// Begins at once. ended is called on the other thread, last thing there, whatever came of it.
  TConnectionCheck(const TStoreConnector& store, const ConnectionConfig& record, std::function<void()> ended);
  TConnectionCheck(const TConnectionCheck&) = delete;
  TConnectionCheck& operator=(const TConnectionCheck&) = delete;
  /// Asks the store to stop, and waits for it.
  ~TConnectionCheck();

  void stop() { stop_.set(); }
  [[nodiscard]] bool isOver() const { return over_.load(std::memory_order_acquire); }
  /// Once it is over: empty when the store was reached, else its message.
  [[nodiscard]] const std::string& fault() const { return fault_; }

 private:
  void run(const TStoreConnector& store, const ConnectionConfig& record);

  TStopFlag stop_;
  std::string fault_;
  std::atomic<bool> over_ = false;
  std::function<void()> ended_;
  std::thread thread_;
};

/// What a window says about a check.
namespace checktexts {
std::string missing(std::string_view dbType);  ///< no such store in this program
std::string running(std::string_view dbType);
std::string reached(std::string_view dbType);
std::string failed(std::string_view dbType, const std::string& fault);
std::string tooLong(std::string_view dbType);
inline constexpr const char* cancelled = "The test was cancelled.";
}  // namespace checktexts

}  // namespace hollowmere
