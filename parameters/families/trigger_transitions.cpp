#include "parameters/families/trigger_transitions.h"

#include <array>

#include "parameters/families/enumerations.h"
#include "parameters/families/trigger_outputs.h"
#include "parameters/families/trigger_queue.h"
#include "parameters/families/trigger_rate.h"
#include "parameters/port/port.h"

namespace velmora::trigger_transitions {
namespace {

void park(Port& port) { trigger_outputs::park(port); }
void route(Port& port) { trigger_outputs::route(port); }
void release(Port& port) { port.design.write(DesignId::kClearQueuePulse, 0u); }
void externalOn(Port& port) { port.design.write(DesignId::kSelectExternal, 1u); }
void externalOff(Port& port) { port.design.write(DesignId::kSelectExternal, 0u); }
void slaveOn(Port& port) { port.design.write(DesignId::kSlaveMode, 1u); }
void slaveOff(Port& port) { port.design.write(DesignId::kSlaveMode, 0u); }
void generatorsOn(Port& port) { port.design.write(DesignId::kPulseFormGeneratorsEnable, 1u); }
void generatorsOff(Port& port) { port.design.write(DesignId::kPulseFormGeneratorsEnable, 0u); }
void clearInputDownscale(Port& port) { port.design.trigger(DesignId::kInputDownscaleClear); }
void clearSequenceDownscale(Port& port) { trigger_queue::clearSequenceDownscale(port); }

void resetCounters(Port& port) {
  port.design.trigger(DesignId::kMissingFrameReset);
  port.design.trigger(DesignId::kPulseForm0DownscaleClear);
  port.design.trigger(DesignId::kPulseForm1DownscaleClear);
}

void start(Port& port, std::uint32_t queue, Step programPeriod) {
  hold(port);
  port.design.write(DesignId::kEnableQueue, queue);
  programPeriod(port);
  generatorsOn(port);
  release(port);
}
void startGeneratorOverTicks(Port& port) { start(port, 0, trigger_rate::programOverTicks); }
void startGeneratorAsStored(Port& port) { start(port, 0, trigger_rate::programAsStored); }
void startQueue(Port& port) { start(port, 1, trigger_rate::programOverTicks); }

/// The steps of one transition, in order; the unused rest is null.
using Steps = std::array<Step, 9>;

constexpr Steps kNothing{};
constexpr std::size_t kModes = std::size(kAreaTriggerModes);

// clang-format off

/// Mode changes while active: row from, column to, in the order of the mode values.
constexpr Steps kModeChangesWhileActive[kModes][kModes] = {
    // From Generator
    {kNothing,
     {park, clearInputDownscale, startQueue, clearSequenceDownscale,  // External
      resetCounters, route, externalOn},
     {park, slaveOn, resetCounters, route, generatorsOn},  // Synchronized
     {park, clearInputDownscale, startQueue, clearSequenceDownscale,  // Software
      resetCounters, route}},
    // From External
    {{externalOff, park, resetCounters, route, startGeneratorOverTicks},  // Generator
     kNothing,
     {externalOff, park, resetCounters, route, generatorsOn},  // Synchronized
     {externalOff, park, clearInputDownscale, startQueue,  // Software
      clearSequenceDownscale, resetCounters, route}},
    // From Synchronized
    {{park, slaveOff, resetCounters, route, startGeneratorOverTicks},  // Generator
     {park, slaveOff, clearInputDownscale, startQueue,  // External
      clearSequenceDownscale, resetCounters, route, externalOn},
     kNothing,
     {park, slaveOff, clearInputDownscale, startQueue,  // Software
      clearSequenceDownscale, resetCounters, route}},
    // From Software
    {{park, resetCounters, route, startGeneratorOverTicks},  // Generator
     {park, clearInputDownscale, startQueue, clearSequenceDownscale,  // External
      resetCounters, route, externalOn},
     {park, slaveOn, resetCounters, route, generatorsOn},  // Synchronized
     kNothing},
};

/// Mode changes while stopped. An asynchronous stop has parked the outputs already.
constexpr Steps kToSynchronizedInSyncStop  = {park, slaveOn, generatorsOff};
constexpr Steps kToSynchronizedInAsyncStop = {slaveOn, generatorsOff};
constexpr Steps kToGeneratorWhileStopped   = {hold};

/// State changes within a mode.
struct StateChanges {
  Steps activeToAsync, activeToSync, asyncToActive, syncToActive, syncToAsync;
};

/// In the order of the mode values.
constexpr StateChanges kStateChanges[] = {
    // Generator
    {.activeToAsync = {park, hold},
     .activeToSync  = {hold},
     .asyncToActive = {resetCounters, route, startGeneratorAsStored},
     .syncToActive  = {resetCounters, startGeneratorAsStored},
     .syncToAsync   = {park}},
    // External
    {.activeToAsync = {park, externalOff},
     .activeToSync  = {externalOff},
     .asyncToActive = {clearInputDownscale, startQueue, clearSequenceDownscale,
                       resetCounters, route, externalOn},
     .syncToActive  = {park, clearInputDownscale, startQueue, clearSequenceDownscale,
                       resetCounters, route, externalOn},
     .syncToAsync   = {park}},
    // Synchronized
    {.activeToAsync = {park, generatorsOff},
     .activeToSync  = {generatorsOff},
     .asyncToActive = {resetCounters, route, generatorsOn},
     .syncToActive  = {park, resetCounters, route, generatorsOn},
     .syncToAsync   = {park}},
    // Software
    {.activeToAsync = {park},
     .activeToSync  = kNothing,
     .asyncToActive = {clearInputDownscale, startQueue, clearSequenceDownscale,
                       resetCounters, route},
     .syncToActive  = {park, clearInputDownscale, startQueue, clearSequenceDownscale,
                       resetCounters, route},
     .syncToAsync   = {park}},
};

// clang-format on

static_assert(ATM_GENERATOR == 1 && ATM_EXTERNAL == 2 && ATM_SYNCHRONIZED == 3 &&
              ATM_SOFTWARE == 4);
static_assert(std::size(kStateChanges) == kModes);

/// Every change to another mode takes steps.
consteval bool eachModeChangeHasSteps() {
  for (std::size_t from = 0; from < kModes; ++from)
    for (std::size_t to = 0; to < kModes; ++to)
      if (from != to && !kModeChangesWhileActive[from][to][0]) return false;
  return true;
}
static_assert(eachModeChangeHasSteps());

const Steps& modeChange(std::uint32_t from, std::uint32_t to, std::uint32_t state) {
  if (state == TS_ACTIVE) return kModeChangesWhileActive[indexOf(from)][indexOf(to)];
  if (from == to) return kNothing;
  if (to == ATM_SYNCHRONIZED)
    return state == TS_SYNC_STOP ? kToSynchronizedInSyncStop : kToSynchronizedInAsyncStop;
  if (to == ATM_GENERATOR && from != ATM_SYNCHRONIZED) return kToGeneratorWhileStopped;
  return kNothing;
}

const Steps& stateChange(std::uint32_t mode, std::uint32_t from, std::uint32_t to) {
  const StateChanges& changes = kStateChanges[indexOf(mode)];
  if (from == TS_ACTIVE && to == TS_ASYNC_STOP) return changes.activeToAsync;
  if (from == TS_ACTIVE && to == TS_SYNC_STOP) return changes.activeToSync;
  if (from == TS_ASYNC_STOP && to == TS_ACTIVE) return changes.asyncToActive;
  if (from == TS_SYNC_STOP && to == TS_ACTIVE) return changes.syncToActive;
  if (from == TS_SYNC_STOP && to == TS_ASYNC_STOP) return changes.syncToAsync;
  return kNothing;
}

}  // namespace

std::span<const Step> steps(Situation from, Situation to) {
  const Steps& all = from.mode != to.mode ? modeChange(from.mode, to.mode, from.state)
                                          : stateChange(from.mode, from.state, to.state);
  std::size_t count = 0;
  while (count < all.size() && all[count]) ++count;
  return std::span(all).first(count);
}

void hold(Port& port) { port.design.write(DesignId::kClearQueuePulse, 1u); }

}  // namespace velmora::trigger_transitions
