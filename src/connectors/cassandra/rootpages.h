#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/rootplan.h"

namespace hollowmere {

/// Tokens of a share: above lower, up to upper. Bytes as the server has them; nothing: no bound.
struct TTokenRange {
  std::optional<std::string> lower;
  std::optional<std::string> upper;
};

/// The share's part of all tokens of the Murmur3 partitioner.
TTokenRange murmur3Range(int number, int degree);

/// Runs a plan piece by piece; holds one piece at a time. A connection that is lost is made anew once for
/// each piece. The client outlives it.
class TRootPages {
 public:
  TRootPages(TCassandraClient& client, std::string keyspace, TRootPlan plan, TTokenRange range,
             std::int64_t rows, const TStopFlag* stop);

  /// The next piece, without the columns that were appended; nothing at the end. Throws TCassandraError, also
  /// when the first piece's statement is refused, and TStoreError (Connect).
  std::optional<TCassResult> next();

 private:
  static constexpr std::size_t behind = 0;  ///< the stage that goes to other partitions

  TCassResult run();
  TCassResult runOnce();
  std::string stageCql() const;
  std::vector<std::string> stageValues() const;
  void moveOn(const TCassResult& piece);
  void remember(const TCassResult& piece);
  void leaveStage();

  TCassandraClient& client_;
  std::string keyspace_;
  TRootPlan plan_;
  TTokenRange range_;
  std::int64_t rows_;
  const TStopFlag* stop_;
  std::map<std::string, TCassPrepared> prepared_;
  bool first_ = true;
  bool over_ = false;
  /// How many clustering columns bound the next piece; behind: none, the partition itself is passed.
  std::size_t stage_ = behind;
  std::vector<std::string> lastPartition_;   ///< of the last row
  std::vector<std::string> lastClustering_;  ///< empty for a row of static columns alone
};

}  // namespace hollowmere
