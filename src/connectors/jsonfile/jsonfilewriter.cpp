#include "connectors/jsonfile/jsonfilewriter.h"

#include <QFileInfo>
#include <algorithm>

#include "connectors/jsonfile/jsonfileconnector.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::size_t bufferSize = 256 * 1024;

}  // namespace

TJsonFileWriter::TJsonFileWriter(const TStoreOptions& options)
    : file_(QString::fromStdString(jsonFileName(options.connection))) {
  // A device is written to, but never deleted.
  if (QFileInfo(file_).isFile()) file_.remove();
  if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
    throw TStoreError(TStoreErrorKind::Connect,
                      "Unable to create target JSON file " + file_.fileName().toStdString() + ":",
                      file_.errorString().toStdString());
  buffer_.reserve(bufferSize * 2);
}

TJsonFileWriter::~TJsonFileWriter() = default;

void TJsonFileWriter::openTarget(const TDataTarget& /*target*/) {}

void TJsonFileWriter::write(TObject&& document, TOutcomeSink& sink) {
  appendJson(buffer_, document, TTextForm::Markers);
  buffer_ += '\r';
  ends_.push_back(buffer_.size());
  if (buffer_.size() >= bufferSize) flush(sink);
}

void TJsonFileWriter::flush(TOutcomeSink& sink) {
  std::size_t written = 0;
  while (written < buffer_.size()) {
    const qint64 put = file_.write(buffer_.data() + written, static_cast<qint64>(buffer_.size() - written));
    if (put <= 0) break;
    written += static_cast<std::size_t>(put);
  }
  if (written < buffer_.size()) {
    refuseFrom(written, sink);
  } else {
    length_ += static_cast<qint64>(written);
    sink.stored(static_cast<std::int64_t>(ends_.size()));
  }
  buffer_.clear();
  ends_.clear();
}

/// Keeps the documents that are in the file whole, cuts off the one that is half there, and gives the rest
/// back.
void TJsonFileWriter::refuseFrom(std::size_t written, TOutcomeSink& sink) {
  const std::string reason = "Unable to write the target JSON file " + file_.fileName().toStdString() + ": " +
                             file_.errorString().toStdString();
  const auto firstLost = std::upper_bound(ends_.begin(), ends_.end(), written);
  std::size_t begin = firstLost == ends_.begin() ? 0 : *(firstLost - 1);
  length_ += static_cast<qint64>(begin);
  if (!file_.isSequential()) {
    file_.resize(length_);
    file_.seek(length_);
  }
  sink.stored(firstLost - ends_.begin());
  for (auto end = firstLost; end != ends_.end(); begin = *end++)
    sink.refused(buffer_.substr(begin, *end - begin - 1), reason);
}

}  // namespace hollowmere
