/// The frame rate of a port's trigger generator, in Hz.
#pragma once

#include "parameters/families/family.h"

namespace velmora::trigger_rate {

void setFrameRate(Port& port, const ParameterRow& row, double rate);
/// The stored rate taken over ticks and back.
double frameRate(const Port& port);

/// @name Programming the period of the stored rate
/// @{
/// As it is stored.
void programAsStored(Port& port);
/// Taken over ticks and back, and stored anew.
void programOverTicks(Port& port);
/// No limit: what the generator takes for itself.
void programUnlimited(Port& port);
/// @}

}  // namespace velmora::trigger_rate
