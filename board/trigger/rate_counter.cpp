#include "board/trigger/rate_counter.h"

#include <utility>

namespace board {

void RateCounter::setRate(Time now, double perSecond) {
  if (perSecond == rate_) return;
  fraction_ = std::max(elapsed(now) - static_cast<double>(taken_), 0.0);
  taken_ = 0;
  since_ = now;
  rate_ = perSecond;
}

std::int64_t RateCounter::take(Time now) {
  auto count = static_cast<std::int64_t>(elapsed(now)) + 1 - taken_;
  while (count > 0 && due(count) > now) --count;  // A nanosecond's rounding decides.
  taken_ += count;
  return count;
}

Time RateCounter::due(std::int64_t n) const {
  constexpr std::chrono::duration<double> kLongest{1e9};
  const double missing = static_cast<double>(taken_ + n) - fraction_;
  if (rate_ <= 0 || missing > kLongest.count() * rate_) return kNever;
  return since_ + std::chrono::round<Time>(std::chrono::duration<double>(missing / rate_));
}

}  // namespace board
