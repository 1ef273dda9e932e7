/// Pulses at equal distances: what the stages of the trigger block hand on to each other, so that a
/// free-running generator costs the same whether a microsecond or a minute has passed.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace board {

using Time = std::chrono::nanoseconds;  ///< Of the board's clock.

inline constexpr Time kTick{16};
inline constexpr Time kNever = Time::max();

struct Train {
  Time first{};
  Time period{};  ///< Not used by a single pulse.
  std::int64_t count = 0;

  Time at(std::int64_t index) const { return first + index * period; }
  Time last() const { return at(count - 1); }
  /// Without the pulses before `time`.
  Train from(Time time) const {
    if (count == 0 || first >= time) return *this;
    const auto skipped = count == 1 ? 1 : std::min((time - first - Time{1}) / period + 1, count);
    return {at(skipped), period, count - skipped};
  }
  /// Every `step`-th pulse, from the one at `start` on.
  Train every(std::int64_t step, std::int64_t start = 0) const {
    if (start >= count) return {};
    const auto left = (count - 1 - start) / step + 1;
    return {at(start), left > 1 ? step * period : Time{}, left};
  }
};

inline Train pulse(Time time) { return {time, {}, 1}; }

}  // namespace board
