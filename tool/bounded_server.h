/// A web server that no client can fill or keep from ending.
#pragma once

#include <httplib.h>

#include <atomic>

namespace velmora::tool {

/// What the library's own server leaves open is limited here: the bytes of a request, the time that
/// it may take, the number of connections, and how long a client may take nothing of its answer.
/// A connection serves one request.
class BoundedServer : public httplib::Server {
 public:
  BoundedServer();
  /// Ends what is being served; `listen_after_bind` returns.
  void end();
  /// Whether `end` was called.
  bool ended() const { return ended_; }

 private:
  bool process_and_close_socket(socket_t socket) override;

  std::atomic<bool> ended_{false};
};

}  // namespace velmora::tool
