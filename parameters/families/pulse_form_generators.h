/// A port's two pulse form generators: each delays and shapes every n-th trigger pulse. Times are
/// in µs.
#pragma once

#include <cstdint>

#include "parameters/families/downscaler.h"
#include "velmora/parameters.h"

namespace velmora::pulse_form_generators {

/// The settings, design parameters and SDK parameters of a generator.
struct Generator {
  Downscaler downscaler;
  double ProcessSettings::*delay;
  double ProcessSettings::*width;
  DesignId delayId;
  DesignId widthId;
};

inline constexpr Generator kGenerator0{
    {&ProcessSettings::pulseForm0Downscale, &ProcessSettings::pulseForm0Phase,
     FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE,
     DesignId::kPulseForm0Downscale, DesignId::kPulseForm0SelectedPulse},
    &ProcessSettings::pulseForm0Delay,
    &ProcessSettings::pulseForm0Width,
    DesignId::kPulseForm0Delay,
    DesignId::kPulseForm0Width};

inline constexpr Generator kGenerator1{
    {&ProcessSettings::pulseForm1Downscale, &ProcessSettings::pulseForm1Phase,
     FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE,
     DesignId::kPulseForm1Downscale, DesignId::kPulseForm1SelectedPulse},
    &ProcessSettings::pulseForm1Delay,
    &ProcessSettings::pulseForm1Width,
    DesignId::kPulseForm1Delay,
    DesignId::kPulseForm1Width};

/// Fails unless pulses at a frame rate (Hz) are far enough apart for the delays and widths that
/// both generators have in the design.
void requirePeriod(const Port& port, double frameRate);

void setDownscale(Port& port, const ParameterRow& row, std::uint32_t value, const Generator&);
void setDelay(Port& port, const ParameterRow& row, double delay, const Generator&);
void setWidth(Port& port, const ParameterRow& row, double width, const Generator&);
/// Delay and width as the design holds them.
double delay(const Port& port, const Generator&);
double width(const Port& port, const Generator&);

/// @name The same for rows of the table
/// @{
template <const Generator& generator>
void setDownscale(Port& port, const ParameterRow& row, std::uint32_t value) {
  setDownscale(port, row, value, generator);
}
template <const Generator& generator>
void setPhase(Port& port, const ParameterRow&, std::uint32_t phase) {
  generator.downscaler.setPhase(port, phase);
}
template <const Generator& generator>
void setDelay(Port& port, const ParameterRow& row, double value) {
  setDelay(port, row, value, generator);
}
template <const Generator& generator>
void setWidth(Port& port, const ParameterRow& row, double value) {
  setWidth(port, row, value, generator);
}
template <const Generator& generator>
double delay(const Port& port) {
  return delay(port, generator);
}
template <const Generator& generator>
double width(const Port& port) {
  return width(port, generator);
}
/// @}

}  // namespace velmora::pulse_form_generators
