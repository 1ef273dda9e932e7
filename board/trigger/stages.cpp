#include "board/trigger/stages.h"

#include <cmath>
#include <limits>

namespace board {
namespace {

constexpr std::uint32_t kGeneratorOverhead = 9;  // ticks
constexpr Time kDebounceUnit = 3 * kTick;

std::uint32_t atLeastOne(std::uint32_t value) { return std::max<std::uint32_t>(value, 1); }

}  // namespace

Train Downscaler::pass(const Train& in, std::uint32_t length, std::uint32_t selected) {
  const std::int64_t series = atLeastOne(length), wanted = atLeastOne(selected);
  const std::int64_t begun = position % series;
  position = static_cast<std::uint32_t>((begun + in.count) % series);
  if (wanted > series) return {};
  return in.every(series, (wanted - 1 - begun + series) % series);
}

Time Generator::period(const Registers& set) {
  return (std::int64_t{set[kMinimumPeriod]} + kGeneratorOverhead) * kTick;
}

std::uint32_t Generator::limit(const Registers& set) {
  return set[kQueueEnabled] != 0 ? atLeastOne(set[kQueueLimit]) : 1;
}

void Generator::restart(Registers& set, Time now) {
  *this = {};
  set[kQueueLevel] = 0;
  if (!queued(set)) last = now;
}

bool Generator::push(Registers& set) {
  const bool kept = set[kQueueLevel] < limit(set);
  if (kept) ++set[kQueueLevel];
  return kept;
}

Time Generator::next(const Registers& set, Time now) const {
  const bool idle = queued(set) && set[kQueueLevel] == 0 && played == 0;
  return set[kHold] != 0 || idle ? kNever : std::max(last + period(set), now);
}

Train Generator::take(Registers& set, Time now, Time to) {
  const Time first = next(set, now);
  if (first > to) return {};
  Train pulses{first, period(set), (to - first) / period(set) + 1};
  if (queued(set)) {
    const auto length = atLeastOne(set[kSequenceLength]);
    const auto selected = std::min(atLeastOne(set[kSequenceSelected]), length);
    const auto end = played < selected ? selected : std::max(length, played + 1);
    pulses.count = std::min<std::int64_t>(pulses.count, end - played);
    played += static_cast<std::uint32_t>(pulses.count);
    if (played == selected && set[kQueueLevel] > 0) --set[kQueueLevel];
    if (played >= length) played = 0;
  }
  last = pulses.last();
  return pulses;
}

void InputStatistics::add(Registers& set, Time time) {
  ++set[kInputPulses];
  if (last != kNever) {
    constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
    const auto period = static_cast<std::uint32_t>(std::min((time - last) / kTick, kMost));
    set[kInputPeriod] = period;
    set[kInputMinimum] = set[kInputMaximum] == 0 ? period : std::min(set[kInputMinimum], period);
    set[kInputMaximum] = std::max(set[kInputMaximum], period);
  }
  last = time;
}

Time Input::nextEdge() const {
  constexpr double kLongest = 1e18;
  const double offset = static_cast<double>(edge) * half;
  return edge < edges && offset < kLongest ? start + Time{std::llround(offset)} : kNever;
}

void Input::set(bool high, Time now, std::uint32_t debounce) {
  if (high == raw) return;
  raw = high;
  accept = raw == level ? kNever : now + debounce * kDebounceUnit;
}

}  // namespace board
