#include "connectors/cassandra/cassread.h"

#include <thread>

namespace hollowmere {

namespace {

using TWhy = TCassandraError::TWhy;
using std::chrono::milliseconds;

/// A silent server is not waited for many times.
constexpr std::chrono::seconds longEnough{120};

/// How soon a pause notices the stop.
constexpr milliseconds step{20};

}  // namespace

bool TCassRetry::pause() {
  if (--left_ <= 0 || TClock::now() - begin_ > longEnough) return false;
  const auto stopped = [this] { return stop_ && stop_->isSet(); };
  for (milliseconds waited{0}; waited < pause_ && !stopped(); waited += step)
    std::this_thread::sleep_for(step);
  pause_ *= 2;
  return !stopped();
}

bool TCassRetry::after(const TCassandraError& fault) {
  if (fault.why() == TWhy::NotPrepared) return --left_ > 0;
  return (fault.why() == TWhy::Lost || fault.why() == TWhy::TimedOut) && pause();
}

void TCassStatements::prepare(const std::string& cql) {
  client_.setKeyspace(keyspace_);
  if (ids_.find(cql) == ids_.end()) ids_.emplace(cql, client_.prepare(cql).id);
}

TCassResult TCassStatements::run(const std::string& cql, const std::vector<std::string>& values) {
  try {
    prepare(cql);
    return client_.executePrepared(ids_.at(cql), values, client_.readLevel());
  } catch (const TCassandraError& error) {
    if (error.connectionLost() || error.why() == TWhy::NotPrepared) ids_.clear();
    throw;
  }
}

TCassResult readWhole(TCassandraClient& client, const std::string& keyspace, const TCqlSelect& select,
                      const TStopFlag* stop) {
  const std::string cql = select.withLimit(mostWhole + 1);
  constexpr int attempts = 2;  // Each costs the server the whole query.
  constexpr char tooLong[] =
      "The query can only be read at once, and gives more than that is good for: 1,000,000 rows or 256 MB. "
      "Conditions or a LIMIT make it shorter.";
  try {
    TCassResult result = readPatiently(client, TCassRetry(stop, attempts), [&] {
      client.setKeyspace(keyspace);
      return client.execute(cql, client.readLevel());
    });
    if (static_cast<std::int64_t>(result.rows.size()) <= mostWhole || select.limit()) return result;
  } catch (const TCassandraError& error) {
    if (error.why() != TWhy::Oversized) throw;
  }
  throw TCassandraError(TWhy::Refused, tooLong);
}

}  // namespace hollowmere
