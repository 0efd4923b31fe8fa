#pragma once

#include <cstdint>

#include "connectors/storeerror.h"

namespace hollowmere {

/// What a server or the driver said against an operation. what() is "Error Code: " ..., and where a server of
/// the day no longer has a command, what replaces it.
class TMongoError : public TStoreError {
 public:
  TMongoError(std::uint32_t code, const std::string& message, const std::string& advice = {});

  /// The server's number; 0 when it gave none.
  [[nodiscard]] std::uint32_t code() const { return code_; }
  [[nodiscard]] const std::string& message() const { return message_; }
  /// Refused for want of a login or of privileges.
  [[nodiscard]] bool accessRefused() const;

 private:
  std::uint32_t code_;
  std::string message_;
};

/// What to use in place of a command that servers have given up; empty for others.
std::string removedCommandAdvice(const std::string& command);

}  // namespace hollowmere
