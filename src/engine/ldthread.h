#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/datetimetext.h"
#include "connectors/storeapi.h"
#include "connectors/storeregistry.h"
#include "engine/assembly.h"
#include "engine/loadcounts.h"
#include "engine/loadqueue.h"
#include "settings/clock.h"
#include "settings/mainthread.h"

namespace hollowmere {

/// What one load thread is given. Plain values: nothing is shared with other threads but the stop flag of
/// its own.
struct TLdConfig {
  std::string label;  ///< stands in the thread's log lines; without one it writes none
  int threadNumber = 1;
  int degree = 1;
  std::string sourceType;
  std::string targetType;
  TValue sourceConnection;
  TValue targetConnection;
  std::vector<TDataSource> dataSources;  ///< with their counts
  std::vector<TDataTarget> dataTargets;
  std::vector<TMapNode> mappings;  ///< the root nodes
  std::int64_t fetchLimit = 100;
  std::int64_t bulkSize = 0;
  std::size_t bufferBytes = 1000000;
  bool ignoreNulls = true;
  bool counted = true;  ///< the data sources' counts are there
};

/// What a load thread hands over. Called on the main thread only, inside the thread's TMainThread call.
class TLoadHost {
 public:
  virtual ~TLoadHost() = default;
  /// Whole lines, joined by line feeds, the last one without.
  virtual void log(const std::string& lines) = 0;
  virtual void disc(const std::string& lines) = 0;
  /// The counts of one root mapping node of one thread, when the thread is done with it; complete: neither an
  /// error nor a stop ended it before its share was read.
  virtual void addTotals(std::size_t mapping, const TLoadCounts& counts, bool complete) = 0;
};

/// Runs one share of a load project: reads its rows, assembles the documents, writes them, counts, and
/// reports through log and discard queues. execute() is the body of a thread of its own; stop(),
/// finished(), failed() and counts() may be called from any thread.
class TLdThread : private TOutcomeSink {
 public:
  /// All references outlive the thread.
  TLdThread(TLdConfig config, const TStoreRegistry& stores, TLoadHost& host, TMainThread& mainThread,
            const TClock& clock, const TDateTimeText& dates);
  ~TLdThread() override;

  void execute();
  /// The row in progress is completed; waiting for a store ends within a second or so.
  void stop() { stop_.set(); }

  [[nodiscard]] bool finished() const { return finished_; }
  /// The connections could not be opened; nothing was loaded.
  [[nodiscard]] bool failed() const { return failed_; }
  /// All that was counted so far, over all root mappings.
  [[nodiscard]] TLoadCounts counts() const;
  /// How far the source is read: rows, or bytes where the store counts bytes.
  [[nodiscard]] std::int64_t position() const { return position_.load(std::memory_order_relaxed); }
  [[nodiscard]] const std::string& label() const { return config_.label; }

  const TDataSource* getDSbyName(std::string_view name) const;
  std::int64_t getDSCountByName(std::string_view name) const;
  const TDataTarget* getDTbyName(std::string_view name) const;
  std::string getSASLPwdByName(std::string_view name) const;

 private:
  void initConnections();
  void closeConnections();
  void runMappings();
  bool loadMapConfig();
  TShare makeShare(const TDataSource& source);
  void loadRows();
  bool loadRow();
  std::optional<TObject> getJsonObj();
  void process(TObject& row);
  void insert(TObject&& document);
  void settle();
  void reportMapping();
  void addUp(bool complete);
  void updateTotals(bool complete);
  void reportReadError(const std::string& message);
  void writeCounts(const char* prefix, const TLoadCounts& counts);
  void writeEnd();

  void stored(std::int64_t count) override;
  void skipped(std::int64_t count) override;
  void refused(std::string documentText, const std::string& message) override;

  void log(const std::string& message);
  void disc(std::string text);
  [[nodiscard]] std::string timeText() const;
  void writeToFiles();
  void forceFlush();

  TLdConfig config_;
  const TStoreRegistry& stores_;
  TLoadHost& host_;
  TMainThread& mainThread_;
  const TClock& clock_;
  const TDateTimeText& dates_;

  TStopFlag stop_;
  std::unique_ptr<TSourceReader> reader_;
  std::unique_ptr<TTargetWriter> writer_;
  TAssembler assembler_;
  TLoadQueue queue_;
  std::vector<TNodePlan> plans_;
  std::size_t nextMapping_ = 0;
  std::size_t mapping_ = 0;  ///< the current root mapping node
  TShare share_;
  std::int64_t rowsRead_ = 0;
  bool lastFlush_ = false;  ///< the outcomes now reported are those of the last batch
  TLoadCounts sourceCounts_;
  TLoadCounts totals_;

  std::atomic<std::int64_t> allLoaded_ = 0;
  std::atomic<std::int64_t> allDiscarded_ = 0;
  std::atomic<std::int64_t> allSkipped_ = 0;
  std::int64_t positionBefore_ = 0;  ///< of the root mappings that are done
  std::atomic<std::int64_t> position_ = 0;
  std::atomic<bool> finished_ = false;
  std::atomic<bool> failed_ = false;
};

}  // namespace hollowmere
