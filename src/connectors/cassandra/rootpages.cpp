#include "connectors/cassandra/rootpages.h"

#include <algorithm>
#include <limits>

#include "connectors/cassandra/cassnumber.h"

namespace hollowmere {

TTokenRange murmur3Range(int number, int degree) {
  const std::uint64_t step = std::numeric_limits<std::uint64_t>::max() / static_cast<std::uint64_t>(degree);
  // Tokens are signed: the least is in the middle of the unsigned numbers.
  const auto bound = [&](int share) {
    return bigEndianBytes((std::uint64_t{1} << 63) + step * static_cast<std::uint64_t>(share), 8);
  };
  TTokenRange range;
  if (number > 1) range.lower = bound(number - 1);
  if (number < degree) range.upper = bound(number);
  return range;
}

TRootPages::TRootPages(TCassandraClient& client, std::string keyspace, TRootPlan plan, TTokenRange range,
                       std::int64_t rows, const TStopFlag* stop)
    : client_(client),
      keyspace_(std::move(keyspace)),
      plan_(std::move(plan)),
      range_(std::move(range)),
      rows_(std::max<std::int64_t>(1, rows)),
      stop_(stop) {}

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

/// Once more over a new connection when this one was lost; with fewer rows when they are too large together.
TCassResult TRootPages::run() {
  for (bool again = true;; again = false) {
    try {
      return runOnce();
    } catch (const TCassandraError& error) {
      const bool smaller = error.why() == TCassandraError::TWhy::Oversized && rows_ > 1;
      if (error.connectionLost() && (smaller || again) && !(stop_ && stop_->isSet())) {
        client_.connect();
        if (smaller) rows_ /= 2;
        prepared_.clear();
        if (smaller) again = true;
      } else if (error.why() == TCassandraError::TWhy::NotPrepared && again) {
        prepared_.clear();
      } else {
        throw;
      }
    }
  }
}

TCassResult TRootPages::runOnce() {
  client_.setKeyspace(keyspace_);
  const std::string cql = stageCql();
  auto found = prepared_.find(cql);
  if (found == prepared_.end()) found = prepared_.emplace(cql, client_.prepare(cql)).first;
  return client_.executePrepared(found->second.id, stageValues(), client_.readLevel());
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
    static const TCassCell none;
    const auto found = std::find(piece.columns.rbegin(), piece.columns.rend(), column.name);
    if (found == piece.columns.rend()) return none;
    return piece.rows.back()[static_cast<std::size_t>(piece.columns.rend() - found) - 1];
  };
  lastPartition_.clear();
  lastClustering_.clear();
  for (const TCassColumn& column : plan_.partition) {
    if (!cell(column))
      throw TCassandraError(TCassandraError::TWhy::Refused,
                            "The key column " + column.name + " is not in the rows.");
    lastPartition_.push_back(*cell(column));
  }
  for (const TCassColumn& column : plan_.clustering) {
    if (!cell(column)) break;
    lastClustering_.push_back(*cell(column));
  }
}

}  // namespace hollowmere
