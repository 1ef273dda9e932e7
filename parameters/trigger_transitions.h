#pragma once

#include <cstdint>
#include <span>

#include "parameters/trigger_path.h"

namespace velmora {

/// An area trigger mode together with a trigger state.
struct TriggerSituation {
  std::uint32_t mode;
  std::uint32_t state;
};

/// The steps that lead from one situation to another, of which one part differs at the most; none
/// when nothing has to be written.
std::span<const TriggerPath::Step> transition(TriggerSituation from, TriggerSituation to);

}  // namespace velmora
