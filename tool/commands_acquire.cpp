/// acquire
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>
#include <thread>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

using Clock = std::chrono::steady_clock;

/// One port's acquisition; runs on a thread of its own, since the wait for a picture blocks.
class Channel {
 public:
  explicit Channel(unsigned port) : port_(port) {}

  void run(Session& session, const Acquisition& acquisition) {
    const AppletLibrary& library = session.library();
    Fg_Struct* const grabber = session.grabber();
    const auto start = Clock::now();
    if (!succeeded("start", library.acquire(grabber, port_, acquisition.pictures, 0, nullptr)))
      return;
    while (pictures_ < acquisition.pictures) {
      const std::int64_t next = pictures_ + 1;
      const std::int64_t last =
          library.waitForPicture(grabber, next, port_, acquisition.timeout, 0);
      if (!succeeded(fmt::format("picture {}", next), last)) break;
      pictures_ = std::max(last, next);
    }
    seconds_ = std::chrono::duration<double>(Clock::now() - start).count();
    succeeded("stop", library.stopAcquire(grabber, port_, 0, 0));
  }

  /// May be called while the channel runs.
  std::string progress(std::int64_t wanted) const {
    return fmt::format("port {}: {}/{}", port_, pictures_.load(), wanted);
  }

  /// Once it has run.
  std::string result() const {
    const std::int64_t pictures = pictures_;
    const std::string rate =
        seconds_ > 0 ? fmt::format("{:.4g}", static_cast<double>(pictures) / seconds_) : "0";
    return fmt::format("port {}: {} pictures in {:.3f} s, {} pictures/s", port_, pictures, seconds_,
                       rate);
  }
  const Failures& failures() const { return failures_; }

 private:
  bool succeeded(const std::string& what, std::int64_t code) {
    if (code < 0)
      failures_.add(Failure(fmt::format("port {}: {}: {}", port_, what, codeText(code))));
    return code >= 0;
  }

  unsigned port_;
  std::atomic<std::int64_t> pictures_{0};
  double seconds_ = 0;
  Failures failures_;
};

/// Lets one thread wait, for a limited time, until the others are done.
class Countdown {
 public:
  explicit Countdown(std::size_t count) : count_(count) {}
  void done() {
    const std::lock_guard guard(mutex_);
    --count_;
    changed_.notify_all();
  }
  /// Whether all were done within the time.
  bool waitFor(std::chrono::milliseconds time) {
    std::unique_lock guard(mutex_);
    return changed_.wait_for(guard, time, [this] { return count_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t count_;
};

/// Progress that overwrites its line on a terminal and adds lines elsewhere.
class ProgressLine {
 public:
  std::chrono::milliseconds interval() const {
    return std::chrono::milliseconds(terminal_ ? 100 : 1000);
  }
  void show(const std::string& text) const {
    fmt::print("{}{}{}", terminal_ ? "\r\x1b[K" : "", text, terminal_ ? "" : "\n");
    std::fflush(stdout);
  }
  void clear() const {
    if (terminal_) fmt::print("\r\x1b[K");
  }

 private:
  bool terminal_ = isatty(STDOUT_FILENO) != 0;
};

std::string progress(const std::deque<Channel>& channels, std::int64_t wanted) {
  std::string line;
  for (const Channel& channel : channels)
    line += (line.empty() ? "" : "  ") + channel.progress(wanted);
  return line;
}

}  // namespace

void acquirePictures(Session& session, const Acquisition& acquisition) {
  std::deque<Channel> channels;  // Channels do not move.
  for (const unsigned port : acquisition.ports) channels.emplace_back(port);
  Countdown countdown(channels.size());
  std::vector<std::jthread> threads;
  threads.reserve(channels.size());
  for (Channel& channel : channels) {
    threads.emplace_back([&] {
      channel.run(session, acquisition);
      countdown.done();
    });
  }
  const ProgressLine line;
  do line.show(progress(channels, acquisition.pictures));
  while (!countdown.waitFor(line.interval()));
  line.clear();
  threads.clear();
  Failures failures;
  for (const Channel& channel : channels) {
    printLine(channel.result());
    failures.add(channel.failures());
  }
  failures.throwIfAny();
}

}  // namespace velmora::tool
