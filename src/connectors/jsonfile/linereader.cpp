#include "connectors/jsonfile/linereader.h"

#include <algorithm>
#include <cstring>

#include "connectors/storeerror.h"

namespace hollowmere {

namespace {

constexpr std::size_t unknown = std::string::npos;

std::size_t findByte(const std::string& buffer, char byte, std::size_t from, std::size_t to) {
  const void* at = from < to ? std::memchr(buffer.data() + from, byte, to - from) : nullptr;
  return at ? static_cast<std::size_t>(static_cast<const char*>(at) - buffer.data()) : to;
}

}  // namespace

TLineReader::TLineReader(const std::string& path, std::size_t bufferBytes)
    : file_(QString::fromStdString(path)) {
  if (!file_.exists()) throw TStoreError(TStoreErrorKind::Connect, "Unable to find source JSON file " + path);
  if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
    throw TStoreError(TStoreErrorKind::Connect, "Unable to open source JSON file " + path + ":",
                      file_.errorString().toStdString());
  buffer_.resize(std::max<std::size_t>(bufferBytes, 512));
  rewind();
}

void TLineReader::rewind() {
  file_.seek(0);
  start_ = filled_ = scanned_ = 0;
  nextLf_ = nextCr_ = unknown;
  ended_ = passLf_ = false;
  lineNumber_ = filePosition_ = 0;
  passByteOrderMark();
}

void TLineReader::passByteOrderMark() {
  while (filled_ < 3 && fill()) continue;
  if (std::string_view(buffer_.data(), filled_).starts_with("\xEF\xBB\xBF")) start_ = scanned_ = 3;
}

std::optional<std::string_view> TLineReader::next() {
  if (passLf_) {
    if (start_ == filled_) fill();
    if (start_ < filled_ && buffer_[start_] == '\n') scanned_ = ++start_;
    passLf_ = false;
  }
  const TEnd end = findEnd();
  if (!end.found && end.at == start_) return std::nullopt;
  const std::string_view line(buffer_.data() + start_, end.at - start_);
  if (end.found) passLf_ = buffer_[end.at] == '\r';
  start_ = scanned_ = end.found ? end.at + 1 : end.at;
  ++lineNumber_;
  return line;
}

TLineReader::TEnd TLineReader::findEnd() {
  for (;;) {
    // Both places are remembered: a file with one kind of line end is not searched for the other again
    // for every line.
    if (nextLf_ < scanned_ || nextLf_ == unknown) nextLf_ = findByte(buffer_, '\n', scanned_, filled_);
    if (nextCr_ < scanned_ || nextCr_ == unknown) nextCr_ = findByte(buffer_, '\r', scanned_, filled_);
    const std::size_t at = std::min(nextLf_, nextCr_);
    if (at < filled_) return {at, true};
    scanned_ = filled_;
    if (!fill()) return {filled_, false};
  }
}

/// Reads more bytes behind those that are there; false at the end of the file.
bool TLineReader::fill() {
  if (ended_) return false;
  if (start_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + start_, filled_ - start_);
    filePosition_ += static_cast<std::int64_t>(start_);
    filled_ -= start_;
    scanned_ -= start_;
    start_ = 0;
  }
  if (filled_ == buffer_.size()) {
    if (filled_ >= longestLine)
      throw TStoreError(TStoreErrorKind::DataSource, "Line " + std::to_string(lineNumber_ + 1) +
                                                         " of the source JSON file is longer than " +
                                                         std::to_string(longestLine) + " bytes.");
    buffer_.resize(std::min(longestLine, buffer_.size() * 2));
  }
  const qint64 got = file_.read(buffer_.data() + filled_, static_cast<qint64>(buffer_.size() - filled_));
  if (got < 0)
    throw TStoreError(TStoreErrorKind::DataSource,
                      "Unable to read the source JSON file:", file_.errorString().toStdString());
  nextLf_ = nextCr_ = unknown;
  ended_ = got == 0;
  filled_ += static_cast<std::size_t>(got);
  return got > 0;
}

}  // namespace hollowmere
