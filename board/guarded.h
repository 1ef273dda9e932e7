/// The border to C: no exception reaches a C program.
#pragma once

#include "velmora/errors.h"

namespace board {

/// The code of `action`; -501 when it throws.
template <class Action>
int guarded(Action action) noexcept {
  try {
    return action();
  } catch (...) {
    return VELMORA_OUT_OF_MEMORY;
  }
}

}  // namespace board
