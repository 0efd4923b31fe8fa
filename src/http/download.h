#pragma once

#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <string>

#include "connectors/loadtypes.h"

namespace hollowmere {

/// A resource that could not be had. what() names its address and the reason.
class THttpError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What bounds a download.
struct TDownloadLimits {
  std::chrono::milliseconds time{5000};  ///< for all of it
  std::size_t bytes = 1024 * 1024;
};

/// The body behind an http or https address; redirections are followed, within these two only. Waits for
/// the server: not for the window thread. Ends within a second after stop is set. Throws THttpError.
std::string download(const std::string& address, const TDownloadLimits& limits, const TStopFlag& stop);

/// Whether a text is an http or https address with a host.
bool isWebAddress(const std::string& text);

}  // namespace hollowmere
