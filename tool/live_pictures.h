/// The latest picture of each port, as JPEG, for any number of viewers.
#pragma once

#include <turbojpeg.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "velmora/velmora.h"
#include "velmora/virtual_board.h"

namespace velmora::tool {

/// A picture to be looked at: large ones are shown with every n-th pixel only.
struct LivePicture {
  std::uint32_t port = 0;
  std::int64_t number = 0;   ///< Since the port's start.
  std::uint64_t serial = 0;  ///< Among all pictures; 0 for none.
  std::string jpeg;
};

class JpegEncoder {
 public:
  JpegEncoder() : handle_(tjInitCompress()) {}
  /// Empty when it cannot be encoded.
  std::string encode(const VirtualBoardPicture& picture);

 private:
  struct Destroy {
    void operator()(void* handle) const { tjDestroy(handle); }
  };
  std::unique_ptr<void, Destroy> handle_;
  std::vector<std::uint8_t> reduced_;
};

/// What is between the ports, which never wait for a viewer, and the viewers, who skip what they
/// are too slow for.
class LivePictures {
 public:
  using Shown = std::shared_ptr<const LivePicture>;

  /// Takes the place of the port's picture before.
  void publish(LivePicture picture);

  /// Which pictures a viewer has seen, and of which ports it wants any.
  struct Viewer {
    std::array<bool, kPorts> wanted{};
    std::array<std::uint64_t, kPorts> seen{};
  };
  /// Waits for pictures that a viewer has not seen; none when there are none in time.
  std::vector<Shown> next(Viewer& viewer, std::chrono::milliseconds longest);

  /// Whether somebody waits for pictures, or has a moment ago.
  bool watched() const;

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::array<Shown, kPorts> latest_;
  std::uint64_t serial_ = 0;
  std::chrono::steady_clock::time_point asked_{};
};

}  // namespace velmora::tool
