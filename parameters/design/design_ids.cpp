#include "parameters/design/design_ids.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "parameters/design/marks.h"

namespace velmora {
namespace {

/// Which ports have a name.
enum class Ports { kAll, kNotPort0, kShared };

/// Marks a name that belongs to the same block as the one before it.
constexpr bool kJoined = true;

struct Pattern {
  DesignId id;
  const char* text;  ///< {n} stands for the port, {T} for the trigger block's prefix.
  Ports ports = Ports::kAll;
  bool joined = false;
};

using D = DesignId;

/// All names in resolution order: block by block, and within a block port by port. The order shows
/// in the log of a design that lacks names and in the clearing of the registers at start-up.
constexpr Pattern kPatterns[] = {
    {D::kOutputSelect0, "{T}TriggerCam{n}_TriggerOutput_Select0_Select_Select"},
    {D::kOutputSelect1, "{T}TriggerCam{n}_TriggerOutput_Select1_Select_Select", Ports::kAll,
     kJoined},
    {D::kSelectExternal, "{T}TriggerCam{n}_TriggerMode_SelectExternal_Select", Ports::kAll,
     kJoined},
    {D::kPulseFormGeneratorsEnable, "{T}TriggerCam{n}_PulseFormGenerators_Enable_Select",
     Ports::kAll, kJoined},
    {D::kMissingFrameReset, "{T}Monitoring_CheckForMissingFrame_Cam{n}_ResetMissing_Mode",
     Ports::kAll, kJoined},
    {D::kPulseForm0DownscaleClear,
     "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator0_ClearDownscale_Mode", Ports::kAll,
     kJoined},
    {D::kPulseForm1DownscaleClear,
     "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator1_ClearDownscale_Mode", Ports::kAll,
     kJoined},
    {D::kClearQueuePulse, "{T}TriggerCam{n}_Generators_ClearQueuePulse_Mode", Ports::kAll, kJoined},
    {D::kEnableQueue, "{T}TriggerCam{n}_Generators_EnableQueue_Select", Ports::kAll, kJoined},
    {D::kInputDownscaleClear, "{T}TriggerCam{n}_Downscale_Clear_Mode", Ports::kAll, kJoined},
    {D::kSequenceDownscaleClear, "{T}TriggerCam{n}_Generators_ClearDownscale_Mode", Ports::kAll,
     kJoined},
    {D::kSlaveMode, "{T}TriggerCam{n}_Synchronize_SlaveMode_Select", Ports::kNotPort0, kJoined},
    {D::kPixelFormat, "Device1_Process{n}_Cam_PixelFormat"},
    {D::kXLength, "Device1_Process{n}_Buffer_XLength"},
    {D::kYLength, "Device1_Process{n}_Buffer_YLength"},
    {D::kXOffset, "Device1_Process{n}_Buffer_XOffset"},
    {D::kYOffset, "Device1_Process{n}_Buffer_YOffset"},
    {D::kFillLevel, "Device1_Process{n}_Buffer_FillLevel"},
    {D::kOverflow, "Device1_Process{n}_Buffer_Overflow"},
    {D::kBayerfilterBayerInit, "Device1_Process{n}_Bayerfilter_BayerInit"},
    {D::kWhiteBayerInit, "Device1_Process{n}_White_BayerInit", Ports::kAll, kJoined},
    {D::kBlueCoefficient, "Device1_Process{n}_White_BlueCoefficient"},
    {D::kGreenCoefficient, "Device1_Process{n}_White_GreenCoefficient"},
    {D::kRedCoefficient, "Device1_Process{n}_White_RedCoefficient"},
    {D::kOutputInvert0, "{T}TriggerCam{n}_TriggerOutput_Select0_Polarity_Invert"},
    {D::kOutputInvert1, "{T}TriggerCam{n}_TriggerOutput_Select1_Polarity_Invert"},
    {D::kSoftwareTrigger, "{T}TriggerCam{n}_TriggerMode_SoftwareTrigger_Mode"},
    {D::kActionCommandSelect, "{T}TriggerCam{n}_TriggerCamera_SelectTriggerCamera_Select_Select"},
    {D::kActionCommandInvert, "{T}TriggerCam{n}_TriggerCamera_SelectTriggerCamera_Polarity_Invert"},
    {D::kActionCommandPendingCount,
     "{T}TriggerCam{n}_TriggerCamera_ActionCommand_PendingActionCmdCount"},
    {D::kInputSelect, "{T}TriggerCam{n}_InputSelect_Select_Select"},
    {D::kInputInvert, "{T}TriggerCam{n}_InputSelect_Polarity_Invert"},
    {D::kBypassSelect, "{T}TriggerCam{n}_InputSelect_BypassSelect_Select"},
    {D::kInputDownscale, "{T}TriggerCam{n}_Downscale_Downscale_Downscale"},
    {D::kInputSelectedPulse, "{T}TriggerCam{n}_Downscale_Downscale_SelectedPulse"},
    {D::kMinimumPeriod, "{T}TriggerCam{n}_Generators_Generator_MinimumPeriod_Number"},
    {D::kMaximumReached, "{T}TriggerCam{n}_Generators_Generator_MaximumReached_Status"},
    {D::kSequenceDownscale, "{T}TriggerCam{n}_Generators_Sequence_Downscale"},
    {D::kSequenceSelectedPulse, "{T}TriggerCam{n}_Generators_Sequence_SelectedPulse"},
    {D::kQueueValue, "{T}TriggerCam{n}_Generators_QueueValue_Status"},
    {D::kQueueFullValue, "{T}TriggerCam{n}_Generators_Queue_QueueFullValue_Number"},
    {D::kQueueEnabled, "{T}TriggerCam{n}_Generators_Queue_QueueEnabled_Select"},
    {D::kHysteresisOnLevel, "{T}TriggerCam{n}_Hysteresis_OnLevel_Number"},
    {D::kHysteresisOffLevel, "{T}TriggerCam{n}_Hysteresis_OffLevel_Number"},
    {D::kPulseForm0Downscale,
     "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator0_Downscale_Downscale"},
    {D::kPulseForm0SelectedPulse,
     "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator0_Downscale_SelectedPulse"},
    {D::kPulseForm0Delay, "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator0_Delay_Delay"},
    {D::kPulseForm0Width, "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator0_Width_Width"},
    {D::kPulseForm1Downscale,
     "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator1_Downscale_Downscale"},
    {D::kPulseForm1SelectedPulse,
     "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator1_Downscale_SelectedPulse"},
    {D::kPulseForm1Delay, "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator1_Delay_Delay"},
    {D::kPulseForm1Width, "{T}TriggerCam{n}_PulseFormGenerators_PulseFormGenerator1_Width_Width"},
    {D::kOutputStatisticsSelect, "{T}TriggerCam{n}_OutputStatistics_Select_Select"},
    {D::kOutputEventSelect, "{T}TriggerCam{n}_OutputEvent_Select_Select"},
    {D::kInputPulses, "{T}TriggerCam{n}_InputStatistics_ReadPulses_Status"},
    {D::kInputPulsesClear, "{T}TriggerCam{n}_InputStatistics_ClearPulses_Mode"},
    {D::kInputPeriod, "{T}TriggerCam{n}_InputStatistics_ReadPeriod_Status"},
    {D::kInputPeriodMax, "{T}TriggerCam{n}_InputStatistics_ReadMax_Status"},
    {D::kInputPeriodMin, "{T}TriggerCam{n}_InputStatistics_ReadMin_Status"},
    {D::kInputMinMaxClear, "{T}TriggerCam{n}_InputStatistics_ClearMinMax_Value"},
    {D::kOutputPulses, "{T}TriggerCam{n}_OutputStatistics_ReadPulses_Status"},
    {D::kOutputPulsesClear, "{T}TriggerCam{n}_OutputStatistics_ClearPulses_Mode"},
    {D::kMissingFrameClear, "{T}Monitoring_ClearMissingFrame_Cam{n}_Mode"},
    {D::kOverrideClear, "{T}Monitoring_ClearOverrideCam{n}_Mode"},
    {D::kQueueStatus, "{T}Monitoring_ReadQueueStatus_Status", Ports::kShared},
    {D::kDebouncePeriod, "{T}TriggerInput_Debounce8_Prescale_Period", Ports::kShared},
    {D::kInputStatus, "{T}TriggerInput_InputStatus_Status", Ports::kShared},
    {D::kGeneratorEnable, "CamGenEnable{n}"},
    {D::kGeneratorStart, "CamGenStart{n}"},
    {D::kGeneratorWidth, "CamGenWidth{n}"},
    {D::kGeneratorLineWidth, "CamGenLineWidth{n}", Ports::kAll, kJoined},
    {D::kGeneratorHeight, "CamGenHeight{n}"},
    {D::kGeneratorActive, "CamGenActive{n}"},
    {D::kGeneratorPassive, "CamGenPassive{n}", Ports::kAll, kJoined},
    {D::kGeneratorRoll, "CamGenRoll{n}"},
};

/// An id without a name, or with two, would access the wrong thing.
consteval bool eachIdOnce() {
  for (std::size_t id = 0; id < kDesignIds; ++id)
    if (std::ranges::count(kPatterns, static_cast<DesignId>(id), &Pattern::id) != 1) return false;
  return true;
}
static_assert(eachIdOnce());

bool isOn(const Pattern& pattern, unsigned port) {
  switch (pattern.ports) {
    case Ports::kAll:
      return true;
    case Ports::kNotPort0:
      return port != 0;
    case Ports::kShared:
      return port == 0;
  }
  return false;
}

}  // namespace

std::string DesignName::text() const {
  return expandMarks(pattern, {{'T', "Device1_Process4_Trigger_"}, {'n', std::to_string(port)}});
}

std::vector<DesignName> designNames() {
  std::vector<DesignName> names;
  const auto startsBlock = [](const Pattern& pattern) { return !pattern.joined; };
  for (auto block = std::begin(kPatterns); block != std::end(kPatterns);) {
    const auto end = std::find_if(std::next(block), std::end(kPatterns), startsBlock);
    for (unsigned port = 0; port < kPorts; ++port)
      for (const Pattern& pattern : std::span(block, end))
        if (isOn(pattern, port))
          names.push_back({pattern.id, port, pattern.ports == Ports::kShared, pattern.text});
    block = end;
  }
  return names;
}

void DesignIds::set(const DesignName& name, int id) {
  const auto index = static_cast<std::size_t>(name.id);
  ids_[name.port][index] = id;
  if (name.shared)
    for (auto& ids : ids_) ids[index] = id;
}

}  // namespace velmora
