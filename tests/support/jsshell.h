#pragma once

#include <memory>
#include <stdexcept>
#include <string>

namespace hollowmere {

/// Text that is no JavaScript, or that failed when it ran.
class TJsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A JavaScript engine with the words of a database shell. Commands are noted, not sent. One thread's own.
class TJsShell {
 public:
  TJsShell();
  ~TJsShell();
  TJsShell(TJsShell&&) noexcept;
  TJsShell& operator=(TJsShell&&) noexcept;

  /// Throws TJsError when the text is no JavaScript program.
  void parse(const std::string& text);
  /// Runs one command, such as db.t.find(...).limit(5), and gives its calls in extended JSON:
  /// {"collection":"t","calls":[{"name":"find","arguments":[...]},...]}. Throws TJsError.
  std::string run(const std::string& command);
  /// Runs a db.t.group(...) over rows, given as a JSON list, without looking at its condition; gives the list
  /// of its results as JSON. Throws TJsError.
  std::string group(const std::string& command, const std::string& rows);

 private:
  struct TEngine;
  std::string evaluate(const std::string& program);
  std::unique_ptr<TEngine> engine_;
};

}  // namespace hollowmere
