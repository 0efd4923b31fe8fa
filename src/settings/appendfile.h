#pragma once

#include <QFile>
#include <string>

namespace hollowmere {

/// A file that only grows: a log. Held alone while it is open, so that two runs never mix their lines;
/// created readable by its owner only. One thread.
class TAppendFile {
 public:
  /// Empty when the file is open now, else the reason why not.
  [[nodiscard]] std::string open(const std::string& name);
  [[nodiscard]] bool isOpen() const { return file_.isOpen(); }
  [[nodiscard]] const std::string& name() const { return name_; }
  /// Appends the text and a line end. Empty when all of it is with the system, else the reason; what was
  /// written of it by then is taken back, so that no half line stays.
  [[nodiscard]] std::string append(const std::string& text);
  void close() { file_.close(); }

 private:
  QFile file_;
  std::string name_;
};

}  // namespace hollowmere
