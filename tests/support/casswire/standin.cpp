#include "support/casswire/standin.h"

#include <Cassandra.h>
#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thrift/protocol/TBinaryProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <unistd.h>

#include <stdexcept>

namespace hollowmere::casswire {

namespace wire = cassandrawire;
using apache::thrift::transport::TMemoryBuffer;

namespace {

[[noreturn]] void refuse(const std::string& why) {
  wire::InvalidRequestException refusal;
  refusal.why = why;
  throw refusal;
}

bool receive(int socket, char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t got = recv(socket, bytes, count, 0);
    if (got <= 0) return false;
    bytes += got;
    count -= static_cast<std::size_t>(got);
  }
  return true;
}

void sendAll(int socket, const std::string& bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    const ssize_t put = ::send(socket, bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL);
    if (put <= 0) return;
    at += static_cast<std::size_t>(put);
  }
}

std::string methodOf(const std::string& request) {
  if (request.size() < 8) return {};
  const auto length = static_cast<std::size_t>(static_cast<unsigned char>(request[7]));
  return request.substr(8, length);
}

}  // namespace

/// One connection: its login and keyspace.
class TSession {
 public:
  std::string keyspace;
  bool loggedIn = false;
  std::optional<TFault> fault;
};

class TCassandraStandIn::THandler : public wire::CassandraNull {
 public:
  THandler(TCassandraStandIn& server, TSession& session) : server_(server), session_(session) {}

  void login(const wire::AuthenticationRequest& request) override {
    const auto& words = request.credentials;
    const auto password = words.find("password");
    session_.loggedIn = password != words.end() && password->second == server_.password_;
    if (session_.loggedIn || server_.password_.empty()) return;
    wire::AuthenticationException refusal;
    refusal.why = "Username and/or password are incorrect";
    throw refusal;
  }
  void set_keyspace(const std::string& keyspace) override {
    if (!server_.tables_.hasKeyspace(keyspace)) refuse("Keyspace '" + keyspace + "' does not exist");
    session_.keyspace = keyspace;
  }
  void describe_version(std::string& version) override { version = "20.1.0"; }
  void describe_partitioner(std::string& name) override {
    name = "org.apache.cassandra.dht.Murmur3Partitioner";
  }

  void execute_cql3_query(wire::CqlResult& result, const std::string& query, const wire::Compression::type,
                          const wire::ConsistencyLevel::type) override {
    checkLogin();
    run(result, query, session_.keyspace, {});
  }
  void prepare_cql3_query(wire::CqlPreparedResult& result, const std::string& query,
                          const wire::Compression::type) override {
    checkLogin();
    try {
      result.__set_variable_types(server_.tables_.markers(query, session_.keyspace));
    } catch (const TRefusal& refusal) {
      refuse(refusal.why);
    }
    result.count = static_cast<std::int32_t>(result.variable_types.size());
    result.itemId = static_cast<std::int32_t>(tokenOf(session_.keyspace + query));
    std::uint64_t inserts = 0;
    for (std::size_t at = 0; (at = query.find("insert into", at)) != std::string::npos; ++at) ++inserts;
    server_.prepared_[result.itemId] = {session_.keyspace, query, inserts};
  }
  void execute_prepared_cql3_query(wire::CqlResult& result, const std::int32_t itemId,
                                   const std::vector<std::string>& values,
                                   const wire::ConsistencyLevel::type) override {
    if (session_.fault == TFault::LosePrepared) server_.prepared_.clear();
    const auto found = server_.prepared_.find(itemId);
    if (found == server_.prepared_.end())
      refuse("Prepared query with ID " + std::to_string(itemId) +
             " not found (either the query was not prepared on this host (maybe the host has been "
             "restarted?) or you "
             "have prepared too many queries)");
    if (session_.fault == TFault::Unavailable) throw wire::UnavailableException();
    if (session_.fault == TFault::TimeOut) throw wire::TimedOutException();
    if (session_.fault == TFault::Refuse) refuse("told to refuse");
    const TPrepared& statement = found->second;
    if (server_.tables_.discards && statement.inserts > 0) {
      server_.tables_.written += statement.inserts;
      result.type = wire::CqlResultType::VOID;
      return;
    }
    run(result, statement.cql, statement.keyspace, values);
  }

 private:
  void checkLogin() {
    if (!server_.password_.empty() && !session_.loggedIn) refuse("You have not logged in");
    if (session_.fault == TFault::Refuse) refuse("told to refuse");
  }

  void run(wire::CqlResult& result, const std::string& cql, const std::string& keyspace,
           const std::vector<std::string>& values) {
    try {
      fill(result, server_.tables_.run(cql, keyspace, values));
    } catch (const TRefusal& refusal) {
      refuse(refusal.why);
    }
  }

  static void fill(wire::CqlResult& result, TRows rows) {
    result.type = rows.columns.empty() ? wire::CqlResultType::VOID : wire::CqlResultType::ROWS;
    if (rows.columns.empty()) return;
    wire::CqlMetadata schema;
    for (const TColumn& column : rows.columns) schema.value_types[column.name] = column.classText;
    result.__set_schema(schema);
    result.__isset.rows = true;
    for (TRow& cells : rows.rows) {
      wire::CqlRow& row = result.rows.emplace_back();
      for (std::size_t i = 0; i < cells.size(); ++i) {
        wire::Column& column = row.columns.emplace_back();
        column.name = rows.columns[i].name;
        if (cells[i]) column.__set_value(std::move(*cells[i]));
      }
    }
  }

  TCassandraStandIn& server_;
  TSession& session_;
};

TCassandraStandIn::TCassandraStandIn(const std::string& releaseVersion) : tables_(releaseVersion) { start(); }

TCassandraStandIn::~TCassandraStandIn() { stop(); }

void TCassandraStandIn::start() {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int yes = 1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port_);
  socklen_t length = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener, plain, length) != 0 || listen(listener, 64) != 0)
    throw std::runtime_error("no port to listen on");
  getsockname(listener, plain, &length);
  port_ = ntohs(address.sin_port);
  prepared_.clear();
  listener_ = listener;
  acceptor_ = std::thread([this] { accept(); });
}

void TCassandraStandIn::stop() {
  const int listener = listener_.exchange(-1);
  if (listener < 0) return;
  shutdown(listener, SHUT_RDWR);
  acceptor_.join();
  close(listener);
  std::vector<std::thread> threads;
  {
    const std::lock_guard lock(mutex_);
    for (const int each : sockets_) shutdown(each, SHUT_RDWR);
    threads.swap(threads_);
  }
  for (std::thread& thread : threads) thread.join();
}

void TCassandraStandIn::accept() {
  for (;;) {
    const int connection = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) return;
    const int yes = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    ++connections_;
    const std::lock_guard lock(mutex_);
    sockets_.push_back(connection);
    threads_.emplace_back([this, connection] { serve(connection); });
  }
}

void TCassandraStandIn::serve(int connection) {
  TSession session;
  std::string request;
  unsigned char size[4];
  while (receive(connection, reinterpret_cast<char*>(size), sizeof size)) {
    const std::size_t length =
        std::size_t{size[0]} << 24 | std::size_t{size[1]} << 16 | std::size_t{size[2]} << 8 | size[3];
    constexpr std::size_t most = 15 * 1024 * 1024;
    if (length > most) {
      ++violations_;
      break;
    }
    request.resize(length);
    if (!receive(connection, request.data(), length) || !answer(connection, request, session)) break;
  }
  const std::lock_guard lock(mutex_);
  std::erase(sockets_, connection);
  close(connection);
}

std::optional<TFault> TCassandraStandIn::faultFor(const std::string& method) {
  ++calls_[method];
  auto& planned = faults_[method];
  if (planned.empty() || planned.front().after-- > 0) return std::nullopt;
  planned.front().after = 0;
  const TFault fault = planned.front().fault;
  if (--planned.front().count == 0) planned.pop_front();
  return fault;
}

/// False when the connection is to end.
bool TCassandraStandIn::answer(int connection, const std::string& request, TSession& session) {
  const auto in =
      std::make_shared<TMemoryBuffer>(reinterpret_cast<std::uint8_t*>(const_cast<char*>(request.data())),
                                      static_cast<std::uint32_t>(request.size()));
  const auto out = std::make_shared<TMemoryBuffer>();
  {
    const std::lock_guard lock(mutex_);
    session.fault = faultFor(methodOf(request));
    if (session.fault == TFault::Close) return false;
    wire::CassandraProcessor processor(std::make_shared<THandler>(*this, session));
    using TProtocol = apache::thrift::protocol::TBinaryProtocol;
    try {
      processor.process(std::make_shared<TProtocol>(in), std::make_shared<TProtocol>(out), nullptr);
    } catch (const apache::thrift::TException&) {
      ++violations_;
      return false;
    }
  }
  if (const auto delay = delay_.load(); delay.count() > 0) std::this_thread::sleep_for(delay);
  std::string body = out->getBufferAsString();
  if (session.fault == TFault::Silence) return true;
  if (session.fault == TFault::CloseAfterRun) return false;
  if (session.fault == TFault::Garbage) body = std::string(40, '\xEE');
  std::string frame = bigEndian(session.fault == TFault::Oversize ? 0x7FFFFFFF : body.size(), 4) + body;
  if (session.fault == TFault::Tear) frame.resize(frame.size() / 2);
  sendAll(connection, frame);
  return session.fault != TFault::Tear;
}

void TCassandraStandIn::add(const std::string& name, std::vector<TColumn> columns) {
  const std::lock_guard lock(mutex_);
  tables_.add(name, std::move(columns));
}

void TCassandraStandIn::fail(const std::string& method, TFault fault, int after, int count) {
  const std::lock_guard lock(mutex_);
  faults_[method].push_back({fault, after, count});
}

int TCassandraStandIn::calls(const std::string& method) const {
  const std::lock_guard lock(mutex_);
  const auto found = calls_.find(method);
  return found == calls_.end() ? 0 : found->second;
}

}  // namespace hollowmere::casswire
