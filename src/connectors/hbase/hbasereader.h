#pragma once

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
  THBaseReader(const TStoreOptions& options, std::shared_ptr<const THBaseMarks> marks);

  void openRoot(const TDataSource& source, const TShare& share) override;
  std::optional<TObject> next() override { return getHBaseJSON(); }
  std::string rowText() override;
  void nested(const TDataSource& source, const TObject& parent, const TRowSink& row) override;

 private:
  std::optional<TObject> getHBaseJSON();
  void fetch();
  bool beginAt(THBaseRange& range, std::int64_t start, std::int64_t count);
  void passOver(std::int64_t rows);
  [[noreturn]] void fail(const THBaseFault& fault) const;

  std::unique_ptr<THBaseClient> client_;
  std::shared_ptr<const THBaseMarks> marks_;
  std::int64_t fetchLimit_;
  std::optional<THBaseScan> scan_;
  std::string filter_;                ///< of the scan
  std::optional<std::int64_t> left_;  ///< rows of the share that were not yet asked for
  std::vector<THBaseRow> rows_;       ///< the batch
  std::size_t at_ = 0;                ///< the next in it; the one before was given out last
};

/// The name under which the marks of a source are kept.
std::string marksName(const THBaseClient& client, const std::string& table, const std::string& filter);

/// What a fault of a scan with that filter says to the user.
std::string scanFaultText(const THBaseFault& fault, const std::string& filter);

}  // namespace hollowmere
