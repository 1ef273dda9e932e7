/// The steps that lead from one area trigger mode or trigger state to another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "parameters/families/family.h"
#include "velmora/values.h"

namespace velmora::trigger_transitions {

/// Position of a mode in the tables of modes.
constexpr std::size_t indexOf(std::uint32_t mode) { return mode - ATM_GENERATOR; }

/// An area trigger mode together with a trigger state.
struct Situation {
  std::uint32_t mode;
  std::uint32_t state;
};

using Step = void (*)(Port&);

/// The steps from one situation to another, which differs in the mode or in the state, not in both.
/// Empty when nothing has to be written.
std::span<const Step> steps(Situation from, Situation to);

/// Holds the queue's pulses back; start-up takes this step too.
void hold(Port& port);

}  // namespace velmora::trigger_transitions
