#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include "settings/prompt.h"

namespace hollowmere {

/// An action that came too late: what it was for is gone or busy. Nobody needs to hear of it.
class TInvalidOperation : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

/// Tells the user of an exception that nobody has caught. A TInvalidOperation is passed over; a fault of the
/// program itself (a logic error and its like) is shown with the question whether to inform the maker, and
/// on Yes openSupport is called; every other one shows its message.
void reportFault(const std::exception_ptr& fault, TPrompt& prompt, const std::function<void()>& openSupport);

/// The question about a fault of the program itself; the same two for one that ended it.
void reportProgramFault(const std::string& message, TPrompt& prompt,
                        const std::function<void()>& openSupport);

/// From now on an access violation leaves a note in that file before it ends the process: nothing can be
/// shown safely at that moment.
void noteAccessViolations(const std::string& file);
/// The note of the last run, and its end; nothing when there is none.
std::optional<std::string> takeAccessViolation(const std::string& file);

namespace faulttexts {
inline constexpr char encountered[] = "The following application exception encountered: ";
inline constexpr char inform[] =
    " Would you like to inform Tamsbury Software technical support about this issue? ";
}  // namespace faulttexts

}  // namespace hollowmere
