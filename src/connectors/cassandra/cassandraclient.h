#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "connectors/storeapi.h"
#include "connectors/thrift/thriftoptions.h"

namespace hollowmere {

/// The values are those of the wire.
enum class TConsistency : std::uint8_t {
  One = 1,
  Quorum,
  LocalQuorum,
  EachQuorum,
  All,
  Any,
  Two,
  Three,
  Serial,
  LocalSerial
};

/// By the exact text ("LOCAL_QUORUM"); every other one is One.
TConsistency consistencyOf(std::string_view text);

/// The bytes of a column; nothing for a null, which an empty value is not.
using TCassCell = std::optional<std::string>;
using TCassRow = std::vector<TCassCell>;

/// What a statement gave. The order of the columns is known only when there are rows.
struct TCassResult {
  std::vector<std::string> columns;          ///< in the order of the statement
  std::map<std::string, std::string> types;  ///< class text of each column by its name
  std::vector<TCassRow> rows;
};

struct TCassPrepared {
  std::int32_t id = 0;
  std::vector<std::string> types;  ///< class text of each marker
};

/// A statement that failed.
class TCassandraError : public std::runtime_error {
 public:
  enum class TWhy {
    Refused,      ///< by the server, which goes on
    NotPrepared,  ///< the server has lost the prepared statement
    TimedOut,     ///< by the server: whether it was done is not known
    Oversized,    ///< the answer is too long; the connection is lost
    Lost,         ///< the connection is lost
  };
  TCassandraError(TWhy why, const std::string& text) : std::runtime_error(text), why_(why) {}

  [[nodiscard]] TWhy why() const { return why_; }
  [[nodiscard]] bool connectionLost() const { return why_ == TWhy::Lost || why_ == TWhy::Oversized; }

 private:
  TWhy why_;
};

/// One connection to Cassandra's Thrift interface, logged in. Belongs to one thread. A connection that was
/// lost is made anew by connect(). Calls throw TCassandraError.
class TCassandraClient {
 public:
  /// Connects, logs in, and proves it by a query. fixedText is the text of the TStoreError (Connect) thrown;
  /// its detail is the server's, never with the password.
  TCassandraClient(const TStoreOptions& options, std::string fixedText);
  TCassandraClient(const TCassandraClient&) = delete;
  TCassandraClient& operator=(const TCassandraClient&) = delete;
  ~TCassandraClient();

  /// Once more, as the constructor does.
  void connect();
  [[nodiscard]] bool isConnected() const { return connection_ != nullptr; }

  [[nodiscard]] TConsistency readLevel() const { return readLevel_; }
  [[nodiscard]] TConsistency writeLevel() const { return writeLevel_; }
  /// Of the server that was connected to: 3 of "3.11.4".
  [[nodiscard]] int majorVersion() const { return majorVersion_; }

  /// For statements that do not name theirs; asks the server only for a change.
  void setKeyspace(const std::string& keyspace);
  std::string partitioner();
  TCassResult execute(const std::string& cql, TConsistency level);
  TCassPrepared prepare(const std::string& cql);
  TCassResult executePrepared(std::int32_t id, const std::vector<std::string>& values, TConsistency level);

  // Several statements in flight: send() each, sendNow(), then receive() once for each, in their order.
  // send() may keep back what it was given until sendNow().
  void send(std::int32_t id, const std::vector<std::string>& values, TConsistency level);
  void sendNow();
  void receive();

 private:
  struct TConnection;

  void greet();
  void proveSession();
  template <typename Call>
  auto named(const Call& call);
  template <typename Call>
  auto guarded(const Call& call);

  TThriftOptions thrift_;
  TValue record_;
  std::string fixedText_;
  TConsistency readLevel_;
  TConsistency writeLevel_;
  std::unique_ptr<TConnection> connection_;
  int majorVersion_ = 0;
};

/// Of a "release_version" text: the number before the first dot, or the whole of it; 0 when it is none.
int majorVersionOf(std::string_view releaseVersion);

}  // namespace hollowmere
