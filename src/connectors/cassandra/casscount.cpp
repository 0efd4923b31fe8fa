#include "connectors/cassandra/casscount.h"

#include <algorithm>
#include <limits>

#include "connectors/cassandra/cassread.h"
#include "connectors/cassandra/rootpages.h"
#include "connectors/cassandranumber.h"

namespace hollowmere {

namespace {

using TWhy = TCassandraError::TWhy;
using TClock = std::chrono::steady_clock;

/// Keys that are read at a time where the server cannot count in time.
constexpr std::int64_t keysAtOnce = 5000;

std::int64_t numberOf(const TCassResult& result) {
  const bool one = result.rows.size() == 1 && result.rows[0].size() == 1 && result.rows[0][0];
  if (!one || result.rows[0][0]->size() != 8)
    throw TCassandraError(TWhy::Refused, "The server does not count the rows.");
  return bigEndian(*result.rows[0][0]);
}

void checkStop(const TStopFlag* stop) {
  if (stop && stop->isSet()) throw TCassandraError(TWhy::Refused, "Counting was stopped.");
}

/// Counts a table's rows along its tokens, the more of them at a time the quicker the server is.
class TTokenCount {
 public:
  TTokenCount(TCassandraClient& client, const std::string& keyspace, const TRootPlan& plan,
              const TStopFlag* stop)
      : client_(client), statements_(client, keyspace), plan_(plan), stop_(stop) {}

  std::int64_t rows(std::int64_t most) {
    std::int64_t count = 0;
    while (!over_ && count < most) {
      checkStop(stop_);
      count += readPatiently(client_, TCassRetry(stop_), [this] { return piece(); });
    }
    return count;
  }

 private:
  static constexpr std::uint64_t all = std::numeric_limits<std::uint64_t>::max();
  static constexpr std::chrono::seconds quick{1}, slow{5};

  std::int64_t piece() {
    const bool last = all - from_ <= width_;
    const std::uint64_t to = last ? all : from_ + width_;
    const TTokenRange range = tokensBetween(from_, to);
    std::vector<std::string> bounds;
    if (range.lower) bounds.push_back(*range.lower);
    if (range.upper) bounds.push_back(*range.upper);
    const auto begin = TClock::now();
    try {
      const std::int64_t count =
          numberOf(statements_.run(plan_.countCql(range.lower.has_value(), range.upper.has_value()), bounds));
      from_ = to;
      over_ = last;
      adapt(TClock::now() - begin);
      return count;
    } catch (const TCassandraError& error) {
      // A server that did not answer in time is asked for less.
      if (error.why() == TWhy::TimedOut || error.why() == TWhy::Lost) width_ = std::max(width_ / 8, least);
      throw;
    }
  }

  void adapt(TClock::duration took) {
    if (took < quick && width_ <= all / 2) width_ *= 2;
    if (took > slow) width_ = std::max(width_ / 2, least);
  }

  static constexpr std::uint64_t least = 1 << 20;

  TCassandraClient& client_;
  TCassStatements statements_;
  const TRootPlan& plan_;
  const TStopFlag* stop_;
  std::uint64_t from_ = 0;
  std::uint64_t width_ = std::uint64_t{1} << 56;
  bool over_ = false;
};

/// Reads keys and counts them.
std::int64_t countKeys(TCassandraClient& client, const std::string& keyspace, TRootPlan plan,
                       std::int64_t most, const TStopFlag* stop) {
  plan.selectKeys();
  TRootPages pages(client, keyspace, std::move(plan), {}, keysAtOnce, stop);
  std::int64_t count = 0;
  while (count < most) {
    checkStop(stop);
    const auto piece = pages.next();
    if (!piece) break;
    count += static_cast<std::int64_t>(piece->rows.size());
  }
  return count;
}

std::int64_t countAll(TCassandraClient& client, TCassSource& source, const TStopFlag* stop) {
  std::string why;
  bool byTokens = false;
  const auto plan = readPatiently(client, TCassRetry(stop), [&] {
    source.useKeyspace(client);
    auto made = source.plan(client, why);
    byTokens = made && !made->onePartition && client.partitioner().ends_with("Murmur3Partitioner");
    return made;
  });
  const TCqlSelect select(source.query);
  if (!select.isCountable())
    return static_cast<std::int64_t>(readWhole(client, source.keyspace, select, stop).rows.size());
  const std::int64_t most = select.limit().value_or(std::numeric_limits<std::int64_t>::max());
  if (byTokens) return std::min(most, TTokenCount(client, source.keyspace, *plan, stop).rows(most));
  try {
    return std::min(most, numberOf(client.execute(select.countCql(), client.readLevel())));
  } catch (const TCassandraError& error) {
    const bool slow = error.why() == TWhy::TimedOut || error.why() == TWhy::Lost;
    if (!plan || !slow) throw;
  }
  checkStop(stop);
  return std::min(most, countKeys(client, source.keyspace, *plan, most, stop));
}

}  // namespace

std::int64_t countRows(TCassandraClient& client, TCassSource source, const TStopFlag* stop) {
  try {
    return countAll(client, source, stop);
  } catch (const TCassandraError& error) {
    throw TStoreError(TStoreErrorKind::DataSource, error.what());
  }
}

}  // namespace hollowmere
