/// The colour stages of the picture path, a line at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace board {

/// Gains count steps of 1 / 1024.
inline constexpr double kGainSteps = 1024;
inline constexpr double kMaximumGain = 4095;

/// A line of the mosaic and its neighbours, each of which can be read one pixel beyond both ends.
struct MosaicLines {
  const std::uint8_t* above = nullptr;
  const std::uint8_t* line = nullptr;
  const std::uint8_t* below = nullptr;
  std::size_t width;
  bool startsGreen;
  bool hasBlue;                        ///< Beside green; else red.
  std::array<std::uint16_t, 3> gains;  ///< For blue, green, red.
};

/// Writes pixels of three bytes: blue, green, red. A missing component is the mean of the two or
/// four nearest samples of its colour. Means and, after the gains, results are rounded to the
/// nearest, halves up; results end at 255.
void demosaicLine(const MosaicLines& lines, std::uint8_t* pixels);

}  // namespace board
