/// Trigger pulses that software sends.
#pragma once

#include "parameters/families/family.h"

namespace velmora::software_trigger {

/// Sends pulses one by one; fails when the design refuses one, which leaves out the rest.
void send(Port& port, const ParameterRow& row, std::uint32_t pulses);

std::uint32_t isBusy(const Port& port);
/// Pulses still to come, counted after multiplication.
std::uint32_t queueFillLevel(const Port& port);

}  // namespace velmora::software_trigger
