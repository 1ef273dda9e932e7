#include "tool/live_port.h"

#include <algorithm>
#include <utility>

#include "tool/code_text.h"
#include "velmora/errors.h"
#include "velmora/status.h"

namespace velmora::tool {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr std::uint64_t kMemory = std::uint64_t{128} << 20;   ///< Bytes of a port's buffers.
constexpr std::uint64_t kLargest = std::uint64_t{256} << 20;  ///< Bytes of a picture.
constexpr std::uint64_t kFewestBuffers = 3;
constexpr std::uint64_t kMostBuffers = 16;

constexpr std::int64_t kWithoutEnd = -1;
constexpr Seconds kWait{0.2};
/// Between two pictures that are shown: of what somebody looks at, and otherwise.
constexpr std::chrono::milliseconds kWatched{40};
constexpr std::chrono::milliseconds kUnwatched{1000};

constexpr std::int64_t kWindow = 2'000'000'000;  ///< Of the rate, in nanoseconds.
constexpr std::size_t kMostTimes = 64;

}  // namespace

void RateMeter::add(std::int64_t time) {
  last_ = Clock::now();
  times_.push_back(time);
  while (times_.size() > kMostTimes || (times_.size() > 2 && time - times_.front() > kWindow))
    times_.pop_front();
}

double RateMeter::rate() const {
  if (times_.size() < 2) return 0;
  const auto span = times_.back() - times_.front();
  const auto intervals = static_cast<std::int64_t>(times_.size() - 1);
  const bool over =
      Clock::now() - last_ > std::chrono::nanoseconds(std::max(kWindow, 2 * span / intervals));
  return over || span <= 0 ? 0 : 1e9 * static_cast<double>(intervals) / static_cast<double>(span);
}

void LivePort::run(bool wanted) {
  wanted_ = wanted;
  if (!wanted) stop();
  fitBuffers();
}

void LivePort::fitBuffers() {
  reason_.clear();
  const std::uint64_t bytes = transferLength(session_, port_);
  if (!wanted_ || (memory_ && bytes <= bytes_)) return;
  stop();
  try {
    start(bytes);
  } catch (const Failure& failure) {
    reason_ = failure.what();
  }
}

void LivePort::start(std::uint64_t bytes) {
  if (bytes > kLargest)
    throw Failure(fmt::format("pictures of {} bytes are too large to be shown", bytes));
  const auto buffers =
      std::clamp(kMemory / std::max<std::uint64_t>(bytes, 1), kFewestBuffers, kMostBuffers);
  PictureMemory memory = createMemory(port_, static_cast<std::uint32_t>(buffers), bytes);
  {
    const std::lock_guard guard(mutex_);
    number_ = incomplete_ = 0;
    meter_ = {};
  }
  const int code =
      session_.library().acquire(session_.grabber(), port_, kWithoutEnd, 0, memory.get());
  if (code < 0) throw Failure(codeText(code));
  bytes_ = bytes;
  memory_ = std::move(memory);
  taker_ = std::jthread([this](const std::stop_token& stop) { takeAll(stop); });
}

void LivePort::stop() {
  if (!memory_) return;
  session_.library().stopAcquire(session_.grabber(), port_, 0, 0);
  taker_ = {};
  memory_.reset();
}

Json LivePort::state() {
  const std::int64_t lost =
      session_.library().status(session_.grabber(), VELMORA_STATUS_LOST_PICTURES, 0,
                                static_cast<std::int32_t>(port_), nullptr);
  const std::lock_guard guard(mutex_);
  return {{"port", port_},
          {"acquiring", memory_ != nullptr},
          {"pictures", number_},
          {"rate", memory_ ? meter_.rate() : 0.0},
          {"lost", std::max<std::int64_t>(lost, 0)},
          {"incomplete", incomplete_},
          {"reason", reason_}};
}

/// Keeps a picture until the next may be shown, and the last one in any case.
void LivePort::takeAll(const std::stop_token& stop) {
  std::optional<VirtualBoardPicture> kept;
  const auto giveBack = [&] {
    if (kept) VirtualBoard_returnBuffer(memory_.get(), kept->buffer);
    kept.reset();
  };
  Clock::time_point shown{};
  while (!stop.stop_requested()) {
    const Clock::time_point due = shown + (pictures_.watched() ? kWatched : kUnwatched);
    const Seconds wait = kept ? Seconds(due - Clock::now()) : kWait;
    VirtualBoardPicture picture{};
    const int code = VirtualBoard_takePicture(
        memory_.get(), std::clamp(wait, Seconds{0}, kWait).count(), &picture);
    if (code == VELMORA_OK) {
      giveBack();
      kept = picture;
      note(picture);
    }
    if (code != VELMORA_OK && code != VELMORA_BOARD_TIMEOUT) break;
    if (!kept || Clock::now() < due) continue;
    show(*kept);
    shown = Clock::now();
    giveBack();
  }
  if (kept) show(*kept);
}

void LivePort::note(const VirtualBoardPicture& picture) {
  const std::lock_guard guard(mutex_);
  number_ = picture.number;
  if (picture.complete == 0) ++incomplete_;
  meter_.add(picture.time);
}

void LivePort::show(const VirtualBoardPicture& picture) {
  if (picture.complete == 0) return;
  if (std::string jpeg = encoder_.encode(picture); !jpeg.empty())
    pictures_.publish({port_, picture.number, 0, std::move(jpeg)});
}

}  // namespace velmora::tool
