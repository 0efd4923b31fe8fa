#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "connectors/storeapi.h"
#include "support/localserver.h"

namespace hollowmere {

/// One store as the conformance suite sees it, with a place of its own to read and write in.
class TBed {
 public:
  virtual ~TBed() = default;

  [[nodiscard]] virtual const TStoreConnector& connector() const = 0;
  /// Collections are named by the test; a store of files makes a file of each.
  [[nodiscard]] virtual TValue connection(const std::string& collection) const = 0;
  /// The name of a data target that receives the collection.
  [[nodiscard]] virtual std::string target(const std::string& collection) const { return collection; }
  [[nodiscard]] virtual TDataSource source(const std::string& collection,
                                           const std::string& query = {}) const = 0;
  /// The same connection, with a user whom the server does not know; null where a store has no users.
  [[nodiscard]] virtual TValue strangersConnection() const { return {}; }
  /// Where nothing listens.
  [[nodiscard]] virtual TValue nowhere() const = 0;

  /// A document of the suite as this store can hold it, and the way back.
  [[nodiscard]] virtual TObject toStore(const TObject& document) const { return document; }
  [[nodiscard]] virtual TObject fromStore(const TObject& row) const { return row; }

  bool nests = true;          ///< nested queries
  bool jsonQueries = true;    ///< queries are JSON objects
  bool hasKeys = true;        ///< a second document with the same "_id" is refused
  bool overwrites = false;    ///< ... or takes the place of the first
  bool keepsKinds = true;     ///< values that JSON lacks come back as they were
  bool keepsOrder = true;     ///< rows are read as they were written
  bool takesAny = true;       ///< documents of any shape; otherwise _id (int) and name (text) alone
  bool rangesShares = false;  ///< shares of a source hold each row once, but not a certain number of them
  std::string
      emptySource;  ///< the error of an empty root source, the collection's name behind it; empty: none
  std::string strangerFault = "uthentication failed";  ///< part of what a stranger is told
};

/// Counts what a writer says.
class TRecordingSink : public TOutcomeSink {
 public:
  void stored(std::int64_t count) override { storedCount += count; }
  void skipped(std::int64_t count) override { skippedCount += count; }
  void refused(std::string documentText, const std::string& message) override {
    refusals.emplace_back(std::move(documentText), message);
  }

  std::int64_t storedCount = 0;
  std::int64_t skippedCount = 0;
  std::vector<std::pair<std::string, std::string>> refusals;
};

/// How a store is set up.
struct TBedKind {
  std::string name;
  std::function<std::unique_ptr<TBed>()> make;
};
std::vector<TBedKind> bedKinds();
inline std::ostream& operator<<(std::ostream& out, const TBedKind& kind) { return out << kind.name; }

/// An HBase connection record and query.
TValue hbaseRecord(std::uint16_t port);
TDataSource hbaseSource(const std::string& table, const std::string& query = {});
/// Makes a table with those families.
void makeHBaseTable(std::uint16_t port, const std::string& table, const std::vector<std::string>& families);
/// As sharedServer(): a real HBase. It forgets a scanner that is not used for twice its lease.
inline constexpr int hbaseLeaseSeconds = 3;
const TLocalServer& sharedHBase();

/// A MongoDB connection record.
TValue mongoRecord(std::uint16_t port, const std::string& user = {}, const std::string& password = {},
                   const std::string& mechanism = {}, const std::string& authdb = {});
TDataSource mongoSource(const std::string& collection, const std::string& query = {});
/// A Cassandra connection record.
TValue cassandraRecord(std::uint16_t port, const std::string& user = {}, const std::string& password = {});
TDataSource cassandraSource(const std::string& table, const std::string& query = {});
/// As sharedServer(): a real Cassandra of a release ("3.11", "2.1 --auth").
const TLocalServer& sharedCassandra(const std::string& release = "3.11");
/// Releases that are tested besides 3.11 and 2.1: those that HOLLOWMERE_CASSANDRA_VERSIONS names ("2.2 3.0").
std::vector<std::string> moreCassandraReleases();
/// The server process of this test program, started when it is first needed.
const TLocalServer& sharedServer();

TStoreOptions optionsFor(TValue connection);
void writeAll(const TBed& bed, const std::string& collection, const std::vector<TObject>& documents,
              TRecordingSink& sink, std::int64_t bulkSize = 0);
std::vector<TObject> readAll(const TBed& bed, const std::string& collection, const TShare& share = {},
                             std::int64_t fetchLimit = 100);
/// The text of what a call throws as TStoreError, its kind checked; empty when it does not throw.
std::string faultOf(TStoreErrorKind kind, const std::function<void()>& call);

}  // namespace hollowmere
