/// The design parameters of the trigger block, by what they mean.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "velmora/handles.h"

namespace board {

using velmora::kPorts;

/// Settings, then what does something when it is written, then what only the block writes.
enum TriggerRegister : unsigned {
  kInputSelect,
  kInputInvert,
  kBypassSelect,
  kInputDownscale,
  kInputSelected,
  kExternal,
  kEnableQueue,
  kHold,
  kMinimumPeriod,
  kSequenceLength,
  kSequenceSelected,
  kQueueEnabled,
  kQueueLimit,
  kOnLevel,
  kOffLevel,
  kSlave,
  kFormsEnabled,
  kForm0,  ///< Downscale, selected pulse, delay and width of the first pulse form generator.
  kForm1 = kForm0 + 4,
  kStatisticsForm = kForm1 + 4,
  kEventForm,
  kOutput0,  ///< Select and invert.
  kOutput1 = kOutput0 + 2,
  kAction = kOutput1 + 2,
  kDebounce = kAction + 2,

  kSoftwarePulse,
  kClearInputDownscale,
  kClearSequence,
  kClearForm0,
  kClearForm1,
  kClearInputPulses,
  kClearMinMax,
  kClearOutputPulses,
  kClearExceeded,
  kClearMissing,
  kResetMissing,

  kInputLevels,
  kInputPulses,
  kInputPeriod,
  kInputMinimum,
  kInputMaximum,
  kQueueLevel,
  kMaximumReached,
  kOutputPulses,
  kPendingCommands,
  kStatusWord,
  kTriggerRegisters
};
inline constexpr auto kFirstCommand = kSoftwarePulse;
inline constexpr auto kFirstStatus = kInputLevels;

using Registers = std::array<std::uint32_t, kTriggerRegisters>;

/// The name of a camera's register. What the cameras share is camera 0's; empty for the others.
std::string triggerRegisterName(unsigned index, unsigned camera);

}  // namespace board
