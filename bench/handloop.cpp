// What a load of a JSON file into MongoDB costs at least: a loop of parser, BSON and socket, without mapping,
// rules or reports. Inserts every line of a file, in batches, and checks that the server says it took them.

#include <arpa/inet.h>
#include <bson/bson.h>
#include <netinet/tcp.h>
#include <simdjson.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace ondemand = simdjson::ondemand;

template <typename Value>
void append(bson_t* out, std::string_view key, Value&& value);

void appendObject(bson_t* out, ondemand::object object) {
  for (auto field : object) append(out, field.unescaped_key().value(), field.value().value());
}

void appendList(bson_t* out, ondemand::array list) {
  char digits[16];
  std::uint32_t index = 0;
  for (auto element : list) {
    const char* name = nullptr;
    const std::size_t length = bson_uint32_to_string(index++, &name, digits, sizeof digits);
    append(out, {name, length}, element.value());
  }
}

template <typename Value>
void appendNumber(bson_t* out, const char* name, int length, Value& value) {
  const auto number = value.get_number().value();
  if (number.is_double())
    bson_append_double(out, name, length, number.get_double());
  else if (number.get_int64() == static_cast<std::int32_t>(number.get_int64()))
    bson_append_int32(out, name, length, static_cast<std::int32_t>(number.get_int64()));
  else
    bson_append_int64(out, name, length, number.get_int64());
}

template <typename Value>
void append(bson_t* out, std::string_view key, Value&& value) {
  const char* name = key.data();
  const int length = static_cast<int>(key.size());
  bson_t child;
  switch (value.type().value()) {
    case ondemand::json_type::object:
      bson_append_document_begin(out, name, length, &child);
      appendObject(&child, value.get_object());
      bson_append_document_end(out, &child);
      break;
    case ondemand::json_type::array:
      bson_append_array_begin(out, name, length, &child);
      appendList(&child, value.get_array());
      bson_append_array_end(out, &child);
      break;
    case ondemand::json_type::string: {
      const std::string_view text = value.get_string();
      bson_append_utf8(out, name, length, text.data(), static_cast<int>(text.size()));
      break;
    }
    case ondemand::json_type::number: appendNumber(out, name, length, value); break;
    case ondemand::json_type::boolean: bson_append_bool(out, name, length, value.get_bool()); break;
    case ondemand::json_type::null: bson_append_null(out, name, length); break;
  }
}

void put32(std::string& out, std::size_t at, std::size_t number) {
  const auto little = static_cast<std::uint32_t>(number);
  std::memcpy(out.data() + at, &little, sizeof little);
}

/// One insert command after the other on one socket.
class TInserter {
 public:
  explicit TInserter(int port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int on = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
      throw std::runtime_error("no connection");
    bson_t command = BSON_INITIALIZER;
    BSON_APPEND_UTF8(&command, "insert", "rows");
    BSON_APPEND_BOOL(&command, "ordered", false);
    BSON_APPEND_UTF8(&command, "$db", "bench");
    head_.assign(16 + 4, '\0');
    put32(head_, 12, 2013);  // OP_MSG
    head_ += '\0';
    head_.append(reinterpret_cast<const char*>(bson_get_data(&command)), command.len);
    head_ += '\1';
    sequence_ = head_.size();
    head_.append(4, '\0').append("documents", sizeof "documents");
    bson_destroy(&command);
    message_ = head_;
  }
  ~TInserter() { ::close(socket_); }
  TInserter(const TInserter&) = delete;
  TInserter& operator=(const TInserter&) = delete;

  void add(const bson_t& document) {
    message_.append(reinterpret_cast<const char*>(bson_get_data(&document)), document.len);
    ++count_;
  }

  void send() {
    if (count_ == 0) return;
    put32(message_, 0, message_.size());
    put32(message_, sequence_, message_.size() - sequence_);
    for (std::size_t sent = 0; sent < message_.size();) {
      const ssize_t put = ::send(socket_, message_.data() + sent, message_.size() - sent, MSG_NOSIGNAL);
      if (put <= 0) throw std::runtime_error("the server takes no more");
      sent += static_cast<std::size_t>(put);
    }
    checkAnswer();
    message_.resize(head_.size());
    count_ = 0;
  }

 private:
  void receive(void* into, std::size_t length) {
    if (::recv(socket_, into, length, MSG_WAITALL) != static_cast<ssize_t>(length))
      throw std::runtime_error("no answer");
  }

  void checkAnswer() {
    std::uint32_t length = 0;
    receive(&length, sizeof length);
    answer_.resize(length - sizeof length);
    receive(answer_.data(), answer_.size());
    constexpr std::size_t before = 12 + 4 + 1;  // rest of the header, flags, kind of section
    bson_t document;
    bson_iter_t iter;
    if (!bson_init_static(&document, answer_.data() + before, answer_.size() - before) ||
        !bson_iter_init_find(&iter, &document, "n") || bson_iter_as_int64(&iter) != count_)
      throw std::runtime_error("rows are refused");
  }

  int socket_;
  std::string head_;
  std::size_t sequence_ = 0;
  std::string message_;
  std::int64_t count_ = 0;
  std::vector<std::uint8_t> answer_;
};

void load(const char* name, int port, int batch) {
  FILE* file = std::fopen(name, "rb");
  if (!file) throw std::runtime_error("no such file");
  TInserter inserter(port);
  ondemand::parser parser;
  bson_t* document = bson_new();
  char* line = nullptr;
  std::size_t capacity = 0;
  int waiting = 0;
  for (ssize_t length; (length = ::getline(&line, &capacity, file)) > 0;) {
    const auto size = static_cast<std::size_t>(length);
    if (capacity < size + simdjson::SIMDJSON_PADDING)
      line = static_cast<char*>(std::realloc(line, capacity = size + simdjson::SIMDJSON_PADDING));
    auto parsed = parser.iterate(line, size, capacity).value();
    bson_reinit(document);
    bson_oid_t id;
    bson_oid_init(&id, nullptr);
    BSON_APPEND_OID(document, "_id", &id);
    appendObject(document, parsed.get_object());
    inserter.add(*document);
    if (++waiting == batch) inserter.send(), waiting = 0;
  }
  inserter.send();
  bson_destroy(document);
  std::free(line);
  std::fclose(file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: hm-bench-handloop FILE PORT BATCH\n", stderr);
    return 2;
  }
  try {
    load(argv[1], std::atoi(argv[2]), std::atoi(argv[3]));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "hm-bench-handloop: %s\n", error.what());
    return 1;
  }
  return 0;
}
