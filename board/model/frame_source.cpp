#include "board/model/frame_source.h"

#include <bit>

namespace board {
namespace {

constexpr double kSimulatorClock = 125e6;  // Hz

constexpr SettingSource kSettingSources[] = {
    {"CamGenEnable{}", &PortSettings::simulatorEnabled},
    {"CamGenStart{}", &PortSettings::simulatorStarted},
    {"CamGenWidth{}", &PortSettings::simulatorWidth},
    {"CamGenLineWidth{}", &PortSettings::simulatorLineWidth},
    {"CamGenHeight{}", &PortSettings::simulatorHeight},
    {"CamGenActive{}", &PortSettings::simulatorActive},
    {"CamGenPassive{}", &PortSettings::simulatorPassive},
    {"CamGenRoll{}", &PortSettings::simulatorRoll},
    {"Device1_Process{}_Cam_PixelFormat", &PortSettings::pixelFormat},
    {"Device1_Process{}_Buffer_XLength", &PortSettings::width},
    {"Device1_Process{}_Buffer_YLength", &PortSettings::height},
    {"Device1_Process{}_Buffer_XOffset", &PortSettings::xOffset},
    {"Device1_Process{}_Buffer_YOffset", &PortSettings::yOffset},
    {"Device1_Process{}_Bayerfilter_BayerInit", &PortSettings::bayerOrder},
    {"Device1_Process{}_White_BayerInit", &PortSettings::whiteOrder},
    {"Device1_Process{}_White_BlueCoefficient", &PortSettings::blueGain},
    {"Device1_Process{}_White_GreenCoefficient", &PortSettings::greenGain},
    {"Device1_Process{}_White_RedCoefficient", &PortSettings::redGain},
};

std::uint32_t word(std::uint64_t bits) { return static_cast<std::uint32_t>(bits); }

/// Registers hold one less than the count; all ones mean none.
double countOf(std::uint64_t registerValue) { return static_cast<double>(registerValue + 1); }

}  // namespace

std::span<const SettingSource> settingSources() { return kSettingSources; }

std::optional<double> simulatorRate(const PortSettings& port) {
  if (port.simulatorEnabled == 0) return std::nullopt;
  // The height is a 32-bit count: 4294967295 means no lines.
  const auto lines = static_cast<double>(word(port.simulatorHeight + 1));
  const double units = static_cast<double>(port.simulatorLineWidth) * lines;
  const double active = countOf(port.simulatorActive);
  const double period = active + countOf(port.simulatorPassive);
  if (port.simulatorStarted == 0 || units == 0 || active == 0) return 0;
  return kSimulatorClock * active / period / units;
}

Simulator simulatorOf(const PortSettings& port) {
  return {word(port.simulatorWidth), word(port.simulatorHeight), word(port.simulatorRoll)};
}

PicturePath picturePathOf(const PortSettings& port) {
  return {.pixelFormat = word(port.pixelFormat),
          .xOffset = word(port.xOffset),
          .yOffset = word(port.yOffset),
          .width = word(port.width),
          .height = word(port.height),
          .bayerOrder = word(port.bayerOrder),
          .whiteOrder = word(port.whiteOrder),
          .blueGain = std::bit_cast<double>(port.blueGain),
          .greenGain = std::bit_cast<double>(port.greenGain),
          .redGain = std::bit_cast<double>(port.redGain)};
}

}  // namespace board
