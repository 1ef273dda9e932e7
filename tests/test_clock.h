#pragma once

#include <chrono>

#include "board/control.h"

/// The board's time while it lives: it goes on when somebody waits, or a test says so.
struct TestClock {
  TestClock() {
    board::setClock([this] { return time; }, [this](auto pause) { time += pause; });
  }
  TestClock(const TestClock&) = delete;
  ~TestClock() { board::setClock({}, {}); }

  std::chrono::nanoseconds time{std::chrono::seconds(1)};
};
