/// A web server on this machine that gives every request the same answer. Thread: main.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace tobrin::testing {

class RawServer final {
 public:
  /// `answer` is sent as it is, then the connection is closed.
  explicit RawServer(std::string answer) : answer_(std::move(answer)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    listening_ = socket(AF_INET, SOCK_STREAM, 0);
    if (bind(listening_, generic, size) != 0 || listen(listening_, 8) != 0 ||
        getsockname(listening_, generic, &size) != 0) {
      throw std::runtime_error("no port to listen on");
    }
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
  }
  ~RawServer() {
    shutdown(listening_, SHUT_RDWR);
    thread_.join();
    close(listening_);
  }
  RawServer(const RawServer&) = delete;
  RawServer& operator=(const RawServer&) = delete;

  [[nodiscard]] std::string url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }

  /// A complete answer; `claimed` differs from the content's size where the server lies.
  static std::string answer(const std::string& status, const std::string& content,
                            std::size_t claimed) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(claimed) +
           "\r\nConnection: close\r\n\r\n" + content;
  }

 private:
  void serve() const {
    for (;;) {
      const int connection = accept(listening_, nullptr, nullptr);
      if (connection < 0) return;
      char request[8192];
      recv(connection, request, sizeof request, 0);
      send(connection, answer_.data(), answer_.size(), MSG_NOSIGNAL);
      close(connection);
    }
  }

  std::string answer_;
  int listening_ = -1;
  int port_ = 0;
  std::thread thread_;
};

}  // namespace tobrin::testing
