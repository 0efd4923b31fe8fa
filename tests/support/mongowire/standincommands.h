#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "support/mongowire/faults.h"
#include "support/mongowire/memorystore.h"
#include "support/mongowire/wire.h"

namespace hollowmere::mongowire {

/// The commands of the in-memory server that touch its collections. Safe in any thread.
class TStandInCommands {
 public:
  /// Both must outlive this; `faults` runs the tests of refused rows.
  TStandInCommands(TMemoryStore& store, TFaultScript& faults) : store_(store), faults_(faults) {}

  /// Carries the request out and puts the whole answer frame, which may be a refusal, into `frame`.
  void carryOut(const TRequest& request, const TFaultScript::TPlan& plan, std::string& frame);

 private:
  using TPlan = TFaultScript::TPlan;
  struct TCursor {
    std::string nameSpace;
    TMemoryStore::TRows rows;
    std::size_t next = 0;
  };

  void dispatch(const TRequest& request, const TPlan& plan, std::string& frame);
  TBson insert(const TRequest& request, const TPlan& plan);
  TBson update(const TRequest& request, const TPlan& plan);
  TBson remove(const TRequest& request, const TPlan& plan);
  TBson drop(const TRequest& request);
  TBson count(const TRequest& request);
  TBson killCursors(const TRequest& request);
  TBson listDatabases();
  void find(const TRequest& request, std::string& frame);
  void aggregate(const TRequest& request, std::string& frame);
  void listCollections(const TRequest& request, std::string& frame);
  void getMore(const TRequest& request, std::string& frame);
  void openCursor(const TRequest& request, TCursor cursor, std::int64_t batchSize, bool keep,
                  std::string& frame);

  TMemoryStore& store_;
  TFaultScript& faults_;
  std::mutex mutex_;
  std::int64_t lastCursor_ = 5000000000;  // past 32 bits, as a real server's ids are
  std::map<std::int64_t, TCursor> cursors_;
};

}  // namespace hollowmere::mongowire
