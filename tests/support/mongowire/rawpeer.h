#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace hollowmere::mongowire {

/// A plain socket to a port on loopback, for bytes that no driver would send.
class TRawPeer {
 public:
  explicit TRawPeer(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    connected_ = ::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  ~TRawPeer() { ::close(socket_); }
  TRawPeer(const TRawPeer&) = delete;
  TRawPeer& operator=(const TRawPeer&) = delete;

  bool connected() const { return connected_; }
  bool send(std::string_view bytes) {
    return ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
  }
  void endSending() { ::shutdown(socket_, SHUT_WR); }
  /// All that comes until the other side closes.
  std::string receiveAll() {
    std::string all;
    char bytes[4096];
    for (ssize_t got; (got = ::recv(socket_, bytes, sizeof bytes, 0)) > 0;)
      all.append(bytes, static_cast<std::size_t>(got));
    return all;
  }

 private:
  const int socket_;
  bool connected_ = false;
};

inline std::string littleEndian(std::int32_t value) {
  return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

/// A frame with a header of its own; the length is right unless another is given.
inline std::string frameOf(std::int32_t opcode, const std::string& payload, std::int32_t claimed = -1) {
  const auto length = static_cast<std::int32_t>(payload.size() + 16);
  return littleEndian(claimed >= 0 ? claimed : length) + littleEndian(1) + littleEndian(0) +
         littleEndian(opcode) + payload;
}

}  // namespace hollowmere::mongowire
