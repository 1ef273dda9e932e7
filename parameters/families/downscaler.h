/// Shared by the trigger input and the pulse form generators: letting every n-th pulse pass.
#pragma once

#include <cstdint>

#include "parameters/port/setting.h"

namespace velmora {

/// The downscale n, and the phase that selects which pulse of a series passes, from 0. Each limits
/// the other, and the described limits follow.
struct Downscaler {
  std::uint32_t ProcessSettings::*downscale;
  std::uint32_t ProcessSettings::*phase;
  int downscaleParameter;
  int phaseParameter;
  DesignId downscaleId;
  DesignId selectedPulseId;  ///< The design counts the pulses of a series from 1.

  /// @param check runs with the new downscale stored, before the design is written; it may fail.
  template <class Check>
  void setDownscale(Port& port, const ParameterRow& row, std::uint32_t value,
                    const Check& check) const {
    if (value <= port.settings.*phase || value > row.limits.integer.max) fail(VELMORA_OUT_OF_RANGE);
    Transaction change(port.settings.*downscale, value);
    check();
    port.design.write(downscaleId, value);
    change.commit();
    port.describeMaximum(phaseParameter, value - 1);
  }

  void setPhase(Port& port, std::uint32_t value) const {
    if (value >= port.settings.*downscale) fail(VELMORA_OUT_OF_RANGE);
    Transaction change(port.settings.*phase, value);
    port.design.write(selectedPulseId, value + 1);
    change.commit();
    port.describeMinimum(downscaleParameter, value + 1);
  }
};

}  // namespace velmora
