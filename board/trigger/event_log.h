/// The design's events, as far as somebody listens.
#pragma once

#include <array>
#include <deque>
#include <optional>
#include <string_view>
#include <vector>

#include "board/trigger/train.h"

namespace board {

enum EventKind : unsigned {
  kTransferStart,  ///< Numbered by camera port, as all but the input events.
  kTransferEnd,
  kInputRises,  ///< Numbered by input.
  kInputFalls,
  kPeriodExceeded,
  kFrameMissing,
  kThresholdOn,
  kThresholdOff,
  kOutputPulse,
  kEventKinds
};

class EventLog {
 public:
  static constexpr std::size_t kCapacity = 4096;
  static constexpr unsigned kNumbers = 8;
  struct Entry {
    unsigned index;  ///< In the design's list of events.
    Time time;
  };

  EventLog() { setNames({}); }
  /// The design's events in their order. Forgets what was recorded, and the mask.
  void setNames(const std::vector<std::string_view>& names);
  /// Listens to the events whose bits are set, `1 << index`, from now on.
  void enable(std::uint64_t mask) { mask_ = mask; }
  bool listens(EventKind kind, unsigned number) const;
  void record(EventKind kind, unsigned number, const Train& times);
  /// The oldest event. If more are waiting than there is room for, the oldest are lost.
  std::optional<Entry> take();
  std::uint64_t lost() const { return lost_; }

 private:
  void order();

  std::array<std::array<unsigned, kNumbers>, kEventKinds> indices_{};
  std::uint64_t mask_ = 0;
  std::deque<Entry> entries_;
  bool ordered_ = true;
  std::uint64_t lost_ = 0;
};

}  // namespace board
