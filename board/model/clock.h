/// The clock that counts pictures: the steady one, unless it is replaced.
#pragma once

#include <chrono>
#include <memory>

#include "velmora/virtual_board.h"

namespace board {

/// What the control side gives in place of the steady clock; null where it leaves that.
struct Clock {
  VirtualBoardNow now = nullptr;
  VirtualBoardSleep sleep = nullptr;
  std::shared_ptr<void> context;
};
void setClock(Clock clock);

std::chrono::nanoseconds now();
void sleepFor(std::chrono::nanoseconds time);

}  // namespace board
