#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>

namespace hollowmere {

/// Answers every HTTP request on a free loopback port with the same bytes, and what is no HTTP, too; with
/// none it says nothing.
class THttpPeer {
 public:
  explicit THttpPeer(std::string answer)
      : answer_(std::move(answer)), listener_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in name{};
    name.sin_family = AF_INET;
    name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof name;
    auto* any = reinterpret_cast<sockaddr*>(&name);
    if (::bind(listener_, any, size) != 0 || ::listen(listener_, 4) != 0 ||
        ::getsockname(listener_, any, &size) != 0)
      throw std::runtime_error("no free port on loopback");
    port_ = ntohs(name.sin_port);
    thread_ = std::jthread([this] { serve(); });
  }
  ~THttpPeer() {
    ::shutdown(listener_, SHUT_RDWR);
    thread_.join();
    ::close(listener_);
  }
  THttpPeer(const THttpPeer&) = delete;
  THttpPeer& operator=(const THttpPeer&) = delete;

  static std::string ok(const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
  }

  [[nodiscard]] std::string address(const std::string& path = "/") const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }
  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] int requests() const { return requests_; }

 private:
  void serve() {
    for (;;) {
      const int peer = ::accept(listener_, nullptr, nullptr);
      if (peer < 0) return;
      ++requests_;
      std::string request;
      char part[1024];
      while (request.find("\r\n\r\n") == std::string::npos && (request.empty() || request[0] > ' ')) {
        const auto got = ::recv(peer, part, sizeof part, 0);
        if (got <= 0) break;
        request.append(part, static_cast<std::size_t>(got));
      }
      if (answer_.empty())
        while (::recv(peer, part, sizeof part, 0) > 0) continue;  // until the other one gives up
      else
        ::send(peer, answer_.data(), answer_.size(), MSG_NOSIGNAL);
      ::close(peer);
    }
  }

  std::string answer_;
  int listener_;
  std::uint16_t port_ = 0;
  std::atomic<int> requests_ = 0;
  std::jthread thread_;
};

}  // namespace hollowmere
