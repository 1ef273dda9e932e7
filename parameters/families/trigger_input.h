/// Conditioning of the pulses at a port's trigger input.
#pragma once

#include "parameters/families/family.h"

namespace velmora::trigger_input {

/// In µs. All ports share one debouncer: the last write wins.
void setDebounce(Port& port, const ParameterRow& row, double time);
double debounce(const Port& port);

void setDownscale(Port& port, const ParameterRow& row, std::uint32_t downscale);
void setDownscalePhase(Port& port, const ParameterRow& row, std::uint32_t phase);

}  // namespace velmora::trigger_input
