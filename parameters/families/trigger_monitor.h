/// What a port's trigger path reports: statistics and monitoring flags.
#pragma once

#include "parameters/families/family.h"

namespace velmora::trigger_monitor {

std::uint32_t exceededPeriodLimits(const Port& port);
std::uint32_t missingFrame(const Port& port);

/// @name Frequencies of the input in Hz; 0 when none was measured
/// @{
double frequency(const Port& port);
double minFrequency(const Port& port);
double maxFrequency(const Port& port);
/// @}

/// Flips the design's clear value, which restarts the measurement.
void clearMinMaxFrequency(Port& port, const ParameterRow& row, std::uint32_t apply);

}  // namespace velmora::trigger_monitor
