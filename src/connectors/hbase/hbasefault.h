#pragma once

#include <stdexcept>
#include <string>

namespace hollowmere {

/// What kind of thing went wrong between us and a server.
enum class THBaseFaultKind {
  Unreachable,  ///< no connection can be made
  Lost,         ///< it ended before the answer; the next call connects anew
  Unframed,     ///< Lost, because the server's transport has no frames
  TimedOut,     ///< the answer did not come in time
  Stopped,      ///< the user stopped the work
  Oversized,    ///< the answer was longer than is taken
  NoTable,
  NoFamily,
  Disabled,   ///< the table is
  NoScanner,  ///< it expired
  Unnamed,    ///< the server failed without saying why
  Other,      ///< refused by the server, with its reason
};

/// A fault of a call, with a plain text that names what it is about.
class THBaseFault : public std::runtime_error {
 public:
  THBaseFault(THBaseFaultKind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}

  [[nodiscard]] THBaseFaultKind kind() const { return kind_; }
  /// Whether the server answered: the connection is as good as before.
  [[nodiscard]] bool answered() const { return kind_ > THBaseFaultKind::Oversized; }

 private:
  THBaseFaultKind kind_;
};

/// The fault that a server's error text means: a Java stack trace, of which the first line without its
/// classes is kept. table is what the call was about.
THBaseFault serverFault(const std::string& message, const std::string& table);

}  // namespace hollowmere
