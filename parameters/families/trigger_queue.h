/// Sequencer and queue of a port's trigger path: pulses are multiplied, then wait for their turn.
#pragma once

#include "parameters/families/family.h"

namespace velmora::trigger_queue {

/// Pulses that the queue holds.
inline constexpr std::uint32_t kDepth = 2040;
inline constexpr std::uint32_t kDepthOff = 1;

void setMultiplyPulses(Port& port, const ParameterRow& row, std::uint32_t factor);
/// Starts the next sequence anew.
void clearSequenceDownscale(Port& port);

void setMode(Port& port, const ParameterRow& row, std::uint32_t mode);
std::uint32_t fillLevel(const Port& port);

/// Pulses that wait or are in progress, as the design counts them.
std::uint32_t pendingPulses(const Port& port);
/// Whether the generator has a pulse in progress or one that waits.
bool busy(const Port& port);

}  // namespace velmora::trigger_queue
