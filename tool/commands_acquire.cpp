/// acquire
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/interrupts.h"
#include "tool/parameter_json.h"
#include "tool/picture_memory.h"
#include "tool/png_file.h"
#include "tool/stimuli.h"
#include "tool/text.h"
#include "velmora/errors.h"

namespace velmora::tool {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr std::uint32_t kBuffers = 16;
constexpr int kWriters = 4;     ///< Of one port: while one writes, others take the next pictures.
constexpr Seconds kSlice{0.1};  ///< How long a wait may overlook an interrupt.

void replace(std::string& text, std::string_view mark, const std::string& value) {
  for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + value.size()))
    text.replace(at, mark.size(), value);
}

/// The files of an acquisition: a directory, or a pattern with {port} and {number}.
class PictureFiles {
 public:
  PictureFiles(const std::string& output, std::size_t ports) : pattern_(output) {
    if (output.find('{') == std::string::npos) {
      std::error_code error;
      fs::create_directories(output, error);
      if (!fs::is_directory(output))
        throw Failure(fmt::format("{}: cannot be used as a directory: {}", output,
                                  error ? error.message() : "it is a file"));
      pattern_ = fs::path(output) / "port{port}-{number}.png";
    }
    for (const auto& [mark, needed] : {std::pair{"{number}", true}, {"{port}", ports > 1}})
      if (needed && pattern_.find(mark) == std::string::npos)
        throw Failure(
            fmt::format("{}: without {} pictures would take each other's place", output, mark));
  }

  std::string nameOf(const VirtualBoardPicture& picture) const {
    std::string name = pattern_;
    replace(name, "{port}", std::to_string(picture.port));
    replace(name, "{number}", fmt::format("{:06}", picture.number));
    return name;
  }

 private:
  std::string pattern_;
};

/// One port's acquisition; runs on threads of its own, since waiting and writing block. What they
/// do not write in time is lost, and counted.
class Channel {
 public:
  Channel(Session& session, const Acquisition& acquisition, const PictureFiles* files,
          unsigned port)
      : session_(session), acquisition_(acquisition), files_(files), port_(port) {
    if (files_) memory_ = createMemory(port, kBuffers, transferLength(session, port));
  }

  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;
  ~Channel() { stop(); }

  bool start() {
    begin_ = Clock::now();
    started_ =
        succeeded("start", session_.library().acquire(session_.grabber(), port_,
                                                      acquisition_.pictures, 0, memory_.get()));
    return started_;
  }

  void run() {
    if (!started_) return;
    {
      std::vector<std::jthread> others;
      for (int i = 1; memory_ && i < kWriters; ++i) others.emplace_back([this] { takeAll(); });
      takeAll();
    }
    seconds_ = Seconds(Clock::now() - begin_).count();
    lost_ = session_.library().status(session_.grabber(), VELMORA_STATUS_LOST_PICTURES, 0,
                                      static_cast<std::int32_t>(port_), nullptr);
    stop();
  }

  /// May be called while the channel runs.
  std::string progress(std::int64_t wanted) const {
    return fmt::format("port {}: {}/{}", port_, pictures_.load(), wanted);
  }

  /// Once it has run.
  std::string result() const {
    return fmt::format("port {}: {} pictures in {:.3f} s, {:.4g} pictures/s{}", port_,
                       pictures_.load(), seconds_, rate(),
                       lost_ > 0 ? fmt::format(", {} lost", lost_) : "");
  }
  Json json() const {
    return {{"port", port_},
            {"pictures", pictures_.load()},
            {"seconds", seconds_},
            {"rate", rate()},
            {"lost", lost_}};
  }
  const Failures& failures() const { return failures_; }

 private:
  double rate() const {
    return seconds_ > 0 ? static_cast<double>(pictures_.load()) / seconds_ : 0;
  }

  void stop() {
    if (started_)
      succeeded("stop", session_.library().stopAcquire(session_.grabber(), port_, 0, 0));
    started_ = false;
  }

  /// Takes pictures until there are no more; any number of threads at the same time. The first
  /// failure ends them all, and is told.
  void takeAll() {
    try {
      while (pictures_ < acquisition_.pictures && !over() && next()) continue;
    } catch (const Failure& failure) {
      if (!failed_.exchange(true)) add(failure);
    }
  }
  bool over() const { return failed_ || Interrupts::came(); }

  /// Waits for a picture, and writes it; false when there is none.
  bool next() {
    std::int64_t code = VELMORA_BOARD_TIMEOUT;
    std::int64_t seen = pictures_;
    Seconds left(acquisition_.timeout);  // By the board's clock.
    do {
      const Seconds slice = std::min(left, memory_ ? kSlice : Seconds{1});
      code = memory_ ? take(slice) : count(slice);
      left -= slice;
      // What another thread took has come too.
      if (std::exchange(seen, pictures_.load()) != seen) left = Seconds(acquisition_.timeout);
    } while (code == VELMORA_BOARD_TIMEOUT && left > Seconds{0} && !over());
    if (code == VELMORA_BOARD_TIMEOUT && over()) return false;
    if (memory_ && code == VELMORA_BOARD_NOT_STARTED) {
      came(acquisition_.pictures);  // Those that nobody took were lost.
      return false;
    }
    if (code < 0)
      throw Failure(fmt::format("port {}: picture {}: {}", port_, pictures_ + 1, codeText(code)));
    return true;
  }

  void came(std::int64_t number) {
    const std::lock_guard guard(mutex_);
    pictures_ = std::max(pictures_.load(), number);
  }

  std::int64_t take(Seconds longest) {
    VirtualBoardPicture picture{};
    const int code = VirtualBoard_takePicture(memory_.get(), longest.count(), &picture);
    if (code != VELMORA_OK) return code;
    came(picture.number);
    if (picture.complete)
      writePng(files_->nameOf(picture), picture);
    else
      add(Failure(fmt::format("port {}: picture {} is incomplete", port_, picture.number)));
    return VirtualBoard_returnBuffer(memory_.get(), picture.buffer);
  }

  /// The runtime waits whole seconds.
  std::int64_t count(Seconds longest) {
    const std::int64_t last = session_.library().waitForPicture(
        session_.grabber(), pictures_ + 1, port_, static_cast<std::int32_t>(longest.count()), 0);
    if (last >= 0) came(std::max<std::int64_t>(last, pictures_ + 1));
    return last;
  }

  bool succeeded(const std::string& what, std::int64_t code) {
    if (code < 0) add(Failure(fmt::format("port {}: {}: {}", port_, what, codeText(code))));
    return code >= 0;
  }

  void add(const Failure& failure) {
    const std::lock_guard guard(mutex_);
    failures_.add(failure);
  }

  Session& session_;
  const Acquisition& acquisition_;
  const PictureFiles* files_;
  unsigned port_;
  PictureMemory memory_;
  Clock::time_point begin_{};
  bool started_ = false;
  std::atomic<std::int64_t> pictures_{0};
  std::atomic<bool> failed_{false};
  std::mutex mutex_;  ///< Guards failures_, and changes of pictures_.
  std::int64_t lost_ = 0;
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
  bool waitFor(Seconds time) {
    std::unique_lock guard(mutex_);
    return changed_.wait_for(guard, time, [this] { return count_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t count_;
};

/// Progress in one line of the terminal, if standard error is one.
class ProgressLine {
 public:
  void show(const std::deque<Channel>& channels, std::int64_t wanted) const {
    winsize size{};
    if (!terminal_ || ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0) return;
    std::string line;
    for (const Channel& channel : channels) line += channel.progress(wanted) + "  ";
    line.resize(std::min<std::size_t>(line.size(), size.ws_col));
    fmt::print(stderr, "\r\x1b[K{}", line);
  }
  void clear() const {
    if (terminal_) fmt::print(stderr, "\r\x1b[K");
  }

 private:
  bool terminal_ = isatty(STDERR_FILENO) != 0;
};

void runAll(std::deque<Channel>& channels, std::int64_t wanted) {
  Countdown countdown(channels.size());
  std::vector<std::jthread> threads;
  threads.reserve(channels.size());
  for (Channel& channel : channels) {
    threads.emplace_back([&] {
      channel.run();
      countdown.done();
    });
  }
  const ProgressLine line;
  do line.show(channels, wanted);
  while (!countdown.waitFor(kSlice));
  line.clear();
}

}  // namespace

void acquirePictures(Session& session, const Acquisition& acquisition) {
  std::optional<PictureFiles> files;
  if (!acquisition.output.empty()) files.emplace(acquisition.output, acquisition.ports.size());
  for (const CameraFiles& camera : acquisition.cameras) {
    if (std::ranges::find(acquisition.ports, camera.port) == acquisition.ports.end())
      throw Failure(fmt::format("--camera {}: that port does not acquire", camera.port));
    playFiles(session, camera);
  }
  const Interrupts interrupts;
  std::deque<Channel> channels;  // Channels do not move.
  for (const unsigned port : acquisition.ports)
    channels.emplace_back(session, acquisition, files ? &*files : nullptr, port).start();
  Failures failures;
  {
    const SoftwareTrigger trigger(session, acquisition.ports, acquisition.softwareTrigger,
                                  failures);
    drive(session, acquisition.triggers, true);
    runAll(channels, acquisition.pictures);
    drive(session, acquisition.triggers, false);
  }
  Json results = Json::array();
  for (const Channel& channel : channels) {
    results.push_back(channel.json());
    if (!acquisition.json) printLine(channel.result());
    failures.add(channel.failures());
  }
  const auto shown = readParameters(session, acquisition.shown, acquisition.ports, failures);
  if (acquisition.json)
    printJson({{"ports", results}, {"values", valuesJson(shown)}});
  else
    printValues(shown);
  if (Interrupts::came()) throw Interrupted(failures);
  failures.throwIfAny();
}

}  // namespace velmora::tool
