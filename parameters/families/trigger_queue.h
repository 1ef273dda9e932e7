/// Sequencer and queue of a port's trigger path: pulses are multiplied, then wait for their turn.
#pragma once

#include "parameters/families/family.h"

namespace velmora::trigger_queue {

/// How many pulses the queue holds, and how many are accepted while it is off.
inline constexpr std::uint32_t kDepth = 2040;
inline constexpr std::uint32_t kDepthOff = 1;

void setMultiplyPulses(Port& port, const ParameterRow& row, std::uint32_t factor);
/// Restarts the sequence.
void clearSequenceDownscale(Port& port);

void setMode(Port& port, const ParameterRow& row, std::uint32_t mode);
std::uint32_t fillLevel(const Port& port);

/// Pulses that wait or are in progress, as the design counts them.
std::uint32_t pendingPulses(const Port& port);
/// Whether a pulse waits or is in progress.
bool busy(const Port& port);

}  // namespace velmora::trigger_queue
