/// Events that occur at a rate, such as the pictures of a camera that runs freely.
#pragma once

#include "board/trigger/train.h"

namespace board {

/// When the rate changes, the fraction of an event that has elapsed is carried over.
class RateCounter {
 public:
  void setRate(Time now, double perSecond);
  double rate() const { return rate_; }
  /// Events since the last take.
  std::int64_t take(Time now);
  /// Time of the n-th event after the last take.
  Time due(std::int64_t n = 1) const;

 private:
  double elapsed(Time now) const {
    return fraction_ + std::chrono::duration<double>(now - since_).count() * rate_;
  }

  double rate_ = 0;
  double fraction_ = 0;     ///< Of an event, at `since_`.
  std::int64_t taken_ = 0;  ///< Since then.
  Time since_{};
};

}  // namespace board
