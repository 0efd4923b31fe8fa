#pragma once

#include <atomic>
#include <string>
#include <thread>

#include "app/program.h"
#include "cli/commandline.h"
#include "cli/commands.h"
#include "connectors/storeapi.h"

namespace hollowmere {

/// Sets a stop flag when a signal asks the program to end, as long as it lives.
class TSignalStop {
 public:
  TSignalStop();
  ~TSignalStop();
  TSignalStop(const TSignalStop&) = delete;
  TSignalStop& operator=(const TSignalStop&) = delete;

  [[nodiscard]] const TStopFlag* flag() const { return &stop_; }

 private:
  TStopFlag stop_;
  std::atomic<bool> over_ = false;
  std::thread watcher_;
};

/// One call of the sub-command "mongo", sorted out.
struct TMongoCall {
  TProgram& program;
  const TCommandLine& line;
  const TCliStreams& streams;
  const TStopFlag* stop;
  TObject record;        ///< the connection
  std::string database;  ///< of --db, else of the record; may be empty

  /// Behind the action, from 0. Throws TUsageError when it must be there and is not.
  [[nodiscard]] std::string argument(std::size_t place, const char* name) const;
  [[nodiscard]] bool hasArgument(std::size_t place) const { return line.positional.size() > place + 2; }
  [[nodiscard]] std::string option(const char* name, const std::string& otherwise = {}) const;
  [[nodiscard]] std::int64_t number(const char* name, std::int64_t otherwise) const;
  [[nodiscard]] TStoreOptions options() const;
  /// Throws TUsageError when no database is named.
  [[nodiscard]] const std::string& needDatabase() const;
};

/// The actions "gridfs ...".
int gridFsCommand(const TMongoCall& call);

}  // namespace hollowmere
