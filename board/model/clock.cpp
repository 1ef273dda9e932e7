#include "board/model/clock.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "board/control.h"

namespace board {
namespace {

struct Clock {
  std::function<std::chrono::nanoseconds()> now;
  std::function<void(std::chrono::nanoseconds)> sleep;
};

std::atomic<bool> clockReplaced{false};
std::mutex clockMutex;

/// Never destroyed: the board may be in use while the process exits.
std::shared_ptr<const Clock>& replacement() {
  static auto& clock = *new std::shared_ptr<const Clock>;
  return clock;
}

/// Null while the steady clock is in use.
std::shared_ptr<const Clock> replacedClock() {
  if (!clockReplaced.load(std::memory_order_relaxed)) return nullptr;
  const std::lock_guard guard(clockMutex);
  return replacement();
}

}  // namespace

void setClock(std::function<std::chrono::nanoseconds()> now,
              std::function<void(std::chrono::nanoseconds)> sleep) {
  const std::lock_guard guard(clockMutex);
  clockReplaced = now || sleep;
  replacement() = std::make_shared<const Clock>(Clock{std::move(now), std::move(sleep)});
}

std::chrono::nanoseconds now() {
  const auto clock = replacedClock();
  return clock && clock->now ? clock->now() : std::chrono::steady_clock::now().time_since_epoch();
}

void sleepFor(std::chrono::nanoseconds time) {
  const auto clock = replacedClock();
  if (clock && clock->sleep) {
    clock->sleep(time);
  } else {
    std::this_thread::sleep_for(time);
  }
}

}  // namespace board
