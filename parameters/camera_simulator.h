#pragma once

#include <cstdint>

#include "parameters/parameter_table.h"

namespace velmora {

/// The image generator that can take the place of a port's camera, driven through registers.
class CameraSimulator {
 public:
  explicit CameraSimulator(Port& port) : port_(port) {}

  /// A parameter whose value goes to its register as it is.
  void setPlain(const ParameterRow& row, std::uint32_t value);
  /// The register counts lines from 0; height 0 wraps.
  void setHeight(const ParameterRow& row, std::uint32_t height);
  /// Width and line gap, in pixels: either one rewrites both line registers, so that the pair
  /// always matches the settings.
  void setWidthOrGap(const ParameterRow& row, std::uint32_t pixels);
  /// Pixel frequency in MHz.
  void setFrequency(double megahertz);
  /// Clock cycles per period.
  void setAccuracy(std::uint32_t cycles);

  std::uint32_t active() const;
  std::uint32_t passive() const;
  std::uint32_t lineWidth() const;

  /// Writes 0 to a register; a failure has no effect.
  void clear(DesignId simulatorRegister);

 private:
  void set(const ParameterRow& row, std::uint32_t value, std::uint32_t written);
  void write(DesignId simulatorRegister, std::uint64_t value);
  void writePeriod();

  Port& port_;
};

}  // namespace velmora
