#include "parameters/camera_simulator.h"

#include <cmath>

#include "parameters/handlers.h"

namespace velmora {

using handlers::requireAccepted;

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

}  // namespace

void CameraSimulator::write(DesignId simulatorRegister, std::uint64_t value) {
  port_.design.writeRegister(simulatorRegister, value);
  port_.simulatorRegisters[simulatorRegister] = value;
}

void CameraSimulator::clear(DesignId simulatorRegister) {
  try {
    write(simulatorRegister, 0);
  } catch (int) {
  }
}

void CameraSimulator::set(const ParameterRow& row, std::uint32_t value, std::uint32_t written) {
  handlers::setThrough(port_, row, value, [&] { write(row.design, written); });
}

void CameraSimulator::setPlain(const ParameterRow& row, std::uint32_t value) {
  set(row, value, value);
}

void CameraSimulator::setHeight(const ParameterRow& row, std::uint32_t height) {
  set(row, height, height - 1);
}

void CameraSimulator::setWidthOrGap(const ParameterRow& row, std::uint32_t pixels) {
  requireAccepted(port_, row, pixels);
  Transaction change(port_.settings.*row.field.word, pixels);
  const auto& settings = port_.settings;
  const PixelUnits units = pixelUnits(settings.cameraPixelFormat);
  const std::uint64_t line =
      std::uint64_t{settings.generatorWidth} + std::uint64_t{settings.generatorLineGap};
  write(DesignId::kGeneratorWidth, settings.generatorWidth * units.factor / units.divisor);
  write(DesignId::kGeneratorLineWidth, line * units.factor / units.divisor);
  change.keep();
}

void CameraSimulator::setFrequency(double megahertz) {
  // Negated, so that a value that is not a number fails.
  if (!(smallestFor(port_.settings.generatorAccuracy) <= megahertz && megahertz <= kClockMegahertz))
    throw int{VELMORA_OUT_OF_RANGE};
  Transaction change(port_.settings.generatorFrequency, megahertz);
  writePeriod();
  change.keep();
  port_.describeMinimum(FG_GEN_ACCURACY, static_cast<std::uint32_t>(smallestFor(megahertz)));
}

void CameraSimulator::setAccuracy(std::uint32_t cycles) {
  if (!(smallestFor(port_.settings.generatorFrequency) <= cycles && cycles <= kMostCycles))
    throw int{VELMORA_OUT_OF_RANGE};
  Transaction change(port_.settings.generatorAccuracy, cycles);
  writePeriod();
  change.keep();
  port_.describeMinimum(FG_GEN_FREQ, smallestFor(cycles));
}

void CameraSimulator::writePeriod() {
  const double cycles = port_.settings.generatorAccuracy;
  const double active =
      std::trunc(cycles * port_.settings.generatorFrequency / kClockMegahertz + 0.5);
  const double passive = cycles - active;
  if (!(active >= 1 && active <= kMostCycles && passive >= 0 && passive <= kMostCycles))
    throw int{VELMORA_NOT_REPRESENTABLE};
  write(DesignId::kGeneratorActive, static_cast<std::uint64_t>(active) - 1);
  // Without a passive cycle the register receives all ones.
  write(DesignId::kGeneratorPassive, static_cast<std::uint64_t>(passive) - 1);
}

std::uint32_t CameraSimulator::active() const {
  return static_cast<std::uint32_t>(port_.simulatorRegisters[DesignId::kGeneratorActive] + 1);
}

std::uint32_t CameraSimulator::passive() const {
  return static_cast<std::uint32_t>(port_.simulatorRegisters[DesignId::kGeneratorPassive] + 1);
}

std::uint32_t CameraSimulator::lineWidth() const {
  return port_.settings.generatorWidth + port_.settings.generatorLineGap;
}

}  // namespace velmora
