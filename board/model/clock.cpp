#include "board/model/clock.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

#include "board/model/immortal.h"

namespace board {
namespace {

std::atomic<bool> clockReplaced{false};
std::mutex clockMutex;

/// Without functions while the steady clock is in use.
Clock replacedClock() {
  if (!clockReplaced.load(std::memory_order_relaxed)) return {};
  const std::lock_guard guard(clockMutex);
  return immortal<Clock>();
}

}  // namespace

void setClock(Clock clock) {
  const bool replaces = clock.now || clock.sleep;
  if (!replaces) clock.context.reset();
  const std::lock_guard guard(clockMutex);
  clockReplaced = replaces;
  std::swap(immortal<Clock>(), clock);  // The old context is released without the lock.
}

std::chrono::nanoseconds now() {
  const auto clock = replacedClock();
  return clock.now ? std::chrono::nanoseconds(clock.now(clock.context.get()))
                   : std::chrono::steady_clock::now().time_since_epoch();
}

void sleepFor(std::chrono::nanoseconds time) {
  const auto clock = replacedClock();
  if (clock.sleep) {
    clock.sleep(clock.context.get(), time.count());
  } else {
    std::this_thread::sleep_for(time);
  }
}

}  // namespace board
