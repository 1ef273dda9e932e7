/// What the virtual camera sees.
#pragma once

#include <cstdint>
#include <span>

namespace board {

/// Raw samples of a line from `column` on.
void exposeChart(unsigned port, std::uint64_t picture, std::uint64_t line, std::uint64_t column,
                 std::span<std::uint16_t> samples);

}  // namespace board
