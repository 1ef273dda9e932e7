/// Area trigger mode and trigger state of a port, and what tells the modes apart.
#pragma once

#include <cstdint>

#include "parameters/families/family.h"

namespace velmora {

/// What an area trigger mode does to the parameters around it.
struct TriggerMode {
  std::uint32_t value;
  bool queuesInput = false;  ///< Pulses from outside the generator pass the queue and its monitor.
  bool programsQueue = false;         ///< The queue mode reaches the design.
  bool takesSoftwarePulses = false;   ///< Software pulses are accepted.
  bool showsSoftwareTrigger = false;  ///< Tools see the software trigger as writable.
};

/// The mode that the port is in.
const TriggerMode& triggerMode(const Port& port);

namespace trigger_mode {

/// Both take the steps of the transition from what is to what shall be.
void setMode(Port& port, const ParameterRow& row, std::uint32_t mode);
void setState(Port& port, const ParameterRow& row, std::uint32_t state);

}  // namespace trigger_mode
}  // namespace velmora
