#include "board/trigger/registers.h"

#include <fmt/format.h>

#include <string_view>

namespace board {
namespace {

/// In the order of the enumeration; `{}` stands for the camera.
constexpr std::string_view kNames[] = {
    "TriggerCam{}_InputSelect_Select_Select",
    "TriggerCam{}_InputSelect_Polarity_Invert",
    "TriggerCam{}_InputSelect_BypassSelect_Select",
    "TriggerCam{}_Downscale_Downscale_Downscale",
    "TriggerCam{}_Downscale_Downscale_SelectedPulse",
    "TriggerCam{}_TriggerMode_SelectExternal_Select",
    "TriggerCam{}_Generators_EnableQueue_Select",
    "TriggerCam{}_Generators_ClearQueuePulse_Mode",
    "TriggerCam{}_Generators_Generator_MinimumPeriod_Number",
    "TriggerCam{}_Generators_Sequence_Downscale",
    "TriggerCam{}_Generators_Sequence_SelectedPulse",
    "TriggerCam{}_Generators_Queue_QueueEnabled_Select",
    "TriggerCam{}_Generators_Queue_QueueFullValue_Number",
    "TriggerCam{}_Hysteresis_OnLevel_Number",
    "TriggerCam{}_Hysteresis_OffLevel_Number",
    "TriggerCam{}_Synchronize_SlaveMode_Select",
    "TriggerCam{}_PulseFormGenerators_Enable_Select",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator0_Downscale_Downscale",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator0_Downscale_SelectedPulse",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator0_Delay_Delay",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator0_Width_Width",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator1_Downscale_Downscale",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator1_Downscale_SelectedPulse",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator1_Delay_Delay",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator1_Width_Width",
    "TriggerCam{}_OutputStatistics_Select_Select",
    "TriggerCam{}_OutputEvent_Select_Select",
    "TriggerCam{}_TriggerOutput_Select0_Select_Select",
    "TriggerCam{}_TriggerOutput_Select0_Polarity_Invert",
    "TriggerCam{}_TriggerOutput_Select1_Select_Select",
    "TriggerCam{}_TriggerOutput_Select1_Polarity_Invert",
    "TriggerCam{}_TriggerCamera_SelectTriggerCamera_Select_Select",
    "TriggerCam{}_TriggerCamera_SelectTriggerCamera_Polarity_Invert",
    "TriggerInput_Debounce8_Prescale_Period",
    "TriggerCam{}_TriggerMode_SoftwareTrigger_Mode",
    "TriggerCam{}_Downscale_Clear_Mode",
    "TriggerCam{}_Generators_ClearDownscale_Mode",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator0_ClearDownscale_Mode",
    "TriggerCam{}_PulseFormGenerators_PulseFormGenerator1_ClearDownscale_Mode",
    "TriggerCam{}_InputStatistics_ClearPulses_Mode",
    "TriggerCam{}_InputStatistics_ClearMinMax_Value",
    "TriggerCam{}_OutputStatistics_ClearPulses_Mode",
    "Monitoring_ClearOverrideCam{}_Mode",
    "Monitoring_ClearMissingFrame_Cam{}_Mode",
    "Monitoring_CheckForMissingFrame_Cam{}_ResetMissing_Mode",
    "TriggerInput_InputStatus_Status",
    "TriggerCam{}_InputStatistics_ReadPulses_Status",
    "TriggerCam{}_InputStatistics_ReadPeriod_Status",
    "TriggerCam{}_InputStatistics_ReadMin_Status",
    "TriggerCam{}_InputStatistics_ReadMax_Status",
    "TriggerCam{}_Generators_QueueValue_Status",
    "TriggerCam{}_Generators_Generator_MaximumReached_Status",
    "TriggerCam{}_OutputStatistics_ReadPulses_Status",
    "TriggerCam{}_TriggerCamera_ActionCommand_PendingActionCmdCount",
    "Monitoring_ReadQueueStatus_Status",
};
static_assert(std::size(kNames) == kTriggerRegisters);

}  // namespace

std::string triggerRegisterName(unsigned index, unsigned camera) {
  const auto name = kNames[index];
  if (camera > 0 && name.find('{') == name.npos) return {};
  return "Device1_Process4_Trigger_" + fmt::format(fmt::runtime(name), camera);
}

}  // namespace board
