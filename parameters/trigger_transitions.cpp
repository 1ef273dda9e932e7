#include "parameters/trigger_transitions.h"

#include <array>

#include "velmora/values.h"

namespace velmora {
namespace {

using T = TriggerPath;

/// The steps of one transition, in order; the unused rest is null.
using Steps = std::array<T::Step, 9>;

constexpr Steps kNothing{};

// clang-format off

/// Mode changes while active: row from, column to, in the order of the mode values.
constexpr Steps kModeChangesWhileActive[4][4] = {
    // From Generator
    {kNothing,
     {&T::park, &T::clearInputDownscale, &T::startQueue, &T::clearSequenceDownscale,           // External
      &T::resetCounters, &T::route, &T::externalOn},
     {&T::park, &T::slaveOn, &T::resetCounters, &T::route, &T::generatorsOn},                  // Synchronized
     {&T::park, &T::clearInputDownscale, &T::startQueue, &T::clearSequenceDownscale,           // Software
      &T::resetCounters, &T::route}},
    // From External
    {{&T::externalOff, &T::park, &T::resetCounters, &T::route, &T::startGenerator},            // Generator
     kNothing,
     {&T::externalOff, &T::park, &T::resetCounters, &T::route, &T::generatorsOn},              // Synchronized
     {&T::externalOff, &T::park, &T::clearInputDownscale, &T::startQueue,                      // Software
      &T::clearSequenceDownscale, &T::resetCounters, &T::route}},
    // From Synchronized
    {{&T::park, &T::slaveOff, &T::resetCounters, &T::route, &T::startGenerator},               // Generator
     {&T::park, &T::slaveOff, &T::clearInputDownscale, &T::startQueue,                         // External
      &T::clearSequenceDownscale, &T::resetCounters, &T::route, &T::externalOn},
     kNothing,
     {&T::park, &T::slaveOff, &T::clearInputDownscale, &T::startQueue,                         // Software
      &T::clearSequenceDownscale, &T::resetCounters, &T::route}},
    // From Software
    {{&T::park, &T::resetCounters, &T::route, &T::startGenerator},                             // Generator
     {&T::park, &T::clearInputDownscale, &T::startQueue, &T::clearSequenceDownscale,           // External
      &T::resetCounters, &T::route, &T::externalOn},
     {&T::park, &T::slaveOn, &T::resetCounters, &T::route, &T::generatorsOn},                  // Synchronized
     kNothing},
};

/// Mode changes while stopped, the outputs already parked or not: only a slave has to be told.
constexpr Steps kToSynchronizedInSyncStop  = {&T::park, &T::slaveOn, &T::generatorsOff};
constexpr Steps kToSynchronizedInAsyncStop = {&T::slaveOn, &T::generatorsOff};
constexpr Steps kToGeneratorWhileStopped   = {&T::hold};

/// State changes within a mode.
struct StateChanges {
  Steps activeToAsync, activeToSync, asyncToActive, syncToActive, syncToAsync;
};

/// In the order of the mode values.
constexpr StateChanges kStateChanges[4] = {
    // Generator
    {.activeToAsync = {&T::park, &T::hold},
     .activeToSync  = {&T::hold},
     .asyncToActive = {&T::resetCounters, &T::route, &T::restartGenerator},
     .syncToActive  = {&T::resetCounters, &T::restartGenerator},
     .syncToAsync   = {&T::park}},
    // External
    {.activeToAsync = {&T::park, &T::externalOff},
     .activeToSync  = {&T::externalOff},
     .asyncToActive = {&T::clearInputDownscale, &T::startQueue, &T::clearSequenceDownscale,
                       &T::resetCounters, &T::route, &T::externalOn},
     .syncToActive  = {&T::park, &T::clearInputDownscale, &T::startQueue, &T::clearSequenceDownscale,
                       &T::resetCounters, &T::route, &T::externalOn},
     .syncToAsync   = {&T::park}},
    // Synchronized
    {.activeToAsync = {&T::park, &T::generatorsOff},
     .activeToSync  = {&T::generatorsOff},
     .asyncToActive = {&T::resetCounters, &T::route, &T::generatorsOn},
     .syncToActive  = {&T::park, &T::resetCounters, &T::route, &T::generatorsOn},
     .syncToAsync   = {&T::park}},
    // Software
    {.activeToAsync = {&T::park},
     .activeToSync  = kNothing,
     .asyncToActive = {&T::clearInputDownscale, &T::startQueue, &T::clearSequenceDownscale,
                       &T::resetCounters, &T::route},
     .syncToActive  = {&T::park, &T::clearInputDownscale, &T::startQueue, &T::clearSequenceDownscale,
                       &T::resetCounters, &T::route},
     .syncToAsync   = {&T::park}},
};

// clang-format on

static_assert(ATM_GENERATOR == 1 && ATM_EXTERNAL == 2 && ATM_SYNCHRONIZED == 3 &&
              ATM_SOFTWARE == 4);

constexpr std::size_t indexOf(std::uint32_t mode) { return mode - ATM_GENERATOR; }

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

std::span<const TriggerPath::Step> transition(TriggerSituation from, TriggerSituation to) {
  const Steps& steps = from.mode != to.mode ? modeChange(from.mode, to.mode, from.state)
                                            : stateChange(from.mode, from.state, to.state);
  std::size_t count = 0;
  while (count < steps.size() && steps[count]) ++count;
  return std::span(steps).first(count);
}

}  // namespace velmora
