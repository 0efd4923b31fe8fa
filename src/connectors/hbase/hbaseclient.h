#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/hbase/hbasefault.h"
#include "connectors/storeapi.h"
#include "connectors/thrift/thriftoptions.h"

namespace hollowmere {

struct THBaseCell {
  std::string column;  ///< family:qualifier
  std::string value;
  std::int64_t timestamp = 0;  ///< milliseconds since 1970, UTC, unless the writer chose another
};

/// Bytes all: keys, columns and values need not be text.
struct THBaseRow {
  std::string key;
  std::vector<THBaseCell> cells;  ///< the newest of each column, in the columns' order
};

/// What a scan gives. The range is that of the keys; empty: from the first, to the last.
struct THBaseRange {
  std::string table;
  std::string filter;  ///< as it is sent
  std::string from;    ///< the first key
  std::string before;  ///< the key behind the last
  /// Whether a pass over it can begin anew at any key. Not when its filter counts rows or ends at one.
  bool resumable = true;
};

/// A scanner of a server. Its number belongs to the server's process, and only as long as the connection
/// lasts is it known to be the same one.
struct THBaseScanner {
  std::int32_t number = 0;
  std::uint64_t connection = 0;
};

/// A column family, with what the Thrift interface tells of it.
struct THBaseFamily {
  std::string name;  ///< without the colon
  std::int32_t maxVersions = 1;
  std::string compression = "NONE";
  std::int32_t timeToLive = 0;  ///< seconds; 0: for ever
  std::string bloomFilter = "NONE";
  bool inMemory = false;
  bool blockCache = true;

  bool operator==(const THBaseFamily&) const = default;
};

struct THBaseRegion {
  std::string name;
  std::string from;
  std::string before;
  std::string server;  ///< "host:port"
};

/// Rows on their way to a server. Keeps its memory from batch to batch.
class THBaseBatch {
 public:
  THBaseBatch();
  THBaseBatch(const THBaseBatch&) = delete;
  THBaseBatch& operator=(const THBaseBatch&) = delete;
  ~THBaseBatch();

  void clear();
  void beginRow(std::string_view key);
  void put(std::string_view column, std::string_view value);
  /// Takes the last row out again.
  void dropRow();

  [[nodiscard]] std::size_t rows() const;
  /// Of the message, nearly: rows with what the protocol puts around them.
  [[nodiscard]] std::size_t bytes() const { return bytes_; }
  [[nodiscard]] std::size_t lastRowBytes() const { return bytes_ - bytesBefore_; }

 private:
  friend class THBaseClient;
  struct TRows;

  std::unique_ptr<TRows> rows_;
  std::size_t bytes_ = 0;
  std::size_t bytesBefore_ = 0;  ///< without the last row
};

/// A connection to HBase's first Thrift service. Belongs to one thread. Calls throw THBaseFault; when that
/// says that the connection is lost, the next call opens a new one. A server closes connections that were
/// idle for a minute; only rows that are written or read from a scanner then meet a lost connection, what
/// else there is goes on over a new one.
class THBaseClient {
 public:
  /// Connects and has the server answer once.
  explicit THBaseClient(const TThriftOptions& options);
  THBaseClient(const THBaseClient&) = delete;
  THBaseClient& operator=(const THBaseClient&) = delete;
  ~THBaseClient();

  [[nodiscard]] std::string where() const { return options_.where(); }
  [[nodiscard]] bool stopped() const { return options_.stop && options_.stop->isSet(); }
  /// How long an answer is waited for.
  [[nodiscard]] std::chrono::milliseconds answerTime() const { return options_.answerTime; }

  // Scans. Opening checks nothing but the filter's text: what is wrong comes with the first rows.
  THBaseScanner openScanner(const THBaseRange& range, std::int32_t batch);
  /// Up to that many next rows; none: the end. Lost when it was opened over an earlier connection.
  void nextRows(const THBaseScanner& scanner, std::int32_t most, const std::string& table,
                std::vector<THBaseRow>& rows);
  /// Faults are of no interest. When it was we who gave the connection up, the scanner is closed over the
  /// next one. When the server ended it, nothing is closed: the server may be another process, in which the
  /// number is somebody else's; it forgets scanners that nobody uses.
  void closeScanner(const THBaseScanner& scanner) noexcept;

  /// One row.
  void mutateRow(const std::string& table, THBaseBatch& row);
  /// Many. When this fails as a whole, some may be stored nevertheless.
  void mutateRows(const std::string& table, THBaseBatch& rows);
  /// The same in two halves, so that the server works while the next rows are made ready. No other call
  /// may stand between.
  void sendRows(const std::string& table, THBaseBatch& rows);
  void awaitRows(const std::string& table);
  void deleteRow(const std::string& table, const std::string& key);

  /// No cells: there is no such row.
  THBaseRow row(const std::string& table, const std::string& key);
  /// A column's versions with their time stamps, the newest first.
  std::vector<THBaseCell> versions(const std::string& table, const std::string& key,
                                   const std::string& column, std::int32_t most);

  // Tables.
  std::vector<std::string> tables();
  std::vector<THBaseFamily> families(const std::string& table);
  std::vector<THBaseRegion> regions(const std::string& table);
  bool isEnabled(const std::string& table);
  void create(const std::string& table, const std::vector<THBaseFamily>& families);
  void enable(const std::string& table);
  void disable(const std::string& table);
  /// Disables it first when it is enabled.
  void drop(const std::string& table);
  /// Drops the table and makes it anew with its families. Region splits, grants and what the interface does
  /// not tell of a family are lost. A table with a family that cannot be made again is left as it is; should
  /// the server refuse to make the table, the fault's text has its families.
  void truncate(const std::string& table);
  /// Asks for it; the server does it later.
  void compact(const std::string& table, bool major);

 private:
  struct TLink;

  template <class TCall>
  auto call(const char* method, const std::string& table, TCall&& act);
  template <class TCall>
  auto repeatable(const char* method, const std::string& table, TCall&& act);
  TLink& connected();
  void prove();
  void wake();
  THBaseFault unreadable(const std::string& why);
  THBaseFault unnamedFault(const std::string& method, const std::string& table);
  bool isMissing(const std::string& table);
  void leave(bool serverIsThere);
  void closeLeft() noexcept;

  TThriftOptions options_;
  std::unique_ptr<TLink> link_;
  std::uint64_t connection_ = 0;    ///< how many there were
  std::uint64_t sameServer_ = 1;    ///< from this one on it was we who ended them
  std::vector<std::int32_t> left_;  ///< scanners to be closed over the next connection
};

/// By a connection record. Throws TStoreError (Connect) with that fixed text; without one, with a text that
/// names host and port.
std::unique_ptr<THBaseClient> connectHBase(const TStoreOptions& options, const std::string& fixedText = {});

}  // namespace hollowmere
