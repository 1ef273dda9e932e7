#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace velmora {

inline constexpr unsigned kPorts = 4;

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
  kCount,
  kNone = kCount  ///< A parameter that drives nothing in the design.
};

inline constexpr std::size_t kDesignIds = static_cast<std::size_t>(DesignId::kCount);
inline constexpr DesignId kFirstRegister = DesignId::kGeneratorEnable;
inline constexpr std::size_t kSimulatorRegisters =
    kDesignIds - static_cast<std::size_t>(kFirstRegister);

constexpr bool isRegister(DesignId id) { return id >= kFirstRegister; }

/// Visits the names that the applet drives, each once, in resolution order. For a name that all
/// ports share the port is 0.
/// @param visit receives the port, what the name stands for and the name.
void forEachDesignName(
    const std::function<void(unsigned port, DesignId id, const std::string& name)>& visit);

/// The design's own ids of the names, resolved once at start-up. An id below 1 means that the
/// design lacks the name; it is kept, and the access that uses it fails with the design's own
/// error.
class DesignIds {
 public:
  /// @param lookUp finds the design's id of a parameter or register.
  /// @param missing is told of every name whose id is below 1.
  void resolve(const std::function<int(DesignId id, const std::string& name)>& lookUp,
               const std::function<void(DesignId id, const std::string& name)>& missing);

  int operator()(unsigned port, DesignId id) const {
    return ids_[port][static_cast<std::size_t>(id)];
  }

 private:
  std::array<std::array<int, kDesignIds>, kPorts> ids_{};
};

}  // namespace velmora
