#pragma once

#include "settings/prompt.h"

namespace hollowmere {

/// Shows messages as dialogs above the active window. Their text can be selected, and a button copies it.
class TMessagePrompt : public TPrompt {
 public:
  TAnswer ask(TPromptKind kind, const std::string& text, TButtons buttons) override;
};

}  // namespace hollowmere
