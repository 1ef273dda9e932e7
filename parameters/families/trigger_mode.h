/// Area trigger mode and trigger state of a port, and how the modes differ.
#pragma once

#include <cstdint>

#include "parameters/families/family.h"

namespace velmora {

/// How an area trigger mode affects other parameters.
struct TriggerMode {
  std::uint32_t value;
  bool queuesInput = false;  ///< Input and software pulses pass through the queue and its monitor.
  bool programsQueue = false;         ///< The queue mode reaches the design.
  bool takesSoftwarePulses = false;   ///< Software pulses are accepted.
  bool showsSoftwareTrigger = false;  ///< Tools see the software trigger as writable.
};

/// The mode that the port is in.
const TriggerMode& triggerMode(const Port& port);

namespace trigger_mode {

/// Both take the steps of the transition from the current mode and state.
void setMode(Port& port, const ParameterRow& row, std::uint32_t mode);
void setState(Port& port, const ParameterRow& row, std::uint32_t state);

}  // namespace trigger_mode
}  // namespace velmora
