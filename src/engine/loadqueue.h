#pragma once

#include <cstddef>
#include <string>

namespace hollowmere {

/// The log and discard lines of one thread that wait to be handed over.
class TLoadQueue {
 public:
  /// A queue that holds more lines than this is due.
  static constexpr std::size_t threshold = 1000;
  /// So is one that holds more bytes: a few large documents must not fill the memory.
  static constexpr std::size_t thresholdBytes = 16 * 1024 * 1024;

  void addLog(const std::string& line) { logs_.add(line); }
  void addDisc(const std::string& text) { discs_.add(text); }
  void force() { forced_ = true; }

  /// Whether writing now would hand anything over. A stopped thread hands over only what is forced.
  [[nodiscard]] bool due(bool stopped) const {
    if (forced_) return logs_.count > 0 || discs_.count > 0;
    return !stopped && (logs_.full() || discs_.full());
  }

  /// Hands both queues over, each when it holds something, and empties them.
  template <typename Log, typename Disc>
  void drain(Log&& log, Disc&& disc) {
    forced_ = false;
    if (logs_.count > 0) log(logs_.lines);
    if (discs_.count > 0) disc(discs_.lines);
    logs_ = {};
    discs_ = {};
  }

 private:
  struct TLines {
    void add(const std::string& line) {
      if (count++ > 0) lines += '\n';
      lines += line;
    }

    [[nodiscard]] bool full() const { return count > threshold || lines.size() > thresholdBytes; }

    std::string lines;
    std::size_t count = 0;
  };

  TLines logs_;
  TLines discs_;
  bool forced_ = false;
};

}  // namespace hollowmere
