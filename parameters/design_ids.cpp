#include "parameters/design_ids.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace velmora {
namespace {

/// Which ports have a name.
enum class Ports { kAll, kNotPort0, kShared };

/// Marks a name that belongs to the same block as the one before it.
inline constexpr bool kJoined = true;

struct DesignName {
  DesignId id;
  const char* pattern;  ///< {n} stands for the port, {T} for the trigger block's prefix.
  Ports ports = Ports::kAll;
  bool joined = false;
};

using D = DesignId;

/// All names in resolution order: block after block, within a block port after port. The order
/// shows in the log of a design that lacks names and in the clearing of the registers at start-up.
constexpr DesignName kDesignNames[] = {
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

std::string nameOf(const DesignName& name, unsigned port) {
  std::string text = name.pattern;
  const auto replace = [&text](const std::string& mark, const std::string& with) {
    if (const auto at = text.find(mark); at != std::string::npos)
      text.replace(at, mark.size(), with);
  };
  replace("{T}", "Device1_Process4_Trigger_");
  replace("{n}", std::to_string(port));
  return text;
}

bool resolvedForPort(const DesignName& name, unsigned port) {
  switch (name.ports) {
    case Ports::kAll:
      return true;
    case Ports::kNotPort0:
      return port != 0;
    case Ports::kShared:
      return port == 0;
  }
  return false;
}

template <class Visit>
void visitNames(const Visit& visit) {
  const auto startsBlock = [](const DesignName& name) { return !name.joined; };
  for (auto block = std::begin(kDesignNames); block != std::end(kDesignNames);) {
    const auto end = std::find_if(std::next(block), std::end(kDesignNames), startsBlock);
    for (unsigned port = 0; port < kPorts; ++port)
      for (const DesignName& name : std::span(block, end))
        if (resolvedForPort(name, port)) visit(port, name);
    block = end;
  }
}

}  // namespace

void forEachDesignName(
    const std::function<void(unsigned port, DesignId id, const std::string& name)>& visit) {
  visitNames(
      [&](unsigned port, const DesignName& name) { visit(port, name.id, nameOf(name, port)); });
}

void DesignIds::resolve(const std::function<int(DesignId, const std::string&)>& lookUp,
                        const std::function<void(DesignId, const std::string&)>& missing) {
  visitNames([&](unsigned port, const DesignName& name) {
    const std::string text = nameOf(name, port);
    const int id = lookUp(name.id, text);
    if (id < 1) missing(name.id, text);
    const auto index = static_cast<std::size_t>(name.id);
    ids_[port][index] = id;
    if (name.ports == Ports::kShared)
      for (auto& ids : ids_) ids[index] = id;
  });
}

}  // namespace velmora
