#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "connectors/storeapi.h"

namespace hollowmere {

/// How a toy server misbehaves. Set before the run; rows and documents count from 1, over a connection.
struct TToyFaults {
  bool refuseConnections = false;
  std::set<int> refusedConnections;  ///< only these, counted over the server's life from 1
  std::string password;              ///< the connection record must hold it
  std::set<int> unreadableRows;
  int cursorBreaksAt = 0;          ///< row that ends the reading; 0: none
  int memoryEndsAt = 0;            ///< row that stays out of reach by an error that is no store's; 0: none
  std::set<int> refusedDocuments;  ///< refused with code 121
  bool refuseAll = false;
  bool countFails = false;
  bool lateOutcomes = false;  ///< a batch's outcomes are told with the next batch
  bool neverAnswers = false;  ///< next() waits until the stop flag is set, and fails then
  int pauseMilliseconds = 0;  ///< before each row
  bool loseTargetOnOpen = false;
};

/// A store in memory that many connections may use at once: collections of documents in their order.
class TToyServer {
 public:
  TToyFaults faults;
  TStoreTraits traits;
  std::vector<std::string> requiredFields;

  void fill(const std::string& collection, const std::vector<TObject>& documents);
  /// Rows {"_id": 1, "name": "row 1"} and so on.
  void fillNumbered(const std::string& collection, int count);
  [[nodiscard]] std::vector<TObject> documents(const std::string& collection) const;

  /// False when the collection has a document with that "_id".
  bool insert(const std::string& collection, TObject document);
  void connect(const TStoreOptions& options);

 private:
  mutable std::mutex mutex_;
  std::map<std::string, std::vector<TObject>> collections_;
  int connections_ = 0;
};

/// The store "Toy", or of another name. Sources are {"collection": ..., "query": filter of equal fields,
/// perhaps with parameters}.
std::unique_ptr<TStoreConnector> makeToyConnector(std::shared_ptr<TToyServer> server,
                                                  std::string dbType = "Toy");

TDataSource toySource(const std::string& name, const std::string& collection, const std::string& query = {});

}  // namespace hollowmere
