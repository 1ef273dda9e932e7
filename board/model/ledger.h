/// What the board's libraries handed out and expect back. Process-wide, for any thread.
#pragma once

#include <string_view>

#include "board/virtual_board.h"

#pragma GCC visibility push(default)

namespace board {

enum class HandedOut { kHandle, kDesign };

/// Notes an object; `giveBack` forgets it and tells whether it was handed out.
void handOut(HandedOut sort, const void* object);
bool giveBack(HandedOut sort, const void* object);

/// A copy of `text` for a caller to keep; `giveBackString` releases it, false for any other
/// pointer.
char* handOutString(std::string_view text);
bool giveBackString(const char* text);

Outstanding countOutstanding();

}  // namespace board

#pragma GCC visibility pop
