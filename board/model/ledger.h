/// What the board's libraries have handed out and expect back. Process-wide and thread-safe.
#pragma once

#include <string_view>

#include "velmora/virtual_board.h"

#pragma GCC visibility push(default)

namespace board {

enum class HandedOut { kHandle, kDesign, kMemory, kCount };

/// Records an object; `giveBack` removes it and returns whether it was there.
void handOut(HandedOut kind, const void* object);
bool giveBack(HandedOut kind, const void* object);
bool isHandedOut(HandedOut kind, const void* object);

/// A copy of `text` for the caller; `giveBackString` frees it and returns false for any other
/// pointer.
char* handOutString(std::string_view text);
bool giveBackString(const char* text);

}  // namespace board

#pragma GCC visibility pop

// For the control side, and so not visible to the other libraries.
namespace board {

VirtualBoardOutstanding outstanding();

}  // namespace board
