#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "connectors/hbase/hbaseclient.h"
#include "connectors/hbase/hbasemarks.h"
#include "connectors/hbase/hbasequery.h"
#include "connectors/hbase/hbasescan.h"
#include "connectors/storeapi.h"

namespace hollowmere {

class THBaseReader : public TSourceReader {
 public:
  /// Throws TStoreError (Connect).
  explicit THBaseReader(const TStoreOptions& options);

  void openRoot(const TDataSource& source, const TShare& share) override;
  std::optional<TObject> next() override { return getHBaseJSON(); }
  std::string rowText() override;
  /// A share is a part of the keys, or else bounded here.
  [[nodiscard]] bool keepsItsShare() const override { return true; }
  void nested(const TDataSource& source, const TObject& parent, const TRowSink& row) override;

 private:
  std::optional<TObject> getHBaseJSON();
  void fetch();
  static bool hasEnd(const TShare& share);
  void limitTo(const TShare& share, const TDataSource& source, THBaseRange& range);
  std::string borderAt(THBaseMarks& marks, const THBaseRange& range, std::int64_t row);
  void passTo(const TShare& share);
  [[noreturn]] void fail(const THBaseFault& fault) const;

  std::unique_ptr<THBaseClient> client_;
  std::function<void(const std::string&)> remark_;
  std::int64_t fetchLimit_;
  std::optional<THBaseScan> scan_;
  std::string filter_;                ///< of the scan
  std::optional<std::int64_t> left_;  ///< rows of a share by numbers that were not asked for
  std::vector<THBaseRow> rows_;       ///< the batch
  std::size_t at_ = 0;                ///< the next in it; the one before was given out last
};

/// Rows to ask for at a time.
std::int64_t hbaseFetchLimit(const TStoreOptions& options);

/// What a fault of a scan with that filter says to the user.
std::string scanFaultText(const THBaseFault& fault, const std::string& filter);

}  // namespace hollowmere
