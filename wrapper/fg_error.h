#pragma once

#include <atomic>

#include "velmora/errors.h"

namespace velmora {

/// Last error of an applet instance. Exports of different threads record here at the same time, so
/// the number is atomic; of two simultaneous results either may be kept.
class Fg_Error {
 public:
  /// Stores `error` and returns it.
  int setErr(int error) {
    number_.store(error, std::memory_order_relaxed);
    return error;
  }
  int getErrorNumberBuffer() const { return number_.load(std::memory_order_relaxed); }
  /// Second-level errors are not kept: stores nothing, returns -2130.
  int setErrLevel2(int, const char*) { return VELMORA_NOT_SUPPORTED; }

 private:
  std::atomic<int> number_{0};
};

}  // namespace velmora
