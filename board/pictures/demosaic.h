/// The colour stages of the picture path, a line at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace board {

/// Blue, green, red.
using Gains = std::array<std::uint16_t, 3>;
/// Gains count steps of 1 / 1024, up to 4095.
inline constexpr double kGainSteps = 1024;
inline constexpr std::uint16_t kMaximumGain = 4095;

/// A line of the mosaic and its neighbours. Each can be read one pixel beyond both ends.
struct MosaicLines {
  const std::uint8_t* above;
  const std::uint8_t* line;
  const std::uint8_t* below;
  bool startsGreen;
  bool hasBlue;  ///< Beside green; else red.
};

/// Writes pixels of three bytes: blue, green, red. A missing component is the mean of the two or
/// four nearest samples of its colour, halves rounded up. Gains apply to the means; they are
/// rounded in the same way and end at 255.
void demosaicLine(const MosaicLines& lines, const Gains& gains, std::size_t width,
                  std::uint8_t* pixels);

}  // namespace board
