#include "connectors/hbase/hbasescan.h"

#include <algorithm>
#include <limits>

#include "connectors/hbase/hbasefiltertext.h"

namespace hollowmere {

namespace {

/// A batch is kept in memory at once; large rows are asked for in smaller ones.
constexpr std::size_t batchBytes = 16 * 1024 * 1024;

std::size_t bytesOf(const std::vector<THBaseRow>& rows) {
  std::size_t bytes = 0;
  for (const THBaseRow& row : rows)
    for (const THBaseCell& cell : row.cells) bytes += cell.column.size() + cell.value.size();
  return bytes;
}

}  // namespace

THBaseScan::THBaseScan(THBaseClient& client, THBaseRange range)
    : client_(client),
      range_(std::move(range)),
      resumable_(canBeginAnywhere(range_)),
      atMost_(std::numeric_limits<std::int32_t>::max()) {}

void THBaseScan::close() noexcept {
  if (scanner_) client_.closeScanner(*scanner_);
  scanner_.reset();
}

void THBaseScan::next(std::int64_t most, std::vector<THBaseRow>& rows) {
  rows.clear();
  if (ended_) return;
  auto wanted = static_cast<std::int32_t>(std::clamp<std::int64_t>(most, 1, atMost_));
  for (;;) {
    try {
      fetch(wanted, rows);
      break;
    } catch (const THBaseFault& fault) {
      if (!recover(fault, wanted)) {
        close();
        throw;
      }
    }
  }
  recoveries_ = 0;
  if (rows.empty()) {
    ended_ = true;
    close();
    return;
  }
  lastKey_ = rows.back().key;
  limit(rows);
}

void THBaseScan::fetch(std::int32_t most, std::vector<THBaseRow>& rows) {
  if (!scanner_) scanner_ = client_.openScanner(range_, most);
  client_.nextRows(*scanner_, most, range_.table, rows);
}

/// Prepares another try; false when there is none. What was asked for and did not arrive is asked for again.
bool THBaseScan::recover(const THBaseFault& fault, std::int32_t& most) {
  const bool began = scanner_.has_value();
  const bool smaller = fault.kind() == THBaseFaultKind::Oversized && most > 1;
  const bool again = fault.kind() == THBaseFaultKind::NoScanner || fault.kind() == THBaseFaultKind::Lost;
  if (client_.stopped() || !began || (!resumable_ && !lastKey_.empty())) return false;
  if (!smaller && (!again || recoveries_ > 0)) return false;
  if (smaller) most = atMost_ = std::max(1, most / 8);
  if (!smaller) ++recoveries_;
  if (fault.kind() == THBaseFaultKind::NoScanner)
    scanner_.reset();
  else
    close();
  if (!lastKey_.empty()) range_.from = lastKey_ + '\0';
  return true;
}

void THBaseScan::limit(const std::vector<THBaseRow>& rows) {
  const std::size_t bytes = bytesOf(rows);
  if (bytes > batchBytes)
    atMost_ = static_cast<std::int32_t>(std::max<std::size_t>(1, rows.size() * batchBytes / bytes));
}

THBaseRange keysOnly(THBaseRange range) {
  range.filter = range.filter.empty() ? "FirstKeyOnlyFilter() AND KeyOnlyFilter()"
                                      : "(" + range.filter + ") AND KeyOnlyFilter()";
  return range;
}

bool canBeginAnywhere(const THBaseRange& range) {
  return range.filter.empty() || !holdsFilter(parseHBaseFilter(range.filter), "PageFilter");
}

}  // namespace hollowmere
