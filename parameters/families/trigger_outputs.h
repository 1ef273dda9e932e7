/// What leaves a port's trigger path: the two trigger outputs, the camera action command, and the
/// digital outputs that belong to single ports but can be set on all.
#pragma once

#include <cstdint>

#include "parameters/design/design_ids.h"
#include "parameters/families/family.h"
#include "parameters/port/process_settings.h"

namespace velmora::trigger_outputs {

/// An output: the setting that selects its source, the multiplexer and the inverter after it.
struct Output {
  std::uint32_t ProcessSettings::*source;
  DesignId select;
  DesignId invert;
};

inline constexpr Output kActionCommand{&ProcessSettings::actionCommandSource,
                                       DesignId::kActionCommandSelect,
                                       DesignId::kActionCommandInvert};
inline constexpr Output kOutput0{&ProcessSettings::outputSelect0, DesignId::kOutputSelect0,
                                 DesignId::kOutputInvert0};
inline constexpr Output kOutput1{&ProcessSettings::outputSelect1, DesignId::kOutputSelect1,
                                 DesignId::kOutputInvert1};

/// Switches both trigger outputs to the constant input. The inverters, left as they are, determine
/// the level.
void park(Port& port);
/// Applies the stored sources. Fails with -6000 when a stored value is not a source.
void route(Port& port);

/// During an asynchronous stop the source is only stored.
void setSource(Port& port, const ParameterRow& row, std::uint32_t source, const Output& output);
template <const Output& output>
void setSource(Port& port, const ParameterRow& row, std::uint32_t source) {
  setSource(port, row, source, output);
}

/// Bit 0 drives board output 3, bit 1 board output 7.
void setDigitalOutput(Port& port, const ParameterRow& row, std::uint32_t levels);

}  // namespace velmora::trigger_outputs
