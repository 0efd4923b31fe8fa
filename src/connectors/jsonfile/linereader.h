#pragma once

#include <QFile>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hollowmere {

/// Gives the lines of a file one by one through a buffer of a fixed size, which grows only for a line that
/// is longer. A line ends in CR, LF, CR LF, or at the end of the file. A UTF-8 byte order mark at the
/// start of the file is passed over. One thread.
class TLineReader {
 public:
  /// A line longer than this ends the reading with an error.
  static constexpr std::size_t longestLine = std::size_t{1} << 30;

  /// Throws TStoreError (Connect) when the file cannot be read.
  TLineReader(const std::string& path, std::size_t bufferBytes);

  /// The next line without its end, valid until the next call; nothing at the end of the file. Throws
  /// TStoreError (DataSource).
  std::optional<std::string_view> next();
  /// Back to the first line.
  void rewind();
  /// Number of the line that next() gave last, from 1.
  [[nodiscard]] std::int64_t lineNumber() const { return lineNumber_; }
  /// Bytes of the file before the next line.
  [[nodiscard]] std::int64_t position() const { return filePosition_ + static_cast<std::int64_t>(start_); }

 private:
  struct TEnd {
    std::size_t at;
    bool found;
  };

  TEnd findEnd();
  bool fill();
  void passByteOrderMark();

  QFile file_;
  std::string buffer_;
  std::size_t start_ = 0;  ///< first byte of the next line
  std::size_t filled_ = 0;
  std::size_t scanned_ = 0;  ///< no line end between start_ and here
  std::size_t nextLf_ =
      0;  ///< first LF at or after scanned_; filled_: none; before scanned_ or npos: not known
  std::size_t nextCr_ = 0;
  bool ended_ = false;             ///< the file has no more bytes
  bool passLf_ = false;            ///< the line before ended in CR: an LF now belongs to it
  std::int64_t filePosition_ = 0;  ///< of the buffer's first byte
  std::int64_t lineNumber_ = 0;
};

}  // namespace hollowmere
