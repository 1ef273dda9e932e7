#include "parameters/families/camera_simulator.h"

#include <cmath>

#include "parameters/port/setting.h"
#include "velmora/parameters.h"

namespace velmora::camera_simulator {
namespace {

constexpr double kClockMegahertz = 125.0;
constexpr std::uint32_t kMostCycles = 65535;

/// Register units per pixel as a fraction.
struct PixelUnits {
  std::uint32_t factor;
  std::uint32_t divisor;
};

constexpr PixelUnits pixelUnits(std::uint32_t cameraPixelFormat) {
  switch (cameraPixelFormat) {
    case MONO8:
    case MONO8_SIGNED:
      return {2, 2};
    case MONO10_PACKED:
    case MONO12_PACKED:
      return {6, 4};
    default:
      return {2, 1};
  }
}

/// The smallest frequency (MHz) for an accuracy, and the smallest accuracy for a frequency: below
/// it a period would not hold a single active cycle.
double smallestFor(double partner) { return std::ceil(kClockMegahertz / 2 / partner); }

/// Fails unless the value is at least what its partner needs, and not above `max`. NaN fails too.
void requireBetween(double partner, double value, double max) {
  if (!(smallestFor(partner) <= value && value <= max)) fail(VELMORA_OUT_OF_RANGE);
}

void writePeriod(Port& port) {
  const double cycles = port.settings.generatorAccuracy;
  const double active =
      std::trunc(cycles * port.settings.generatorFrequency / kClockMegahertz + 0.5);
  const double passive = cycles - active;
  if (!(active >= 1 && active <= kMostCycles && passive >= 0 && passive <= kMostCycles))
    fail(VELMORA_NOT_REPRESENTABLE);
  port.writeRegister(DesignId::kGeneratorActive, static_cast<std::uint64_t>(active) - 1);
  // Without a passive cycle the register receives all ones.
  port.writeRegister(DesignId::kGeneratorPassive, static_cast<std::uint64_t>(passive) - 1);
}

}  // namespace

void setHeight(Port& port, const ParameterRow& row, std::uint32_t height) {
  setThrough(port, row, height,
             [&] { port.writeRegister(DesignId::kGeneratorHeight, height - 1); });
}

void setWidthOrGap(Port& port, const ParameterRow& row, std::uint32_t pixels) {
  setThrough(port, row, pixels, [&] {
    const auto& settings = port.settings;
    const PixelUnits units = pixelUnits(settings.cameraPixelFormat);
    const std::uint64_t line =
        std::uint64_t{settings.generatorWidth} + std::uint64_t{settings.generatorLineGap};
    port.writeRegister(DesignId::kGeneratorWidth,
                       settings.generatorWidth * units.factor / units.divisor);
    port.writeRegister(DesignId::kGeneratorLineWidth, line * units.factor / units.divisor);
  });
}

void setFrequency(Port& port, const ParameterRow&, double megahertz) {
  requireBetween(port.settings.generatorAccuracy, megahertz, kClockMegahertz);
  Transaction change(port.settings.generatorFrequency, megahertz);
  writePeriod(port);
  change.commit();
  port.describeMinimum(FG_GEN_ACCURACY, static_cast<std::uint32_t>(smallestFor(megahertz)));
}

void setAccuracy(Port& port, const ParameterRow&, std::uint32_t cycles) {
  requireBetween(port.settings.generatorFrequency, cycles, kMostCycles);
  Transaction change(port.settings.generatorAccuracy, cycles);
  writePeriod(port);
  change.commit();
  port.describeMinimum(FG_GEN_FREQ, smallestFor(cycles));
}

std::uint32_t active(const Port& port) {
  return static_cast<std::uint32_t>(port.simulatorRegisters[DesignId::kGeneratorActive] + 1);
}

std::uint32_t passive(const Port& port) {
  return static_cast<std::uint32_t>(port.simulatorRegisters[DesignId::kGeneratorPassive] + 1);
}

std::uint32_t lineWidth(const Port& port) {
  return port.settings.generatorWidth + port.settings.generatorLineGap;
}

}  // namespace velmora::camera_simulator
