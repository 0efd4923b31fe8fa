#include "connectors/connectioncheck.h"

#include "connectors/storeerror.h"

namespace hollowmere {

TConnectionCheck::TConnectionCheck(const TStoreConnector& store, const ConnectionConfig& record,
                                   std::function<void()> ended)
    : ended_(std::move(ended)), thread_([this, &store, record] { run(store, record); }) {}

TConnectionCheck::~TConnectionCheck() {
  stop_.set();
  thread_.join();
}

void TConnectionCheck::run(const TStoreConnector& store, const ConnectionConfig& record) {
  try {
    TStoreOptions options;
    options.connection = record;
    options.stop = &stop_;
    store.checkSource(options);
  } catch (const TStoreError& error) {
    // The fixed text speaks of a source; here is none.
    fault_ = error.detail().empty() ? error.what() : error.detail();
  } catch (const std::exception& error) {
    fault_ = error.what();
  }
  over_.store(true, std::memory_order_release);
  ended_();
}

namespace checktexts {

std::string missing(std::string_view dbType) {
  return "This version of Hollowmere cannot connect to " + std::string(dbType) +
         " yet. The connection can be saved, but not tested.";
}

std::string running(std::string_view dbType) { return "Connecting to " + std::string(dbType) + "..."; }

std::string reached(std::string_view dbType) { return "Connected to " + std::string(dbType) + "."; }

std::string failed(std::string_view dbType, const std::string& fault) {
  return "Unable to connect to " + std::string(dbType) + ": " + fault;
}

std::string tooLong(std::string_view dbType) {
  return std::string(dbType) + " did not answer within " + std::to_string(TConnectionCheck::seconds) +
         " seconds.";
}

}  // namespace checktexts

}  // namespace hollowmere
