#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "velmora/handles.h"

namespace velmora {

/// Everything in the design that a port drives. Ids up to `kInputStatus` are design parameters, the
/// rest are registers of the camera simulator.
enum class DesignId : std::uint8_t {
  // Image path of the camera process.
  kPixelFormat,
  kXLength,
  kYLength,
  kXOffset,
  kYOffset,
  kFillLevel,
  kOverflow,
  kBayerfilterBayerInit,
  kWhiteBayerInit,
  kBlueCoefficient,
  kGreenCoefficient,
  kRedCoefficient,
  // Trigger path: routing and mode.
  kOutputSelect0,
  kOutputSelect1,
  kOutputInvert0,
  kOutputInvert1,
  kSelectExternal,
  kSoftwareTrigger,
  kPulseFormGeneratorsEnable,
  kActionCommandSelect,
  kActionCommandInvert,
  kActionCommandPendingCount,
  kSlaveMode,  // Not on port 0.
  // Input.
  kInputSelect,
  kInputInvert,
  kBypassSelect,
  kInputDownscale,
  kInputSelectedPulse,
  kInputDownscaleClear,
  // Generator and queue.
  kMinimumPeriod,
  kMaximumReached,
  kSequenceDownscale,
  kSequenceSelectedPulse,
  kSequenceDownscaleClear,
  kEnableQueue,
  kClearQueuePulse,
  kQueueValue,
  kQueueFullValue,
  kQueueEnabled,
  kHysteresisOnLevel,
  kHysteresisOffLevel,
  // Pulse form generators.
  kPulseForm0Downscale,
  kPulseForm0SelectedPulse,
  kPulseForm0Delay,
  kPulseForm0Width,
  kPulseForm0DownscaleClear,
  kPulseForm1Downscale,
  kPulseForm1SelectedPulse,
  kPulseForm1Delay,
  kPulseForm1Width,
  kPulseForm1DownscaleClear,
  kOutputStatisticsSelect,
  kOutputEventSelect,
  // Statistics.
  kInputPulses,
  kInputPulsesClear,
  kInputPeriod,
  kInputPeriodMax,
  kInputPeriodMin,
  kInputMinMaxClear,
  kOutputPulses,
  kOutputPulsesClear,
  // Monitoring.
  kMissingFrameReset,
  kMissingFrameClear,
  kOverrideClear,
  // One for all ports.
  kQueueStatus,
  kDebouncePeriod,
  kInputStatus,
  // Simulator registers.
  kGeneratorEnable,
  kGeneratorStart,
  kGeneratorWidth,
  kGeneratorLineWidth,
  kGeneratorHeight,
  kGeneratorActive,
  kGeneratorPassive,
  kGeneratorRoll,
  kCount
};

inline constexpr std::size_t kDesignIds = static_cast<std::size_t>(DesignId::kCount);
inline constexpr DesignId kFirstRegister = DesignId::kGeneratorEnable;
inline constexpr std::size_t kSimulatorRegisters =
    kDesignIds - static_cast<std::size_t>(kFirstRegister);

constexpr bool isRegister(DesignId id) { return id >= kFirstRegister; }

/// A name in the design that the applet uses.
struct DesignName {
  DesignId id;
  unsigned port;  ///< Port that it belongs to; 0 for a name that all ports share.
  bool shared;
  const char* pattern;

  std::string text() const;
};

/// All names, each once, in resolution order.
std::vector<DesignName> designNames();

/// The design's own ids of the names, resolved once at start-up. An id below 1 means that the
/// design lacks the name; it is kept, and accesses that use it fail with the design's own error.
class DesignIds {
 public:
  void set(const DesignName& name, int id);

  int operator()(unsigned port, DesignId id) const {
    return ids_[port][static_cast<std::size_t>(id)];
  }

 private:
  std::array<std::array<int, kDesignIds>, kPorts> ids_{};
};

}  // namespace velmora
