#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <utility>

#include "settings/prompt.h"

namespace hollowmere {

/// Expects each message in order and gives the answer set for it. An unexpected message fails the test, and
/// so does one that did not come until the end.
class TScriptedPrompt : public TPrompt {
 public:
  TScriptedPrompt() = default;
  TScriptedPrompt(const TScriptedPrompt&) = delete;
  TScriptedPrompt& operator=(const TScriptedPrompt&) = delete;
  ~TScriptedPrompt() override {
    for (const TLine& line : lines_) ADD_FAILURE() << "message did not come: " << line.text;
  }

  void expect(TPromptKind kind, std::string text, TAnswer answer = TAnswer::Ok) {
    lines_.push_back({kind, std::move(text), answer});
  }
  [[nodiscard]] bool done() const { return lines_.empty(); }

  TAnswer ask(TPromptKind kind, const std::string& text, TButtons buttons) override {
    if (lines_.empty()) {
      ADD_FAILURE() << "unexpected message: " << text;
      return buttons == TButtons::Ok ? TAnswer::Ok : TAnswer::No;
    }
    const TLine line = lines_.front();
    lines_.pop_front();
    EXPECT_EQ(line.text, text);
    EXPECT_EQ(static_cast<int>(line.kind), static_cast<int>(kind)) << "kind of: " << text;
    EXPECT_EQ(line.answer == TAnswer::Ok, buttons == TButtons::Ok) << "buttons of: " << text;
    return line.answer;
  }

 private:
  struct TLine {
    TPromptKind kind;
    std::string text;
    TAnswer answer;
  };
  std::deque<TLine> lines_;
};

}  // namespace hollowmere
