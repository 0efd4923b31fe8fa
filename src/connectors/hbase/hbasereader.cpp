#include "connectors/hbase/hbasereader.h"

#include <algorithm>

#include "connectors/hbase/hbasekeys.h"
#include "connectors/hbase/hbasemarks.h"
#include "connectors/hbase/hbaserow.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::int64_t usualBatch = 100;

/// As it stands in documents.
std::string keyText(const std::string& key) {
  return toJson(*rowDocument({key, {}}).find(rowKeyName), TTextForm::Markers);
}

}  // namespace

THBaseReader::THBaseReader(const TStoreOptions& options)
    : client_(connectHBase(options, "Unable to connect to source HBase database.")),
      remark_(options.remark),
      fetchLimit_(hbaseFetchLimit(options)) {}

void THBaseReader::fail(const THBaseFault& fault) const {
  std::string text = scanFaultText(fault, filter_);
  if (scan_ && !scan_->lastKey().empty() && !fault.answered())
    text += " The last row that was read has the key " + keyText(scan_->lastKey()) + ".";
  throw TStoreError(TStoreErrorKind::DataSource, text);
}

void THBaseReader::openRoot(const TDataSource& source, const TShare& share) {
  const THBaseQuery query(source);
  rows_.clear();
  at_ = 0;
  scan_.reset();
  left_.reset();
  filter_ = query.filter;
  THBaseRange range = hbaseRange(query.table, query.filter, TStoreErrorKind::DataSource);
  const bool parted = share.degree > 1 && range.resumable;
  try {
    if (parted) limitTo(share, source, range);
    scan_.emplace(*client_, std::move(range), fetchLimit_);
    if (share.degree > 1 && !parted) passTo(share);
    fetch();
  } catch (const THBaseFault& fault) {
    fail(fault);
  }
  if (!rows_.empty()) return;
  const std::string none = "Unable to retrieve rows from HBase table " + query.table;
  // The rows of one part may be gone while the others' are there.
  if (!parted) throw TStoreError(TStoreErrorKind::DataSource, none);
  if (remark_) remark_(none);
}

/// The last share has no end, so that rows that are added there meanwhile belong to it.
bool THBaseReader::hasEnd(const TShare& share) { return share.number < share.degree && share.rows; }

/// Limits a range to the share's part of it.
void THBaseReader::limitTo(const TShare& share, const TDataSource& source, THBaseRange& range) {
  const auto counted = std::dynamic_pointer_cast<THBaseMarks>(source.notes);
  const auto marks = counted ? counted : std::make_shared<THBaseMarks>();
  const THBaseRange whole = range;
  if (share.start > 0) range.from = borderAt(*marks, whole, share.start);
  if (hasEnd(share)) range.before = borderAt(*marks, whole, share.start + *share.rows);
}

/// The key of the row with that number. It is looked for among the keys from the nearest mark on; what
/// stands before is not looked at.
std::string THBaseReader::borderAt(THBaseMarks& marks, const THBaseRange& range, std::int64_t row) {
  if (const auto known = marks.border(row)) return *known;
  THBaseRange keys = keysOnly(range);
  std::int64_t at = 0;
  if (auto mark = marks.before(row)) {
    at = mark->row;
    keys.from = std::move(mark->key);
  }
  std::string found = keys.from;
  THBaseScan scan(*client_, std::move(keys), fetchLimit_);
  std::vector<THBaseRow> rows;
  while (at <= row) {
    scan.next(std::min(THBaseMarks::stride, row + 1 - at), rows);
    // There are no longer so many: the border stands behind them all.
    if (rows.empty()) return marks.settle(row, scan.lastKey().empty() ? found : keyBehind(scan.lastKey()));
    at += static_cast<std::int64_t>(rows.size());
  }
  return marks.settle(row, scan.lastKey());
}

/// For a filter that counts rows there is no other way than to read them and throw them away.
void THBaseReader::passTo(const TShare& share) {
  if (hasEnd(share)) left_ = share.rows;
  for (std::int64_t rows = share.start; rows > 0; rows -= static_cast<std::int64_t>(rows_.size())) {
    scan_->next(std::min(rows, fetchLimit_), rows_);
    if (rows_.empty()) return;
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
  THBaseScan scan(*client_, hbaseRange(query.table, filter, TStoreErrorKind::Read), fetchLimit_);
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

std::int64_t hbaseFetchLimit(const TStoreOptions& options) {
  return options.fetchLimit > 0 ? options.fetchLimit : usualBatch;
}

std::string scanFaultText(const THBaseFault& fault, const std::string& filter) {
  if (fault.kind() == THBaseFaultKind::Unnamed && !filter.empty()) return refusedFilterText(filter);
  if (fault.kind() != THBaseFaultKind::TimedOut) return fault.what();
  return std::string(fault.what()) + " The connection can have another answer time-out.";
}

}  // namespace hollowmere
