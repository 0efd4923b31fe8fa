#include "connectors/cassandra/cassandraclient.h"

#include <Cassandra.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <new>

#include "connectors/thrift/thriftlink.h"

namespace hollowmere {

namespace {

namespace wire = cassandrawire;
using TWhy = TCassandraError::TWhy;

constexpr std::array<std::string_view, 10> levels{
    "ONE", "QUORUM", "LOCAL_QUORUM", "EACH_QUORUM", "ALL", "ANY", "TWO", "THREE", "SERIAL", "LOCAL_SERIAL"};
constexpr std::uint16_t usualPort = 9160;

/// A server that is silent for so long at the beginning may have another transport.
constexpr std::chrono::milliseconds suspicion{3000};

wire::ConsistencyLevel::type wireLevel(TConsistency level) {
  return static_cast<wire::ConsistencyLevel::type>(level);
}

TCassResult resultOf(wire::CqlResult&& from) {
  TCassResult result;
  if (from.__isset.schema)
    for (auto& [name, type] : from.schema.value_types) result.types.emplace(name, std::move(type));
  result.rows.reserve(from.rows.size());
  for (wire::CqlRow& row : from.rows) {
    if (result.rows.empty())
      for (wire::Column& column : row.columns) result.columns.push_back(std::move(column.name));
    TCassRow& cells = result.rows.emplace_back();
    cells.reserve(row.columns.size());
    for (wire::Column& column : row.columns) {
      TCassCell& cell = cells.emplace_back();
      if (column.__isset.value) cell = std::move(column.value);
    }
  }
  return result;
}

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

/// What the user is told of a failed connect.
std::string connectText(const std::string& error) {
  if (lowerCase(error).find("not logged in") != std::string::npos)
    return "Authentication error. You must supply valid username and password to login to Cassandra "
           "database.";
  return "Error occurred: " + error;
}

TCassandraError invalid(const std::string& why) {
  const bool unknown =
      why.starts_with("Prepared query with ID ") && why.find("not found") != std::string::npos;
  return {unknown ? TWhy::NotPrepared : TWhy::Refused, why};
}

/// Whether a server that says so is still in step with us; the others are made here, of an answer to
/// something else.
bool isInStep(const apache::thrift::TApplicationException& error) {
  switch (error.getType()) {
    case apache::thrift::TApplicationException::INVALID_MESSAGE_TYPE:
    case apache::thrift::TApplicationException::WRONG_METHOD_NAME:
    case apache::thrift::TApplicationException::BAD_SEQUENCE_ID:
    case apache::thrift::TApplicationException::MISSING_RESULT: return false;
    default: return true;
  }
}

/// What became of an attempt to connect, behind the address: "refused the connection".
std::string reasonOf(const TThriftFault& fault, const TThriftOptions& options) {
  std::string text = fault.what();
  if (text.starts_with(options.where())) text.erase(0, options.where().size());
  text.erase(0, text.find_first_not_of(": "));
  if (text.ends_with('.')) text.pop_back();
  // Nobody listens there, or a firewall stands before it.
  if (fault.kind() == TThriftFaultKind::Refused || fault.kind() == TThriftFaultKind::TimedOut)
    text +=
        "; Cassandra 4 and later have no Thrift interface, 2.2 to 3.11 have it after \"nodetool "
        "enablethrift\" or with start_rpc: true in cassandra.yaml";
  return text;
}

/// Of a server that took the connection and did not answer.
std::string hintFor(const TThriftFault& fault, const TThriftOptions& options) {
  const bool unanswered =
      fault.kind() == TThriftFaultKind::Closed || fault.kind() == TThriftFaultKind::TimedOut;
  if (unanswered && answersUnframed(options, "describe_version"))
    return " It answers without frames: its Thrift server must use the framed transport.";
  return {};
}

}  // namespace

TConsistency consistencyOf(std::string_view text) {
  const auto found = std::find(levels.begin(), levels.end(), text);
  if (found == levels.end()) return TConsistency::One;
  return static_cast<TConsistency>(found - levels.begin() + 1);
}

int majorVersionOf(std::string_view releaseVersion) {
  const std::string_view number = releaseVersion.substr(0, releaseVersion.find('.'));
  int version = 0;
  std::from_chars(number.data(), number.data() + number.size(), version);
  return version;
}

struct TCassandraClient::TConnection {
  explicit TConnection(const TThriftOptions& options) : link(options), client(link.protocol()) {}

  TThriftLink link;
  wire::CassandraClient client;
  std::string keyspace;
};

TCassandraClient::TCassandraClient(const TStoreOptions& options, std::string fixedText)
    : thrift_(thriftOptions(options, "Cassandra", usualPort)),
      record_(options.connection),
      fixedText_(std::move(fixedText)),
      readLevel_(consistencyOf(trimmedMember(record_, "readlevel"))),
      writeLevel_(consistencyOf(trimmedMember(record_, "writelevel"))) {
  connect();
}

TCassandraClient::~TCassandraClient() = default;

/// Runs a call of the generated client; what it throws becomes our error, but for a fault of the transport.
template <typename Call>
auto TCassandraClient::named(const Call& call) {
  const auto lost = [this](const std::string& why) {
    connection_.reset();
    return TCassandraError(TWhy::Lost, thrift_.where() + " sent an answer that cannot be read: " + why);
  };
  try {
    return call(*connection_);
  } catch (const wire::InvalidRequestException& error) {
    throw invalid(error.why);
  } catch (const wire::AuthenticationException& error) {
    throw TCassandraError(TWhy::Refused, error.why);
  } catch (const wire::AuthorizationException& error) {
    throw TCassandraError(TWhy::Refused, error.why);
  } catch (const wire::UnavailableException&) {
    throw TCassandraError(TWhy::Refused,
                          "The server cannot reach as many replicas as the consistency level asks for.");
  } catch (const wire::TimedOutException&) {
    throw TCassandraError(TWhy::TimedOut, "The server's replicas did not answer within its own time-out.");
  } catch (const wire::SchemaDisagreementException&) {
    throw TCassandraError(TWhy::Refused, "The server's nodes do not agree on the schema.");
  } catch (const TThriftFault&) {
    throw;
  } catch (const apache::thrift::TApplicationException& error) {
    if (error.getType() == apache::thrift::TApplicationException::UNKNOWN_METHOD)
      throw TCassandraError(TWhy::Refused, thrift_.where() + " is not Cassandra's Thrift interface.");
    if (isInStep(error)) throw TCassandraError(TWhy::Refused, error.what());
    throw lost(error.what());
  } catch (const apache::thrift::TException& error) {
    // Bytes that are no answer: where the next one begins is not known.
    throw lost(error.what());
  } catch (const std::bad_alloc&) {
    throw lost("there is not enough memory for it");
  }
}

template <typename Call>
auto TCassandraClient::guarded(const Call& call) {
  if (!connection_) throw TCassandraError(TWhy::Lost, thrift_.where() + ": there is no connection.");
  try {
    return named(call);
  } catch (const TThriftFault& fault) {
    connection_.reset();
    throw TCassandraError(fault.kind() == TThriftFaultKind::Oversized ? TWhy::Oversized : TWhy::Lost,
                          fault.what());
  }
}

void TCassandraClient::connect() {
  const auto fail = [this](const std::string& detail) {
    connection_.reset();
    throw TStoreError(TStoreErrorKind::Connect, fixedText_, detail);
  };
  try {
    connection_ = std::make_unique<TConnection>(thrift_);
  } catch (const TThriftFault& fault) {
    fail("Unable to connect to the database host: " + thrift_.where() + " (" + reasonOf(fault, thrift_) +
         ").");
  }
  try {
    greet();
    proveSession();
  } catch (const TThriftFault& fault) {
    fail(connectText(fault.what() + hintFor(fault, thrift_)));
  } catch (const TCassandraError& error) {
    fail(connectText(error.what()));
  }
}

/// A fault of the transport passes on as it is: connect() says more about it.
/// A server with another transport is silent. That is found out before the whole time for an answer is over.
void TCassandraClient::greet() {
  connection_->link.setAnswerTime(std::min(thrift_.answerTime, suspicion));
  try {
    named([](TConnection& connection) {
      std::string version;
      connection.client.describe_version(version);
    });
    connection_->link.setAnswerTime(thrift_.answerTime);
  } catch (const TThriftFault& fault) {
    const bool slow = fault.kind() == TThriftFaultKind::TimedOut && thrift_.answerTime > suspicion;
    if (!slow || answersUnframed(thrift_, "describe_version")) throw;
    connection_ = std::make_unique<TConnection>(thrift_);
  }
}

void TCassandraClient::proveSession() {
  const std::string user = trimmedMember(record_, "user");
  const std::string password = trimmedMember(record_, "password");
  if (!user.empty() && !password.empty()) {
    wire::AuthenticationRequest request;
    request.credentials = {{"username", user}, {"password", password}};
    named([&](TConnection& connection) { connection.client.login(request); });
  }
  wire::CqlResult local;
  named([&](TConnection& connection) {
    connection.client.execute_cql3_query(local, "select * from system.local", wire::Compression::NONE,
                                         wireLevel(readLevel_));
  });
  const TCassResult result = resultOf(std::move(local));
  const auto column = std::find(result.columns.begin(), result.columns.end(), "release_version");
  if (column == result.columns.end() || result.rows.empty())
    throw TCassandraError(TWhy::Refused, "The server does not tell its version.");
  majorVersion_ =
      majorVersionOf(result.rows[0][static_cast<std::size_t>(column - result.columns.begin())].value_or(""));
}

void TCassandraClient::setKeyspace(const std::string& keyspace) {
  guarded([&](TConnection& connection) {
    if (connection.keyspace == keyspace) return;
    connection.client.set_keyspace(keyspace);
    connection.keyspace = keyspace;
  });
}

std::string TCassandraClient::partitioner() {
  return guarded([&](TConnection& connection) {
    std::string name;
    connection.client.describe_partitioner(name);
    return name;
  });
}

TCassResult TCassandraClient::execute(const std::string& cql, TConsistency level) {
  return guarded([&](TConnection& connection) {
    wire::CqlResult result;
    connection.client.execute_cql3_query(result, cql, wire::Compression::NONE, wireLevel(level));
    return resultOf(std::move(result));
  });
}

TCassPrepared TCassandraClient::prepare(const std::string& cql) {
  return guarded([&](TConnection& connection) {
    wire::CqlPreparedResult result;
    connection.client.prepare_cql3_query(result, cql, wire::Compression::NONE);
    return TCassPrepared{result.itemId, std::move(result.variable_types)};
  });
}

TCassResult TCassandraClient::executePrepared(std::int32_t id, const std::vector<std::string>& values,
                                              TConsistency level) {
  return guarded([&](TConnection& connection) {
    wire::CqlResult result;
    connection.client.execute_prepared_cql3_query(result, id, values, wireLevel(level));
    return resultOf(std::move(result));
  });
}

void TCassandraClient::send(std::int32_t id, const std::vector<std::string>& values, TConsistency level) {
  guarded([&](TConnection& connection) {
    connection.link.hold();
    connection.client.send_execute_prepared_cql3_query(id, values, wireLevel(level));
  });
}

void TCassandraClient::sendNow() {
  guarded([](TConnection& connection) { connection.link.release(); });
}

void TCassandraClient::receive() {
  guarded([](TConnection& connection) {
    wire::CqlResult result;
    connection.client.recv_execute_prepared_cql3_query(result);
  });
}

}  // namespace hollowmere
