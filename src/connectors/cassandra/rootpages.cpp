#include "connectors/cassandra/rootpages.h"

#include <algorithm>
#include <limits>

#include "connectors/cassandra/cassnumber.h"

namespace hollowmere {

TTokenRange tokensBetween(std::uint64_t from, std::uint64_t to) {
  // Tokens are signed: the least is in the middle of the unsigned numbers.
  constexpr std::uint64_t least = std::uint64_t{1} << 63;
  TTokenRange range;
  if (from > 0) range.lower = bigEndianBytes(least + from, 8);
  if (to < std::numeric_limits<std::uint64_t>::max()) range.upper = bigEndianBytes(least + to, 8);
  return range;
}

TTokenRange murmur3Range(int number, int degree) {
  constexpr std::uint64_t all = std::numeric_limits<std::uint64_t>::max();
  const std::uint64_t step = all / static_cast<std::uint64_t>(degree);
  const auto bound = [&](int share) { return step * static_cast<std::uint64_t>(share); };
  return tokensBetween(bound(number - 1), number < degree ? bound(number) : all);
}

TRootPages::TRootPages(TCassandraClient& client, const std::string& keyspace, TRootPlan plan,
                       TTokenRange range, std::int64_t rows, const TStopFlag* stop)
    : client_(client),
      statements_(client, keyspace),
      plan_(std::move(plan)),
      range_(std::move(range)),
      rows_(std::max<std::int64_t>(1, rows)),
      stop_(stop) {}

void TRootPages::tryOut() {
  const bool ranged = range_.lower || range_.upper;
  statements_.prepare(plan_.firstCql(ranged, ranged, rows_));
  if (!plan_.onePartition) statements_.prepare(plan_.behindCql(ranged, rows_));
  for (std::size_t depth = 1; depth <= plan_.clustering.size(); ++depth)
    statements_.prepare(plan_.withinCql(depth, rows_));
}

std::optional<TCassResult> TRootPages::next() {
  while (!over_) {
    TCassResult piece = run();
    moveOn(piece);
    if (piece.rows.empty()) continue;
    for (std::size_t i = 0; i < plan_.appended; ++i) {
      piece.columns.pop_back();
      for (TCassRow& row : piece.rows) row.pop_back();
    }
    return piece;
  }
  return std::nullopt;
}

/// With fewer rows when they are too large together.
TCassResult TRootPages::run() {
  for (;;) {
    try {
      return readPatiently(client_, TCassRetry(stop_), [this] { return runOnce(); });
    } catch (const TCassandraError& error) {
      if (error.why() != TCassandraError::TWhy::Oversized || rows_ == 1) throw;
      rows_ /= 2;
    }
  }
}

/// A server that needs longer than it may is asked for less the next time.
TCassResult TRootPages::runOnce() {
  try {
    return statements_.run(stageCql(), stageValues());
  } catch (const TCassandraError& error) {
    if (error.why() == TCassandraError::TWhy::TimedOut) rows_ = std::max<std::int64_t>(1, rows_ / 2);
    throw;
  }
}

std::string TRootPages::stageCql() const {
  if (first_) return plan_.firstCql(range_.lower.has_value(), range_.upper.has_value(), rows_);
  return stage_ == behind ? plan_.behindCql(range_.upper.has_value(), rows_) : plan_.withinCql(stage_, rows_);
}

std::vector<std::string> TRootPages::stageValues() const {
  std::vector<std::string> values;
  if (first_) {
    if (range_.lower) values.push_back(*range_.lower);
  } else if (stage_ == behind || !plan_.onePartition) {
    values = lastPartition_;
  }
  if (!first_ && stage_ != behind)
    values.insert(values.end(), lastClustering_.begin(),
                  lastClustering_.begin() + static_cast<std::ptrdiff_t>(stage_));
  else if (range_.upper)
    values.push_back(*range_.upper);
  return values;
}

/// A piece that is full may have more rows behind it; one that is not ends its stage.
void TRootPages::moveOn(const TCassResult& piece) {
  const bool full = static_cast<std::int64_t>(piece.rows.size()) >= rows_;
  const bool wasFirst = first_;
  first_ = false;
  if (full) {
    remember(piece);
    stage_ = lastClustering_.size();
    over_ = plan_.onePartition && stage_ == behind;
  } else if (wasFirst || stage_ == behind) {
    over_ = true;
  } else {
    leaveStage();
  }
}

/// All rows that share one clustering column more are read.
void TRootPages::leaveStage() {
  --stage_;
  over_ = stage_ == behind && plan_.onePartition;
}

void TRootPages::remember(const TCassResult& piece) {
  // The appended columns stand last: looked for from the end.
  const auto cell = [&](const TCassColumn& column) -> const TCassCell& {
    const auto found = std::find(piece.columns.rbegin(), piece.columns.rend(), column.name);
    if (found == piece.columns.rend())
      throw TCassandraError(TCassandraError::TWhy::Refused,
                            "The key column " + column.name + " is not in the rows.");
    return piece.rows.back()[static_cast<std::size_t>(piece.columns.rend() - found) - 1];
  };
  lastPartition_.clear();
  lastClustering_.clear();
  for (const TCassColumn& column : plan_.partition) lastPartition_.push_back(cell(column).value_or(""));
  // None of them: a row of static columns alone.
  for (const TCassColumn& column : plan_.clustering) {
    if (!cell(column)) break;
    lastClustering_.push_back(*cell(column));
  }
}

}  // namespace hollowmere
