#include "board/model/frame_source.h"

namespace board {
namespace {

constexpr double kSimulatorClock = 125e6;  // Hz

constexpr SettingSource kSettingSources[] = {
    {"CamGenEnable{}", &PortSettings::simulatorEnabled},
    {"CamGenStart{}", &PortSettings::simulatorStarted},
    {"CamGenLineWidth{}", &PortSettings::simulatorLineWidth},
    {"CamGenHeight{}", &PortSettings::simulatorHeight},
    {"CamGenActive{}", &PortSettings::simulatorActive},
    {"CamGenPassive{}", &PortSettings::simulatorPassive},
    {"Device1_Process{}_Buffer_XLength", &PortSettings::width},
    {"Device1_Process{}_Buffer_YLength", &PortSettings::height},
};

/// Registers hold one less than the count; all ones mean none.
double countOf(std::uint64_t registerValue) { return static_cast<double>(registerValue + 1); }

}  // namespace

std::span<const SettingSource> settingSources() { return kSettingSources; }

std::optional<double> simulatorRate(const PortSettings& port) {
  if (port.simulatorEnabled == 0) return std::nullopt;
  // The height is a 32-bit count: 4294967295 means no lines.
  const auto lines = static_cast<double>(static_cast<std::uint32_t>(port.simulatorHeight + 1));
  const double units = static_cast<double>(port.simulatorLineWidth) * lines;
  const double active = countOf(port.simulatorActive);
  const double period = active + countOf(port.simulatorPassive);
  if (port.simulatorStarted == 0 || units == 0 || active == 0) return 0;
  return kSimulatorClock * active / period / units;
}

}  // namespace board
