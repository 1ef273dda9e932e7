/// Objects of the process that are never destroyed, since the board may be in use while the process
/// exits. They take no memory, so that reaching them cannot fail.
#pragma once

#include <cstddef>
#include <new>

namespace board {

/// The one object of a type.
template <class T>
T& immortal() {
  alignas(T) static std::byte place[sizeof(T)];
  static T& object = *new (place) T;
  return object;
}

}  // namespace board
