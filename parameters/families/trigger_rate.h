/// The frame rate of a port's trigger generator, in Hz.
#pragma once

#include "parameters/families/family.h"

namespace velmora::trigger_rate {

void setFrameRate(Port& port, const ParameterRow& row, double rate);
/// The stored rate converted to ticks and back.
double frameRate(const Port& port);

/// @name Programming the period of the stored rate
/// @{
/// As it is stored.
void programAsStored(Port& port);
/// Converted to ticks and back, which also becomes the stored rate.
void programOverTicks(Port& port);
/// The shortest possible period instead, which does not limit the rate.
void programUnlimited(Port& port);
/// @}

}  // namespace velmora::trigger_rate
