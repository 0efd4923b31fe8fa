#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
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
class TCassandraWriter : public TTargetWriter {
 public:
  /// Throws TStoreError (Connect).
  explicit TCassandraWriter(const TStoreOptions& options);

  void openTarget(const TDataTarget& target) override;
  void write(TObject&& document, TOutcomeSink& sink) override;
  void flush(TOutcomeSink& sink) override;

 private:
  struct TRow {
    TObject document;
    std::vector<std::string> values;
  };
  /// Rows of one statement.
  struct TUnit {
    TInsertPlan* plan = nullptr;
    std::vector<TRow> rows;
    std::size_t bytes = 0;
  };

  bool connected(TOutcomeSink& sink, const TObject& document);
  TInsertPlan* planOf(const TObject& document, TOutcomeSink& sink);
  bool encode(const TInsertPlan& plan, const TObject& document, std::vector<std::string>& values,
              TOutcomeSink& sink) const;
  [[nodiscard]] bool fits(const TInsertPlan& plan, const TRow& row, std::size_t bytes) const;
  void add(TInsertPlan& plan, TRow&& row, TOutcomeSink& sink);
  void sendOpen(TOutcomeSink& sink);
  void send(const TUnit& unit);
  void receiveUntil(std::size_t inFlight, TOutcomeSink& sink);
  void takeAnswer(TOutcomeSink& sink);
  void rescue(const std::string& reason, TOutcomeSink& sink);
  void writeAlone(TUnit& unit, TOutcomeSink& sink);
  std::string tryAlone(TInsertPlan& plan, const TRow& row);
  bool reconnect();

  TStoreOptions options_;
  TCassandraClient client_;
  TDateTimeText dates_;
  TCollectionLengths lengths_;
  std::optional<TInsertPlans> plans_;
  std::size_t window_;      ///< rows in flight; 1: each is waited for
  TUnit open_;              ///< being filled
  std::deque<TUnit> sent_;  ///< in flight, oldest first
  std::size_t rowsSent_ = 0;
  std::size_t bytesSent_ = 0;
  std::vector<TUnit> failed_;  ///< to be taken apart
  std::chrono::steady_clock::time_point nextConnect_;
  std::string lostText_;
  int losses_ = 0;  ///< rows on end that cost a connection while they were written alone
};

}  // namespace hollowmere
