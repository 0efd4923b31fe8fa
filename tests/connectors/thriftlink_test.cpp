#include "connectors/thrift/thriftlink.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <functional>
#include <thread>

#include "connectors/cassandra/cassandraclient.h"
#include "connectors/hbase/hbaseclient.h"
#include "connectors/hbase/hbasefault.h"

namespace hollowmere {
namespace {

using std::chrono::milliseconds;
using TTime = std::chrono::steady_clock;

/// Takes one connection after another on loopback and lets a script have them.
class TScriptedPeer {
 public:
  using TScript = std::function<void(int connection)>;

  explicit TScriptedPeer(TScript script, int connections = 1) : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* plain = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(listener_, plain, length), 0);
    EXPECT_EQ(listen(listener_, 8), 0);
    getsockname(listener_, plain, &length);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this, script = std::move(script), connections] {
      for (int i = 0; i < connections; ++i) {
        const int connection = accept(listener_, nullptr, nullptr);
        if (connection < 0) return;
        script(connection);
        ::close(connection);
      }
    });
  }
  ~TScriptedPeer() {
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    ::close(listener_);
  }
  TScriptedPeer(const TScriptedPeer&) = delete;
  TScriptedPeer& operator=(const TScriptedPeer&) = delete;

  [[nodiscard]] TThriftOptions options() const {
    TThriftOptions options;
    options.host = "127.0.0.1";
    options.port = port_;
    return options;
  }

 private:
  int listener_;
  std::uint16_t port_ = 0;
  std::thread thread_;
};

void say(int connection, std::string_view bytes) {
  EXPECT_EQ(send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
}

std::string hear(int connection) {
  char bytes[65536];
  const ssize_t got = recv(connection, bytes, sizeof bytes, 0);
  return {bytes, static_cast<std::size_t>(std::max<ssize_t>(0, got))};
}

/// The bytes of a reply with one text in it.
std::string replyBytes(const std::string& text) {
  const std::string body = std::string("\x80\x01\x00\x02\x00\x00\x00\x01p\x00\x00\x00\x00", 13) +
                           std::string(3, '\0') + static_cast<char>(text.size()) + text;
  return std::string(3, '\0') + static_cast<char>(body.size()) + body;
}

void sendCall(TThriftLink& link) {
  auto& out = *link.protocol();
  out.writeMessageBegin("ping", apache::thrift::protocol::T_CALL, 0);
  out.writeMessageEnd();
  out.getTransport()->writeEnd();
  out.getTransport()->flush();
}

std::string readReply(TThriftLink& link) {
  auto& in = *link.protocol();
  std::string name, text;
  apache::thrift::protocol::TMessageType type{};
  std::int32_t sequence = 0;
  in.readMessageBegin(name, type, sequence);
  in.readString(text);
  in.readMessageEnd();
  in.getTransport()->readEnd();
  return text;
}

/// One call; the fault's text, or the reply.
std::string callText(const TThriftOptions& options, TThriftFaultKind* kind = nullptr) {
  try {
    TThriftLink link(options);
    sendCall(link);
    return readReply(link);
  } catch (const TThriftFault& fault) {
    if (kind) *kind = fault.kind();
    return fault.what();
  }
}

TEST(ThriftLink, CallsAreHeldAndAnsweredInOrder) {
  std::string heard;
  TScriptedPeer peer([&](int connection) {
    heard = hear(connection);
    say(connection, replyBytes("one") + replyBytes("two"));
    hear(connection);
  });
  TThriftLink link(peer.options());
  link.hold();
  sendCall(link);
  sendCall(link);
  link.release();
  EXPECT_EQ(readReply(link), "one");
  EXPECT_EQ(readReply(link), "two");
  EXPECT_EQ(heard.size(), link.sentBytes());
  EXPECT_EQ(heard.substr(0, 8), heard.substr(heard.size() / 2, 8));
}

struct TWrongAnswer {
  std::string bytes;
  TThriftFaultKind kind;
  std::string text;  ///< behind the address
};

TEST(ThriftLink, WrongAnswersAreNamed) {
  const std::vector<TWrongAnswer> answers = {
      {"", TThriftFaultKind::Closed, " closed the connection without an answer."},
      {std::string("\0\0", 2), TThriftFaultKind::Torn, " ended the connection within an answer."},
      {replyBytes("cut").substr(0, 12), TThriftFaultKind::Torn, " ended the connection within an answer."},
      {std::string("\0\0\0\x0d\x80\x01\0\x02\0\0\0\x01p\0\0\0\0", 17), TThriftFaultKind::Torn,
       " sent an answer that is cut short."},
      {"\x7f\xff\xff\xff", TThriftFaultKind::Oversized,
       " announced an answer of 2147483647 bytes; at most 268435456 are taken."},
      {"\xff\xff\xff\xff", TThriftFaultKind::Oversized,
       " announced an answer of 4294967295 bytes; at most 268435456 are taken."},
      {std::string("\x80\x01\0\x02", 4), TThriftFaultKind::NotFramed,
       " answers without frames; it must use the framed transport."},
      {std::string("\x83\0\0\0\0\0\0\0\x04", 9), TThriftFaultKind::NotFramed,
       " answers in Cassandra's native protocol; the Thrift interface is on another port (9160)."},
      {"HTTP/1.1 400 Bad Request\r\n\r\n", TThriftFaultKind::NotFramed,
       " is a web server, not a Thrift server with framed transport."},
  };
  for (const TWrongAnswer& answer : answers) {
    TScriptedPeer peer([&](int connection) {
      hear(connection);
      say(connection, answer.bytes);
      // Silence, where the bytes themselves are to be the fault.
      if (answer.text.find("cut short") != std::string::npos) hear(connection);
    });
    TThriftFaultKind kind{};
    EXPECT_EQ(callText(peer.options(), &kind), peer.options().where() + answer.text);
    EXPECT_EQ(kind, answer.kind);
  }
}

TEST(ThriftLink, RefusedUnknownAndSilent) {
  TThriftOptions nobody;
  {
    TScriptedPeer gone([](int) {}, 0);
    nobody = gone.options();
  }
  TThriftFaultKind kind{};
  EXPECT_EQ(callText(nobody, &kind), nobody.where() + " refused the connection.");
  EXPECT_EQ(kind, TThriftFaultKind::Refused);
  nobody.host = "no-such-host.invalid";
  callText(nobody, &kind);
  EXPECT_EQ(kind, TThriftFaultKind::Unreachable);

  TScriptedPeer silent([](int connection) {
    hear(connection);
    hear(connection);
  });
  TThriftOptions options = silent.options();
  options.answerTime = milliseconds(200);
  EXPECT_EQ(callText(options, &kind), options.where() + " did not answer within 1 second.");
  EXPECT_EQ(kind, TThriftFaultKind::TimedOut);
}

TEST(ThriftLink, AServerThatTakesNoConnectionIsAskedOnce) {
  // A listener with more guests than seats answers no further one.
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  ASSERT_EQ(bind(listener, plain, length), 0);
  ASSERT_EQ(listen(listener, 0), 0);
  getsockname(listener, plain, &length);
  std::vector<int> guests;
  for (int i = 0; i < 4; ++i) {
    guests.push_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
    connect(guests.back(), plain, length);
  }
  TStoreOptions options;
  options.connection =
      TObject{{"host", "127.0.0.1"}, {"port", static_cast<int>(ntohs(address.sin_port))}, {"timeout", 1}};
  const auto begin = TTime::now();
  try {
    TCassandraClient client(options, "No connection.");
    ADD_FAILURE() << "it connected";
  } catch (const TStoreError& error) {
    EXPECT_NE(
        error.detail().find(" (took no connection within 1 second; Cassandra 4 and later have no Thrift"),
        std::string::npos)
        << error.detail();
  }
  EXPECT_LT(TTime::now() - begin, milliseconds(1800));
  for (const int guest : guests) ::close(guest);
  ::close(listener);
}

TEST(ThriftLink, AStopEndsWaiting) {
  TScriptedPeer silent([](int connection) {
    hear(connection);
    hear(connection);
  });
  TStopFlag stop;
  TThriftOptions options = silent.options();
  options.stop = &stop;
  const auto begin = TTime::now();
  std::thread stopper([&] {
    std::this_thread::sleep_for(milliseconds(100));
    stop.set();
  });
  TThriftFaultKind kind{};
  callText(options, &kind);
  stopper.join();
  EXPECT_EQ(kind, TThriftFaultKind::Stopped);
  EXPECT_LT(TTime::now() - begin, milliseconds(3000));
}

TEST(ThriftLink, ACallAfterTheStopIsStillAnswered) {
  TScriptedPeer slow([](int connection) {
    hear(connection);
    std::this_thread::sleep_for(milliseconds(200));
    say(connection, replyBytes("late"));
  });
  TStopFlag stop;
  TThriftOptions options = slow.options();
  options.stop = &stop;
  TThriftLink link(options);
  stop.set();
  std::this_thread::sleep_for(milliseconds(1100));
  sendCall(link);
  EXPECT_EQ(readReply(link), "late");
}

/// A framed reply: the method, and the bytes of the result.
std::string replyOf(const std::string& method, std::string_view result) {
  const std::string body = std::string("\x80\x01\0\x02\0\0\0", 7) + static_cast<char>(method.size()) +
                           method + std::string(4, '\0') + std::string(result);
  return std::string(3, '\0') + static_cast<char>(body.size()) + body;
}

constexpr std::string_view manyRows("\x0f\0\0\x0c\x7f\xff\xff\xff", 8);  // list of structs, 2^31 - 1 of them
constexpr std::string_view longText("\x0f\0\0\x0b\0\0\0\1\x7f\xff\xff\xff",
                                    12);  // list with one text of 2 GB
constexpr std::string_view version("\x0b\0\0\0\0\0\1v\0", 9);
constexpr std::string_view noNames("\x0f\0\0\x0b\0\0\0\0\0", 9);

TEST(ThriftLink, AnswersThatClaimMoreThanTheyHoldAreRefusedBeforeMemoryIsTaken) {
  // Within the struct of a result: its rows, or the name of its first row's first column.
  const std::string manyCassRows = std::string("\x0c\0\0\x0f\0\2", 6) + std::string(manyRows.substr(3));
  const std::string longCassText = std::string("\x0c\0\0\x0f\0\2\x0c\0\0\0\1\x0b\0\1\x7f\xff\xff\xff", 18);
  for (const std::string& lie : {manyCassRows, longCassText}) {
    TScriptedPeer peer([&](int connection) {
      hear(connection);
      say(connection, replyOf("describe_version", version));
      hear(connection);
      say(connection, replyOf("execute_cql3_query", lie));
      hear(connection);
    });
    TStoreOptions options;
    options.connection = TObject{{"host", "127.0.0.1"}, {"port", static_cast<int>(peer.options().port)}};
    try {
      TCassandraClient client(options, "No connection.");
      ADD_FAILURE() << "it was believed";
    } catch (const TStoreError& error) {
      EXPECT_NE(error.detail().find("cannot be read: TProtocolException: Exceeded size limit"),
                std::string::npos)
          << error.detail();
    }
  }
  for (const std::string_view lie : {manyRows, longText}) {
    TScriptedPeer peer([&](int connection) {
      hear(connection);
      say(connection, replyOf("getTableNames", noNames));
      hear(connection);
      say(connection, replyOf(lie == longText ? "getTableNames" : "getTableRegions", lie));
      hear(connection);
    });
    TThriftOptions options = peer.options();
    options.answerTime = milliseconds(2000);
    THBaseClient client(options);
    try {
      if (lie == longText)
        client.tables();
      else
        client.regions("t");
      ADD_FAILURE() << "it was believed";
    } catch (const THBaseFault& fault) {
      EXPECT_NE(std::string(fault.what()).find("Exceeded size limit"), std::string::npos) << fault.what();
    }
  }
}

TEST(ThriftLink, AnUnframedServerIsRecognised) {
  std::string heard;
  TScriptedPeer unframed([&](int connection) {
    heard = hear(connection);
    if (heard.starts_with("\x80\x01")) say(connection, std::string("\x80\x01\0\x02", 4));
  });
  EXPECT_TRUE(answersUnframed(unframed.options(), "describe_version"));
  EXPECT_EQ(heard.substr(8, 16), "describe_version");
  TScriptedPeer framed([](int connection) { hear(connection); });
  EXPECT_FALSE(answersUnframed(framed.options(), "describe_version"));
}

TEST(ThriftLink, OptionsComeFromTheRecord) {
  TStoreOptions store;
  store.connection = TObject{{"host", " db "}, {"port", "9161"}, {"timeout", 3}};
  const TThriftOptions options = thriftOptions(store, "Cassandra", 9160);
  EXPECT_EQ(options.where(), "db:9161");
  EXPECT_EQ(options.answerTime, std::chrono::seconds(3));
  store.connection = TObject{};
  EXPECT_EQ(thriftOptions(store, "Cassandra", 9160).where(), "localhost:9160");
  for (const TValue& port : {TValue(0), TValue("x"), TValue(70000), TValue(true)}) {
    store.connection = TObject{{"port", port}};
    EXPECT_THROW(thriftOptions(store, "Cassandra", 9160), TStoreError);
  }
}

}  // namespace
}  // namespace hollowmere
