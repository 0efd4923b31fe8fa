#include "connectors/hbase/hbaseconnector.h"

#include "connectors/hbase/hbasereader.h"
#include "connectors/hbase/hbaserow.h"
#include "connectors/hbase/hbasewriter.h"

namespace hollowmere {

namespace {

constexpr char sourceText[] = "Unable to connect to source HBase database.";

class THBaseConnector : public TStoreConnector {
 public:
  THBaseConnector() { traits_.requiredField = {rowKeyName, "Row key field is not mapped: "}; }

  [[nodiscard]] const std::string& dbType() const override { return dbType_; }
  [[nodiscard]] const TStoreTraits& traits() const override { return traits_; }

  std::unique_ptr<TSourceReader> connectSource(const TStoreOptions& options) const override {
    return std::make_unique<THBaseReader>(options);
  }

  std::unique_ptr<TTargetWriter> connectTarget(const TStoreOptions& options) const override {
    return std::make_unique<THBaseWriter>(options);
  }

  void checkSource(const TStoreOptions& options) const override { connectHBase(options, sourceText); }
  void checkTarget(const TStoreOptions& options) const override {
    connectHBase(options, "Unable to connect to target HBase database.");
  }

  std::shared_ptr<TSourceNotes> makeNotes() const override { return std::make_shared<THBaseMarks>(); }
  std::int64_t count(const TStoreOptions& options, const TDataSource& source) const override;
  std::string checkQuery(const TValue& definition) const override { return hbaseFilterFault(definition); }

 private:
  std::string dbType_ = "HBase";
  TStoreTraits traits_;
};

/// Row by row, by their keys; some of these are kept for the threads that will read from the middle.
std::int64_t THBaseConnector::count(const TStoreOptions& options, const TDataSource& source) const {
  const THBaseQuery query(source);
  THBaseRange range = hbaseRange(query.table, query.filter, TStoreErrorKind::DataSource);
  const auto client = connectHBase(options, sourceText);
  std::int64_t count = 0;
  std::vector<std::string> keys;
  try {
    THBaseScan scan(*client, keysOnly(std::move(range)), hbaseFetchLimit(options));
    std::vector<THBaseRow> rows;
    for (;;) {
      // Up to the next mark, so that it begins a batch.
      scan.next(THBaseMarks::stride - count % THBaseMarks::stride, rows);
      if (rows.empty()) break;
      if (count % THBaseMarks::stride == 0) keys.push_back(rows.front().key);
      count += static_cast<std::int64_t>(rows.size());
    }
  } catch (const THBaseFault& fault) {
    throw TStoreError(TStoreErrorKind::DataSource, scanFaultText(fault, query.filter));
  }
  if (const auto marks = std::dynamic_pointer_cast<THBaseMarks>(source.notes)) marks->keep(std::move(keys));
  return count;
}

}  // namespace

std::unique_ptr<TStoreConnector> makeHBaseConnector() { return std::make_unique<THBaseConnector>(); }

}  // namespace hollowmere
