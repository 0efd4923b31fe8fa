#include "connectors/hbase/hbasereader.h"

#include <algorithm>

#include "connectors/hbase/hbaserow.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::int64_t usualBatch = 100;

/// Keys alone are small.
constexpr std::int64_t keyBatch = THBaseMarks::stride;

}  // namespace

THBaseReader::THBaseReader(const TStoreOptions& options, std::shared_ptr<const THBaseMarks> marks)
    : client_(connectHBase(options, "Unable to connect to source HBase database.")),
      marks_(std::move(marks)),
      fetchLimit_(options.fetchLimit > 0 ? options.fetchLimit : usualBatch) {}

void THBaseReader::fail(const THBaseFault& fault) const {
  std::string text = scanFaultText(fault, filter_);
  if (scan_ && !scan_->lastKey().empty() && !fault.answered())
    text += " The last row that was read has the key " + toJson(TValue(scan_->lastKey())) + ".";
  throw TStoreError(TStoreErrorKind::DataSource, text);
}

void THBaseReader::openRoot(const TDataSource& source, const TShare& share) {
  const THBaseQuery query(source);
  rows_.clear();
  at_ = 0;
  scan_.reset();
  filter_ = query.filter;
  THBaseRange range = hbaseRange(query.table, query.filter, TStoreErrorKind::DataSource);
  const std::int64_t start = share.degree > 1 ? share.start : 0;
  left_ = share.degree > 1 ? share.rows : std::nullopt;
  try {
    const bool there = start > 0 && canBeginAnywhere(range) && beginAt(range, start, source.count);
    scan_.emplace(*client_, std::move(range));
    if (start > 0 && !there) passOver(start);
    fetch();
  } catch (const THBaseFault& fault) {
    fail(fault);
  }
  if (rows_.empty())
    throw TStoreError(TStoreErrorKind::DataSource, "Unable to retrieve rows from HBase table " + query.table);
}

/// Makes the range begin at a row by looking through the keys before it; only what stands before the
/// nearest mark is not even looked at.
bool THBaseReader::beginAt(THBaseRange& range, std::int64_t start, std::int64_t count) {
  THBaseRange keys = keysOnly(range);
  const std::string name = marksName(*client_, range.table, range.filter);
  std::int64_t at = 0;
  if (const auto mark = marks_->before(name, count, start)) {
    at = mark->row;
    keys.from = mark->key;
  }
  THBaseScan scan(*client_, std::move(keys));
  std::vector<THBaseRow> rows;
  while (at <= start) {
    scan.next(std::min(keyBatch, start + 1 - at), rows);
    // The end comes before the row: the scan itself will find nothing.
    if (rows.empty()) return false;
    at += static_cast<std::int64_t>(rows.size());
  }
  range.from = scan.lastKey();
  return true;
}

/// For a filter that counts rows there is no other way than to read them and throw them away.
void THBaseReader::passOver(std::int64_t rows) {
  while (rows > 0) {
    scan_->next(std::min(rows, fetchLimit_), rows_);
    if (rows_.empty()) return;
    rows -= static_cast<std::int64_t>(rows_.size());
  }
}

void THBaseReader::fetch() {
  at_ = 0;
  rows_.clear();
  if (!scan_) return;
  const std::int64_t most = std::min(fetchLimit_, left_.value_or(fetchLimit_));
  if (most > 0) scan_->next(most, rows_);
  if (left_) *left_ -= static_cast<std::int64_t>(rows_.size());
  if (rows_.empty()) scan_.reset();
}

std::optional<TObject> THBaseReader::getHBaseJSON() {
  if (at_ == rows_.size()) {
    try {
      fetch();
    } catch (const THBaseFault& fault) {
      fail(fault);
    }
  }
  if (at_ == rows_.size()) return std::nullopt;
  return rowDocument(rows_[at_++]);
}

std::string THBaseReader::rowText() {
  return at_ > 0 ? toJson(rowDocument(rows_[at_ - 1]), TTextForm::Markers) : std::string();
}

void THBaseReader::nested(const TDataSource& source, const TObject& parent, const TRowSink& row) {
  const THBaseQuery query(source, TStoreErrorKind::Read);
  const std::string filter = bindHBaseFilter(query.filter, parent);
  THBaseScan scan(*client_, hbaseRange(query.table, filter, TStoreErrorKind::Read));
  std::vector<THBaseRow> rows;
  try {
    for (;;) {
      scan.next(fetchLimit_, rows);
      if (rows.empty()) return;
      for (const THBaseRow& found : rows)
        if (!row(rowDocument(found))) return;
    }
  } catch (const THBaseFault& fault) {
    throw TStoreError(TStoreErrorKind::Read, scanFaultText(fault, filter));
  }
}

std::string marksName(const THBaseClient& client, const std::string& table, const std::string& filter) {
  return client.where() + '\n' + table + '\n' + filter;
}

std::string scanFaultText(const THBaseFault& fault, const std::string& filter) {
  return fault.kind() == THBaseFaultKind::Unnamed && !filter.empty() ? refusedFilterText(filter)
                                                                     : fault.what();
}

}  // namespace hollowmere
