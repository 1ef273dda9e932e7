/// An access to the board as C++ keeps it.
#pragma once

#include <cstdint>
#include <string>

#include "velmora/virtual_board.h"

namespace board {

enum class AccessKind : std::int32_t {
  kSet = VELMORA_ACCESS_SET,
  kGet = VELMORA_ACCESS_GET,
  kRegisterWrite = VELMORA_ACCESS_REGISTER_WRITE,
  kRegisterRead = VELMORA_ACCESS_REGISTER_READ,
  kCall = VELMORA_ACCESS_CALL,
};

/// A `VirtualBoardAccess` that owns its texts.
struct Access {
  AccessKind kind;
  std::string name;
  int dma = -1;
  std::string value;
  std::int64_t result = 0;
  bool failed = false;
};

/// Its texts are those of `access`.
inline VirtualBoardAccess viewOf(const Access& access) {
  return {static_cast<std::int32_t>(access.kind),
          access.dma,
          access.name.c_str(),
          access.value.c_str(),
          access.result,
          access.failed};
}

}  // namespace board
