#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/cassandra/insertplan.h"
#include "connectors/datetimetext.h"
#include "connectors/nosqlcommon.h"
#include "connectors/storeapi.h"

namespace hollowmere {

/// Inserts rows by prepared statements, one by one; or, with a bulk size, a few in one unlogged batch and
/// many such in flight. The documents are kept until the server has told what became of each. What failed
/// together is tried again row by row, so that only the row at fault is refused: an insert may be done twice.
/// Rows of one key are never under way together, so that the later one wins.
class TCassandraWriter : public TTargetWriter {
 public:
  /// Throws TStoreError (Connect).
  explicit TCassandraWriter(const TStoreOptions& options);

  void openTarget(const TDataTarget& target) override;
  void write(TObject&& document, TOutcomeSink& sink) override;
  void flush(TOutcomeSink& sink) override;

 private:
  using TPlan = TInsertPlans::TPlan;

  struct TRow {
    TObject document;
    std::vector<std::string> values;
    std::size_t key = 0;  ///< hash of what tells it from other rows
  };
  /// Rows of one statement.
  struct TUnit {
    TPlan plan;
    std::vector<TRow> rows;
    std::size_t bytes = 0;
  };

  bool connected(TOutcomeSink& sink, const TObject& document);
  TPlan planOf(const TObject& document, TOutcomeSink& sink);
  bool prepare(TInsertPlan& plan, TOutcomeSink& sink);
  bool encode(const TInsertPlan& plan, const TObject& document, std::vector<std::string>& values,
              TOutcomeSink& sink) const;
  void claimKey(const TInsertPlan& plan, TRow& row, TOutcomeSink& sink);
  void add(const TPlan& plan, TRow&& row, TOutcomeSink& sink);
  [[nodiscard]] TUnit& unitFor(const TPlan& plan, std::size_t bytes, TOutcomeSink& sink);
  void sendOpen(TOutcomeSink& sink);
  void sendFilled(TUnit& unit, TOutcomeSink& sink);
  void send(TUnit&& unit, TOutcomeSink& sink);
  void transmit(const TUnit& unit);
  void receiveUntil(std::size_t inFlight, TOutcomeSink& sink);
  void takeAnswer(TOutcomeSink& sink);
  [[nodiscard]] bool isTriedAgain(const TUnit& unit, const TCassandraError& error) const;
  void refuse(const TRow& row, const std::string& fault, TOutcomeSink& sink);
  void rescue(const std::string& reason, TOutcomeSink& sink);
  void writeAlone(TUnit& unit, int& losses, TOutcomeSink& sink);
  std::string tryAlone(TInsertPlan& plan, const TRow& row);
  bool reconnect();

  TStoreOptions options_;
  TCassandraClient client_;
  TDateTimeText dates_;
  TCollectionLengths lengths_;
  std::optional<TInsertPlans> plans_;
  std::size_t window_;       ///< rows waiting or in flight; 1: each is waited for
  std::vector<TUnit> open_;  ///< being filled, one for each plan
  std::size_t rowsOpen_ = 0;
  std::size_t bytesOpen_ = 0;
  std::deque<TUnit> sent_;  ///< in flight, oldest first
  std::size_t rowsSent_ = 0;
  std::size_t bytesSent_ = 0;
  std::vector<TUnit> failed_;             ///< to be taken apart
  std::unordered_set<std::size_t> keys_;  ///< of all rows whose outcome is not known
  std::chrono::steady_clock::time_point nextConnect_;
  std::string lostText_;
};

/// Columns that every row for the target must have, those of its key; none when there is no such target.
/// fixedText as for TCassandraClient, which throws.
std::vector<std::string> requiredColumns(const TStoreOptions& options, const TDataTarget& target,
                                         const std::string& fixedText);

}  // namespace hollowmere
