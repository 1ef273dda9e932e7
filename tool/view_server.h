/// The web server of `velmora view`. `docs/viewer.md` describes what it answers.
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <thread>

#include "tool/bounded_server.h"
#include "tool/live_board.h"

namespace velmora::tool {

struct ListenAddress {
  std::string host;  ///< Without the brackets of an IPv6 address.
  int port;          ///< 0 for any that is free.
};
/// "127.0.0.1:8077", "[::1]:8077", "localhost:8077"; none for another text.
std::optional<ListenAddress> parseListenAddress(const std::string& text);

/// Serves while it lives, on threads of its own.
class ViewServer {
 public:
  /// `Failure` when the address cannot be used.
  ViewServer(LiveBoard& board, ListenAddress address);
  ViewServer(const ViewServer&) = delete;
  ViewServer& operator=(const ViewServer&) = delete;
  /// Ends all connections.
  ~ViewServer();

  /// What to open in a browser.
  std::string url() const;
  /// Whether it serves no more.
  bool ended() const { return ended_; }

 private:
  using Request = httplib::Request;
  using Response = httplib::Response;

  void guard();
  void addPage();
  void addCommands();
  void addStreams();
  template <class Next>
  void stream(Response& response, const char* type, std::chrono::steady_clock::time_point end,
              Next next);
  /// Why a request is refused; empty if it is not.
  std::string objection(const Request& request) const;
  bool isOwnHost(const std::string& host) const;

  LiveBoard& board_;
  ListenAddress address_;
  const std::string token_;
  std::atomic<int> streams_{0};
  std::atomic<bool> ended_{false};
  BoundedServer server_;
  std::jthread listener_;
};

}  // namespace velmora::tool
