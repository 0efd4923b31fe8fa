#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "connectors/jsonfile/linereader.h"
#include "connectors/storeapi.h"
#include "json/json.h"

namespace hollowmere {

/// Reads a file of one JSON object a line, in UTF-8.
class TJsonFileReader : public TSourceReader {
 public:
  /// Throws TStoreError (Connect).
  explicit TJsonFileReader(const TStoreOptions& options);

  /// Back to the start of the file; the share is always the whole of it.
  void openRoot(const TDataSource& source, const TShare& share) override;
  std::optional<TObject> next() override { return getJSONFromFile(); }
  std::string rowText() override { return std::string(line_); }
  [[nodiscard]] std::optional<std::int64_t> position() const override { return lines_.position(); }
  void nested(const TDataSource& source, const TObject& parent, const TRowSink& row) override;

 private:
  std::optional<TObject> getJSONFromFile();

  TLineReader lines_;
  TJsonReader json_;
  std::string_view line_;
  bool opened_ = false;
};

}  // namespace hollowmere
