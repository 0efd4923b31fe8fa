#pragma once

#include <string>

namespace hollowmere {

enum class TPromptKind { Information, Warning, Error, Confirmation };

/// Which buttons a message offers.
enum class TButtons { Ok, YesNo, YesNoCancel };

enum class TAnswer { Ok, Yes, No, Cancel };

/// The only way in which window-free code speaks to a person: a message box in the windows, log lines and
/// an exit code in batch mode, a script in tests. Called on the main thread.
class TPrompt {
 public:
  virtual ~TPrompt() = default;
  virtual TAnswer ask(TPromptKind kind, const std::string& text, TButtons buttons) = 0;

  void error(const std::string& text) { ask(TPromptKind::Error, text, TButtons::Ok); }
  void warning(const std::string& text) { ask(TPromptKind::Warning, text, TButtons::Ok); }
  bool confirm(const std::string& text) {
    return ask(TPromptKind::Confirmation, text, TButtons::YesNo) == TAnswer::Yes;
  }
};

}  // namespace hollowmere
