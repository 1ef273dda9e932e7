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

/// The steps from one situation to another that differ in at most one member; none when nothing has
/// to be written.
std::span<const Step> steps(Situation from, Situation to);

/// Keeps the queue's pulses back, a step that start-up takes too.
void hold(Port& port);

}  // namespace velmora::trigger_transitions
