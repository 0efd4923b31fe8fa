#include "connectors/hbase/hbasescan.h"

#include <algorithm>
#include <limits>

#include "connectors/hbase/hbasekeys.h"

namespace hollowmere {

namespace {

using TClock = std::chrono::steady_clock;

/// A batch is kept in memory at once; large rows are asked for in smaller ones.
constexpr std::size_t batchBytes = 16 * 1024 * 1024;

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

std::size_t bytesOf(const std::vector<THBaseRow>& rows) {
  std::size_t bytes = 0;
  for (const THBaseRow& row : rows)
    for (const THBaseCell& cell : row.cells) bytes += cell.column.size() + cell.value.size();
  return bytes;
}

/// So many of the rows as fit when they are together `much` times too much; one at least.
std::int32_t fitting(std::size_t rows, double much) {
  return static_cast<std::int32_t>(std::max(1.0, static_cast<double>(rows) / much));
}

}  // namespace

THBaseScan::THBaseScan(THBaseClient& client, THBaseRange range, std::int64_t first)
    : client_(client),
      range_(std::move(range)),
      atMost_(static_cast<std::int32_t>(std::clamp<std::int64_t>(first, 1, largest))) {}

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
  pace(wanted, rows);
}

void THBaseScan::fetch(std::int32_t most, std::vector<THBaseRow>& rows) {
  rows.clear();
  // What was opened for small batches fetches them one by one within the store, too.
  if (scanner_ && range_.resumable && most / 8 > batch_) close();
  if (!scanner_ && !open(most)) return;
  const auto start = TClock::now();
  client_.nextRows(*scanner_, most, range_.table, rows);
  took_ = TClock::now() - start;
}

/// Opens a scanner behind the last row; false when no row can stand there.
bool THBaseScan::open(std::int32_t batch) {
  if (!lastKey_.empty()) {
    range_.from = keyBehind(lastKey_);
    if (range_.from.empty()) return false;
  }
  if (!range_.before.empty() && range_.from >= range_.before) return false;
  scanner_ = client_.openScanner(range_, batch);
  batch_ = batch;
  return true;
}

/// Prepares another try; false when there is none. What was asked for and did not arrive is asked for again.
bool THBaseScan::recover(const THBaseFault& fault, std::int32_t& most) {
  const bool tooMuch =
      fault.kind() == THBaseFaultKind::Oversized || fault.kind() == THBaseFaultKind::TimedOut;
  const bool again = fault.kind() == THBaseFaultKind::NoScanner || fault.kind() == THBaseFaultKind::Lost;
  if (client_.stopped() || (!range_.resumable && !lastKey_.empty())) return false;
  if (tooMuch ? !scanner_ || most <= 1 : !again || recoveries_ > 0) return false;
  // One that takes too long shall not do so several times.
  if (tooMuch) most = atMost_ = fault.kind() == THBaseFaultKind::TimedOut ? 1 : std::max(1, most / 8);
  if (again) ++recoveries_;
  close();
  return true;
}

/// Answers shall keep well within the time and the memory that there is for one, and else be long.
void THBaseScan::pace(std::int32_t asked, const std::vector<THBaseRow>& rows) {
  const double bytes = static_cast<double>(bytesOf(rows)) / static_cast<double>(batchBytes);
  const double time = took_ / std::chrono::duration<double, std::nano>(client_.answerTime() / 8);
  const double much = std::max(bytes, time);
  if (much > 1)
    atMost_ = fitting(rows.size(), much);
  else if (much <= 0.5 && asked == atMost_ && rows.size() == static_cast<std::size_t>(asked))
    atMost_ = asked > largest / 2 ? largest : asked * 2;
}

THBaseRange keysOnly(THBaseRange range) {
  range.filter = range.filter.empty() ? "FirstKeyOnlyFilter() AND KeyOnlyFilter()"
                                      : "(" + range.filter + ") AND KeyOnlyFilter()";
  return range;
}

}  // namespace hollowmere
