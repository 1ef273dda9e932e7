#pragma once

#include <cstdint>

#include "parameters/handlers.h"

namespace velmora {

/// Lets every n-th pulse pass: the downscale n, and the phase that tells which one of a series,
/// from 0. Each bounds the other, and tools see the bounds move.
class Downscaler {
 public:
  struct Parts {
    std::uint32_t ProcessSettings::*downscale;
    std::uint32_t ProcessSettings::*phase;
    int downscaleParameter;
    int phaseParameter;
  };

  Downscaler(Port& port, const Parts& parts) : port_(port), parts_(parts) {}

  /// @param check runs with the new downscale stored, before the design is written; it throws to
  ///        refuse the value.
  template <class Check>
  void setDownscale(const ParameterRow& row, std::uint32_t downscale, const Check& check) const {
    if (downscale <= port_.settings.*parts_.phase || downscale > row.limits.word.max)
      throw int{VELMORA_OUT_OF_RANGE};
    Transaction change(port_.settings.*parts_.downscale, downscale);
    check();
    port_.design.write(row.design, downscale);
    change.keep();
    port_.describeMaximum(parts_.phaseParameter, downscale - 1);
  }

  /// The design counts the pulses of a series from 1.
  void setPhase(const ParameterRow& row, std::uint32_t phase) const {
    if (phase >= port_.settings.*parts_.downscale) throw int{VELMORA_OUT_OF_RANGE};
    Transaction change(port_.settings.*parts_.phase, phase);
    port_.design.write(row.design, phase + 1);
    change.keep();
    port_.describeMinimum(parts_.downscaleParameter, phase + 1);
  }

  std::uint32_t downscale() const { return port_.settings.*parts_.downscale; }

 private:
  Port& port_;
  const Parts& parts_;
};

}  // namespace velmora
