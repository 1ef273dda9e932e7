/// The time that the board counts pictures by: the steady clock, unless a test puts its own in
/// place
/// (`setClock` in `virtual_board.h`).
#pragma once

#include <chrono>

namespace board {

std::chrono::nanoseconds now();
void sleepFor(std::chrono::nanoseconds time);

}  // namespace board
