/// The camera simulator of a port, which delivers pictures while `CamGenEnable` is 1.
///
/// It runs while `CamGenStart` is 1. It emits one unit of a line per clock cycle of 125 MHz, in
/// `CamGenActive` + 1 of every (`CamGenActive` + 1 + `CamGenPassive` + 1) cycles; a picture takes
/// `CamGenLineWidth` units for each of `CamGenHeight` + 1 lines.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace board {

/// The registers and parameters of a port that say how its pictures are made.
struct PortSettings {
  std::uint64_t simulatorEnabled = 0;
  std::uint64_t simulatorStarted = 0;
  std::uint64_t simulatorLineWidth = 0;
  std::uint64_t simulatorHeight = 0;
  std::uint64_t simulatorActive = 0;
  std::uint64_t simulatorPassive = 0;
  std::uint64_t width = 0;
  std::uint64_t height = 0;
};

/// Pictures per second of the simulator; nothing while the camera delivers.
std::optional<double> simulatorRate(const PortSettings& port);

/// The register or parameter that holds a setting; `{}` in its name stands for the port.
struct SettingSource {
  const char* name;
  std::uint64_t PortSettings::*member;
};
std::span<const SettingSource> settingSources();

}  // namespace board
