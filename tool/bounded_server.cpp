#include "tool/bounded_server.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <semaphore>
#include <string>
#include <utility>

namespace velmora::tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMostConnections = 48;
constexpr std::size_t kMostContent = std::size_t{1} << 20;
constexpr std::size_t kMostBytes = kMostContent + (std::size_t{1} << 16);  ///< Of a request.
constexpr int kSendBuffer = 1 << 18;              ///< Bytes on the way to a client.
constexpr std::chrono::seconds kLongestRead{10};  ///< Of a whole request.
constexpr std::chrono::seconds kLongestWrite{2};  ///< Of some bytes of an answer.
constexpr std::chrono::milliseconds kLongestRest{500};
constexpr int kSlice = 50;  ///< How long a wait may overlook the end, in milliseconds.

/// A client's socket, closed at the end.
class Connection : public httplib::Stream {
 public:
  Connection(socket_t socket, const std::atomic<bool>& ended) : socket_(socket), ended_(ended) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  /// The client gets the whole answer only if nothing that it sends stays unread.
  ~Connection() override {
    ::shutdown(socket_, SHUT_WR);
    deadline_ = Clock::now() + kLongestRest;
    while (fill() > 0) continue;
    close(socket_);
  }

  bool is_readable() const override { return true; }
  /// Of a stream, that is: whether there is still somebody.
  bool is_writable() const override {
    return wait(POLLOUT | POLLRDHUP, Clock::now() + kLongestWrite) == POLLOUT;
  }

  ssize_t read(char* bytes, std::size_t size) override {
    if (from_ == to_)
      if (const ssize_t filled = came_ < kMostBytes ? fill() : -1; filled <= 0) return filled;
    size = std::min(size, static_cast<std::size_t>(to_ - from_));
    std::copy_n(from_, size, bytes);
    from_ += size;
    return static_cast<ssize_t>(size);
  }
  ssize_t write(const char* bytes, std::size_t size) override {
    if ((wait(POLLOUT, Clock::now() + kLongestWrite) & POLLOUT) == 0) return -1;
    return send(socket_, bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
  }

  void get_remote_ip_and_port(std::string&, int&) const override {}
  void get_local_ip_and_port(std::string&, int&) const override {}
  socket_t socket() const override { return socket_; }

 private:
  /// Those of the events that have come; 0 when none has in time.
  int wait(short events, Clock::time_point until) const {
    while (!ended_ && Clock::now() < until) {
      pollfd waiting{socket_, events, 0};
      if (poll(&waiting, 1, kSlice) > 0) return waiting.revents;
    }
    return 0;
  }

  ssize_t fill() {
    if (wait(POLLIN, deadline_) == 0) return -1;
    const ssize_t size = recv(socket_, buffer_.data(), buffer_.size(), 0);
    from_ = buffer_.data();
    to_ = from_ + std::max<ssize_t>(size, 0);
    came_ += static_cast<std::size_t>(to_ - from_);
    return size;
  }

  socket_t socket_;
  const std::atomic<bool>& ended_;
  Clock::time_point deadline_ = Clock::now() + kLongestRead;
  std::size_t came_ = 0;
  std::array<char, 4096> buffer_;
  const char* from_ = buffer_.data();
  const char* to_ = from_;
};

/// Threads for connections. Those for which there is none wait in the system's queue.
class Threads : public httplib::ThreadPool {
 public:
  Threads() : ThreadPool(kMostConnections) {}
  void enqueue(std::function<void()> serve) override {
    free_.acquire();
    ThreadPool::enqueue([this, serve = std::move(serve)] {
      serve();
      free_.release();
    });
  }

 private:
  std::counting_semaphore<> free_{kMostConnections};
};

}  // namespace

BoundedServer::BoundedServer() {
  new_task_queue = [] { return new Threads; };
  // Without the library's own, which lets a second server share the port.
  set_socket_options([](socket_t socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &kSendBuffer, sizeof kSendBuffer);
  });
  set_tcp_nodelay(true);
  set_payload_max_length(kMostContent);
}

void BoundedServer::end() {
  ended_ = true;
  stop();
}

bool BoundedServer::process_and_close_socket(socket_t socket) {
  Connection connection(socket, ended_);
  bool closed = false;
  return process_request(connection, true, closed, nullptr);
}

}  // namespace velmora::tool
