#pragma once

#include <QFile>
#include <string>
#include <vector>

#include "connectors/storeapi.h"

namespace hollowmere {

/// Writes one JSON object a line, in UTF-8, each followed by one carriage return. Documents are gathered
/// in a buffer and count as stored when the system has taken them.
class TJsonFileWriter : public TTargetWriter {
 public:
  /// Creates the file anew; one of that name is deleted first. Throws TStoreError (Connect).
  explicit TJsonFileWriter(const TStoreOptions& options);
  ~TJsonFileWriter() override;

  void openTarget(const TDataTarget& target) override;
  void write(TObject&& document, TOutcomeSink& sink) override;
  void flush(TOutcomeSink& sink) override;

 private:
  void refuseFrom(std::size_t written, TOutcomeSink& sink);

  QFile file_;
  qint64 length_ = 0;              ///< bytes of whole documents in the file
  std::string buffer_;             ///< documents not yet in the file
  std::vector<std::size_t> ends_;  ///< end of each document in the buffer
};

}  // namespace hollowmere
