#include "parameters/families/trigger_mode.h"

#include "parameters/families/enumerations.h"
#include "parameters/families/trigger_transitions.h"
#include "parameters/port/setting.h"
#include "velmora/parameters.h"

namespace velmora {
namespace {

/// In the order of the mode values.
constexpr TriggerMode kTriggerModes[] = {
    {.value = ATM_GENERATOR, .showsSoftwareTrigger = true},
    {.value = ATM_EXTERNAL, .queuesInput = true, .programsQueue = true},
    {.value = ATM_SYNCHRONIZED, .programsQueue = true, .showsSoftwareTrigger = true},
    {.value = ATM_SOFTWARE,
     .queuesInput = true,
     .programsQueue = true,
     .takesSoftwarePulses = true,
     .showsSoftwareTrigger = true},
};

consteval bool eachModeAtItsIndex() {
  for (const EnumEntry& entry : kAreaTriggerModes)
    if (kTriggerModes[trigger_transitions::indexOf(static_cast<std::uint32_t>(entry.value))]
            .value != static_cast<std::uint32_t>(entry.value))
      return false;
  return std::size(kTriggerModes) == std::size(kAreaTriggerModes);
}
static_assert(eachModeAtItsIndex());

/// Stores a new mode or state, then takes the steps that lead to it; they see the new value.
void changeTo(Port& port, std::uint32_t& setting, std::uint32_t value) {
  using trigger_transitions::Situation;
  const auto& settings = port.settings;
  const Situation from{settings.triggerMode, settings.triggerState};
  Transaction change(setting, value);
  Transaction rate(port.settings.frameRate);  // Steps may change it.
  for (const auto step :
       trigger_transitions::steps(from, {settings.triggerMode, settings.triggerState}))
    step(port);
  rate.commit();
  change.commit();
  port.describeReopened();
  if (!triggerMode(port).showsSoftwareTrigger)
    port.describeAccess(FG_SENDSOFTWARETRIGGER, kReadOnly);
}

}  // namespace

const TriggerMode& triggerMode(const Port& port) {
  return kTriggerModes[trigger_transitions::indexOf(port.settings.triggerMode)];
}

void trigger_mode::setMode(Port& port, const ParameterRow& row, std::uint32_t mode) {
  requireAccepted(port, row, mode);
  changeTo(port, port.settings.triggerMode, mode);
}

void trigger_mode::setState(Port& port, const ParameterRow& row, std::uint32_t state) {
  requireAccepted(port, row, state);
  changeTo(port, port.settings.triggerState, state);
}

}  // namespace velmora
