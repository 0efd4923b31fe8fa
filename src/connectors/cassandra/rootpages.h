#pragma once

#include <optional>
#include <string>
#include <vector>

#include "connectors/cassandra/cassread.h"
#include "connectors/cassandra/rootplan.h"

namespace hollowmere {

/// Tokens of a share: above lower, up to upper. Bytes as the server has them; nothing: no bound.
struct TTokenRange {
  std::optional<std::string> lower;
  std::optional<std::string> upper;
};

/// Tokens of the Murmur3 partitioner by how far they are from its least one; all of them: up to 2^64 - 1.
TTokenRange tokensBetween(std::uint64_t from, std::uint64_t to);
/// The share's part of them all.
TTokenRange murmur3Range(int number, int degree);

/// Runs a plan piece by piece; holds one piece at a time. Each is read patiently (see readPatiently()), with
/// fewer rows when they take the server too long, or are too large together. The client outlives it.
class TRootPages {
 public:
  TRootPages(TCassandraClient& client, const std::string& keyspace, TRootPlan plan, TTokenRange range,
             std::int64_t rows, const TStopFlag* stop);

  /// Has the server look at every statement that may come, so that it takes all or none: whatever the share.
  /// Throws TCassandraError (Refused) when it does not.
  void tryOut();
  /// The next piece, without the columns that were appended; nothing at the end. Throws TCassandraError and
  /// TStoreError (Connect).
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
  TCassStatements statements_;
  TRootPlan plan_;
  TTokenRange range_;
  std::int64_t rows_;
  const TStopFlag* stop_;
  bool first_ = true;
  bool over_ = false;
  /// How many clustering columns bound the next piece; behind: none, the partition itself is passed.
  std::size_t stage_ = behind;
  std::vector<std::string> lastPartition_;   ///< of the last row
  std::vector<std::string> lastClustering_;  ///< empty for a row of static columns alone
};

}  // namespace hollowmere
