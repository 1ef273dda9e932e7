/// A port that acquires without end for viewers.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

#include "tool/live_pictures.h"
#include "tool/parameter_json.h"
#include "tool/picture_memory.h"

namespace velmora::tool {

/// Pictures in a second, by the times when the cameras took them.
class RateMeter {
 public:
  using Clock = std::chrono::steady_clock;

  void add(std::int64_t time);
  /// 0 when none has come for a while.
  double rate() const;

 private:
  std::deque<std::int64_t> times_;
  Clock::time_point last_{};
};

/// Its functions are called by one thread at a time. A thread of its own takes the pictures.
class LivePort {
 public:
  LivePort(Session& session, unsigned port, LivePictures& pictures)
      : session_(session), port_(port), pictures_(pictures) {}
  LivePort(const LivePort&) = delete;
  LivePort& operator=(const LivePort&) = delete;
  ~LivePort() { stop(); }

  /// From now on, or not. Where that does not work, `state` tells why.
  void run(bool wanted);
  /// Starts again if it is to run and does not, or if its pictures have outgrown their buffers.
  void fitBuffers();

  /// {"port", "acquiring", "pictures", "rate", "lost", "incomplete", "reason"}
  Json state();

 private:
  void start(std::uint64_t bytes);
  void stop();
  void takeAll(const std::stop_token& stop);
  void note(const VirtualBoardPicture& picture);
  void show(const VirtualBoardPicture& picture);

  Session& session_;
  unsigned port_;
  LivePictures& pictures_;
  bool wanted_ = false;
  std::string reason_;       ///< Why it does not run although it is to; may be empty.
  std::uint64_t bytes_ = 0;  ///< Of a buffer.
  PictureMemory memory_;
  std::jthread taker_;
  JpegEncoder encoder_;

  std::mutex mutex_;  ///< Guards what follows.
  std::int64_t number_ = 0;
  std::int64_t incomplete_ = 0;
  RateMeter meter_;
};

}  // namespace velmora::tool
