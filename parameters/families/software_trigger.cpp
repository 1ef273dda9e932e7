#include "parameters/families/software_trigger.h"

#include <chrono>

#include "parameters/families/trigger_mode.h"
#include "parameters/families/trigger_queue.h"
#include "parameters/port/setting.h"

namespace velmora::software_trigger {
namespace {

/// The design accepts one software pulse in ten ticks.
constexpr std::chrono::nanoseconds kPulseDistance{160};

/// Busy-waits: the shortest sleep is several hundred times as long.
void waitFor(std::chrono::nanoseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (std::chrono::steady_clock::now() < end) {
  }
}

}  // namespace

void send(Port& port, const ParameterRow&, std::uint32_t pulses) {
  const auto& settings = port.settings;
  const bool queued = settings.queueMode == FG_ON;
  if (pulses == 0 || pulses > (queued ? trigger_queue::kDepth : trigger_queue::kDepthOff))
    fail(VELMORA_OUT_OF_RANGE);
  Transaction change(port.settings.softwareTrigger, pulses);
  if (!triggerMode(port).takesSoftwarePulses) fail(VELMORA_NOT_SOFTWARE_MODE);
  if (settings.triggerState != TS_ACTIVE) fail(VELMORA_TRIGGER_NOT_ACTIVE);
  if (!queued && trigger_queue::busy(port)) fail(VELMORA_TRIGGER_BUSY);
  for (; pulses > 0; --pulses) {
    port.design.trigger(DesignId::kSoftwareTrigger);
    waitFor(kPulseDistance);
  }
  change.commit();
}

std::uint32_t isBusy(const Port& port) {
  if (!triggerMode(port).takesSoftwarePulses) return IS_NOT_BUSY;
  return trigger_queue::busy(port) ? IS_BUSY : IS_NOT_BUSY;
}

std::uint32_t queueFillLevel(const Port& port) {
  const auto& settings = port.settings;
  if (!triggerMode(port).takesSoftwarePulses || settings.triggerState == TS_ASYNC_STOP) return 0;
  return trigger_queue::pendingPulses(port) * settings.multiplyPulses;
}

}  // namespace velmora::software_trigger
