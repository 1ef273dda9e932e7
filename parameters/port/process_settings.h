#pragma once

#include <cstdint>

#include "velmora/values.h"

namespace velmora {

/// The SDK-level values that one process (camera port) last accepted, starting at their defaults;
/// fields in the order of the parameter table. Trigger times are in µs, frequencies in the
/// parameter's unit.
struct ProcessSettings {
  std::uint32_t timeout = 1000000;
  std::uint32_t cameraPixelFormat = MONO8;
  std::uint32_t width = 1024;
  std::uint32_t height = 1024;
  std::uint32_t xOffset = 0;
  std::uint32_t yOffset = 0;
  std::uint32_t outputFormat = FG_COL24;
  std::uint32_t bitAlignment = FG_LEFT_ALIGNED;

  std::uint32_t generatorEnable = FG_CAMPORT;
  std::uint32_t generatorStart = FG_ON;
  std::uint32_t generatorWidth = 1024;
  std::uint32_t generatorHeight = 1024;
  std::uint32_t generatorLineGap = 4;
  double generatorFrequency = 40.0;  // MHz
  std::uint32_t generatorAccuracy = 25;
  std::uint32_t generatorRoll = 0;

  std::uint32_t bayerInit = RedFollowedByGreen;
  double blueGain = 1.0;
  double greenGain = 1.0;
  double redGain = 1.0;

  std::uint32_t triggerMode = ATM_GENERATOR;
  std::uint32_t triggerState = TS_SYNC_STOP;
  double frameRate = 8.0;  // Hz
  std::uint32_t exceededPeriodLimitsClear = FG_APPLY;
  double debounce = 1.0;
  std::uint32_t inputSource = TRGINSRC_0;
  std::uint32_t inputPolarity = HIGH_ACTIVE;
  std::uint32_t inputDownscale = 1;
  std::uint32_t inputDownscalePhase = 0;
  std::uint32_t bypassSource = TRGINSRC_0;
  std::uint32_t softwareTrigger = 1;
  std::uint32_t inputPulseCountClear = FG_APPLY;
  std::uint32_t inputMinMaxFrequencyClear = FG_APPLY;
  std::uint32_t multiplyPulses = 1;
  std::uint32_t queueMode = FG_OFF;
  std::uint32_t queueOnThreshold = 2047;
  std::uint32_t queueOffThreshold = 2;
  std::uint32_t pulseForm0Downscale = 1;
  std::uint32_t pulseForm0Phase = 0;
  double pulseForm0Delay = 0.0;
  double pulseForm0Width = 4.0;
  std::uint32_t pulseForm1Downscale = 1;
  std::uint32_t pulseForm1Phase = 0;
  double pulseForm1Delay = 0.0;
  double pulseForm1Width = 4.0;
  std::uint32_t actionCommandSource = PULSEGEN0;
  std::uint32_t outputSelect0 = NOT_PULSEGEN0;
  std::uint32_t outputSelect1 = NOT_PULSEGEN1;
  std::uint32_t outputStatisticsSource = PULSEGEN0;
  std::uint32_t outputPulseCountClear = FG_APPLY;
  std::uint32_t missingFrameClear = FG_APPLY;
  std::uint32_t outputEventSelect = PULSEGEN0;
  std::uint32_t digitalOutput = 3;
};

/// Refers to the setting of a parameter; empty for a parameter without one.
struct Field {
  std::uint32_t ProcessSettings::*integer = nullptr;
  double ProcessSettings::*real = nullptr;

  constexpr Field() = default;
  constexpr Field(std::uint32_t ProcessSettings::*member) : integer(member) {}
  constexpr Field(double ProcessSettings::*member) : real(member) {}

  /// The setting of the second argument's type.
  std::uint32_t& of(ProcessSettings& settings, std::uint32_t) const { return settings.*integer; }
  double& of(ProcessSettings& settings, double) const { return settings.*real; }
};

}  // namespace velmora
