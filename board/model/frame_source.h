/// What the design's settings say about a port's pictures. They come from the camera or, while
/// `CamGenEnable` is 1, from the camera simulator.
///
/// The simulator runs while `CamGenStart` is 1. It emits one unit of a line per clock cycle of 125
/// MHz, in `CamGenActive` + 1 of every (`CamGenActive` + 1 + `CamGenPassive` + 1) cycles; a picture
/// takes `CamGenLineWidth` units for each of `CamGenHeight` + 1 lines.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "board/pictures/picture.h"

namespace board {

/// The registers and parameters of a port that say how its pictures are made.
struct PortSettings {
  std::uint64_t simulatorEnabled = 0;
  std::uint64_t simulatorStarted = 0;
  std::uint64_t simulatorWidth = 0;
  std::uint64_t simulatorLineWidth = 0;
  std::uint64_t simulatorHeight = 0;
  std::uint64_t simulatorActive = 0;
  std::uint64_t simulatorPassive = 0;
  std::uint64_t simulatorRoll = 0;
  std::uint64_t pixelFormat = 0;
  std::uint64_t width = 0;
  std::uint64_t height = 0;
  std::uint64_t xOffset = 0;
  std::uint64_t yOffset = 0;
  std::uint64_t bayerOrder = 0;
  std::uint64_t whiteOrder = 0;
  std::uint64_t blueGain = 0;  ///< The bits of a double, as the other gains.
  std::uint64_t greenGain = 0;
  std::uint64_t redGain = 0;
};

/// Pictures per second of the simulator; nothing while the camera delivers.
std::optional<double> simulatorRate(const PortSettings& port);
Simulator simulatorOf(const PortSettings& port);
PicturePath picturePathOf(const PortSettings& port);

/// The register or parameter that holds a setting; `{}` in its name stands for the port.
struct SettingSource {
  const char* name;
  std::uint64_t PortSettings::*member;
};
std::span<const SettingSource> settingSources();

}  // namespace board
