/// The clock that counts pictures: the steady one, unless `setClock` replaces it.
#pragma once

#include <chrono>

namespace board {

std::chrono::nanoseconds now();
void sleepFor(std::chrono::nanoseconds time);

}  // namespace board
