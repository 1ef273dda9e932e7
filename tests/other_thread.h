/// A second thread, to see whether a lock holds it up.
#pragma once

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>

/// Runs `step` on a thread of its own; joins it at the end.
class OtherThread {
 public:
  template <class Step>
  explicit OtherThread(const Step& step)
      : thread_([this, step] {
          id_ = gettid();
          step();
          done_ = true;
        }) {}
  ~OtherThread() { thread_.join(); }

  /// Waits until the thread sleeps in its step, has spun there for long, or has done it; false when
  /// it has done it.
  bool isHeldUp() const {
    for (int looks = 0; !done_ && state() != 'S' && looks < 1000; looks += id_ != 0)
      std::this_thread::yield();
    return !done_;
  }

 private:
  /// As the kernel tells it, "<id> (<name>) <state> ...".
  char state() const {
    std::ifstream file("/proc/self/task/" + std::to_string(id_) + "/stat");
    std::string text;
    std::getline(file, text);
    const std::size_t name = text.rfind(") ");
    return name == std::string::npos ? '\0' : text[name + 2];
  }

  std::atomic<pid_t> id_{0};
  std::atomic<bool> done_{false};
  std::thread thread_;
};
