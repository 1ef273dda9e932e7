#pragma once

#include <cstdint>

#include "parameters/downscaler.h"

namespace velmora {

/// One of a port's two pulse form generators: delays and shapes every n-th trigger pulse. Times are
/// in µs.
class PulseFormGenerator {
 public:
  /// Where a generator's settings, design parameters and SDK parameters are found.
  struct Parts {
    Downscaler::Parts downscaler;
    double ProcessSettings::*delay;
    double ProcessSettings::*width;
    DesignId delayId;
    DesignId widthId;
  };

  PulseFormGenerator(Port& port, const Parts& parts)
      : port_(port), parts_(parts), downscaler_(port, parts.downscaler) {}

  void setDownscale(const ParameterRow& row, std::uint32_t downscale);
  void setPhase(const ParameterRow& row, std::uint32_t phase);
  void setDelay(const ParameterRow& row, double delay);
  void setWidth(const ParameterRow& row, double width);

  /// Delay and width as the design holds them.
  double delay() const;
  double width() const;

  /// Whether pulses of a frame rate are far enough apart for the generator's delay and width.
  bool fits(double frameRate) const;

 private:
  bool fits(double frameRate, double delay, double width) const;
  void setTime(const ParameterRow& row, double time, double delay, double width);

  Port& port_;
  const Parts& parts_;
  Downscaler downscaler_;
};

inline constexpr PulseFormGenerator::Parts kPulseForms[] = {
    {{&ProcessSettings::pulseForm0Downscale, &ProcessSettings::pulseForm0Phase,
      FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE},
     &ProcessSettings::pulseForm0Delay,
     &ProcessSettings::pulseForm0Width,
     DesignId::kPulseForm0Delay,
     DesignId::kPulseForm0Width},
    {{&ProcessSettings::pulseForm1Downscale, &ProcessSettings::pulseForm1Phase,
      FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE},
     &ProcessSettings::pulseForm1Delay,
     &ProcessSettings::pulseForm1Width,
     DesignId::kPulseForm1Delay,
     DesignId::kPulseForm1Width},
};

/// Generator `Index` of a port.
template <unsigned Index>
struct PulseForm : PulseFormGenerator {
  explicit PulseForm(Port& port) : PulseFormGenerator(port, kPulseForms[Index]) {}
};

}  // namespace velmora
