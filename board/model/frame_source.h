/// Where the pictures of a port come from, and how fast.
///
/// A port's source is the camera simulator when `CamGenEnable` is 1, else the virtual camera.
/// - The simulator runs while `CamGenStart` is 1. It emits one unit of a line per clock cycle of
///   125 MHz, in `CamGenActive` + 1 of every (`CamGenActive` + 1 + `CamGenPassive` + 1) cycles; a
///   picture takes `CamGenLineWidth` units for each of `CamGenHeight` + 1 lines.
/// - The camera delivers 30 pictures a second on its own while the port's pulse form generators are
///   disabled, and one picture per trigger pulse once they are enabled. The pulses of a camera come
///   - in slave mode, from camera 0's trigger path;
///   - while the queue pulse clear is held, from nowhere;
///   - with external mode and queue off, from the generator, every `MinimumPeriod` + 9 ticks;
///   - otherwise from software pulses only: nothing is wired to the trigger inputs.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>

namespace board {

inline constexpr unsigned kPorts = 4;  ///< Camera ports, each with its DMA channel.

/// What the design was told about a port: the registers and parameters that matter here.
struct PortSettings {
  std::uint64_t simulatorEnabled = 0;
  std::uint64_t simulatorStarted = 0;
  std::uint64_t simulatorLineWidth = 0;
  std::uint64_t simulatorHeight = 0;
  std::uint64_t simulatorActive = 0;
  std::uint64_t simulatorPassive = 0;
  std::uint64_t triggerEnabled = 0;
  std::uint64_t triggerHeld = 0;
  std::uint64_t triggerExternal = 0;
  std::uint64_t triggerQueued = 0;
  std::uint64_t triggerSlave = 0;
  std::uint64_t triggerPeriod = 0;
  std::uint64_t width = 0;
  std::uint64_t height = 0;
};

using Ports = std::array<PortSettings, kPorts>;

/// Trigger pulses per second of a port; 0 when only software pulses, or none, come.
double triggerRate(const Ports& ports, unsigned port);
/// Pictures per second; 0 when only software pulses, or nothing, make pictures.
double pictureRate(const Ports& ports, unsigned port);
/// Whether a software pulse on camera `pulsed` reaches the output of `port`.
bool softwarePulseReaches(const Ports& ports, unsigned pulsed, unsigned port);
/// Whether the port's pictures follow its trigger pulses.
bool followsTrigger(const PortSettings& port);

/// The parameters (names with `{}` for the port number) that a setting is taken from.
struct SettingSource {
  const char* name;
  std::uint64_t PortSettings::*member;
};
inline constexpr SettingSource kSettingSources[] = {
    {"CamGenEnable{}", &PortSettings::simulatorEnabled},
    {"CamGenStart{}", &PortSettings::simulatorStarted},
    {"CamGenLineWidth{}", &PortSettings::simulatorLineWidth},
    {"CamGenHeight{}", &PortSettings::simulatorHeight},
    {"CamGenActive{}", &PortSettings::simulatorActive},
    {"CamGenPassive{}", &PortSettings::simulatorPassive},
    {"Device1_Process4_Trigger_TriggerCam{}_PulseFormGenerators_Enable_Select",
     &PortSettings::triggerEnabled},
    {"Device1_Process4_Trigger_TriggerCam{}_Generators_ClearQueuePulse_Mode",
     &PortSettings::triggerHeld},
    {"Device1_Process4_Trigger_TriggerCam{}_TriggerMode_SelectExternal_Select",
     &PortSettings::triggerExternal},
    {"Device1_Process4_Trigger_TriggerCam{}_Generators_EnableQueue_Select",
     &PortSettings::triggerQueued},
    {"Device1_Process4_Trigger_TriggerCam{}_Synchronize_SlaveMode_Select",
     &PortSettings::triggerSlave},
    {"Device1_Process4_Trigger_TriggerCam{}_Generators_Generator_MinimumPeriod_Number",
     &PortSettings::triggerPeriod},
    {"Device1_Process{}_Buffer_XLength", &PortSettings::width},
    {"Device1_Process{}_Buffer_YLength", &PortSettings::height},
};

/// Counts the whole events of a rate over time. The rate may change; the part of an event that has
/// passed by then counts for the next one.
class RateCounter {
 public:
  using Time = std::chrono::nanoseconds;  ///< Since the clock's start.

  void restart(Time now);
  void setRate(Time now, double perSecond);
  /// Adds events that did not come from the rate.
  void add(std::int64_t events) { base_ += events; }
  std::int64_t count(Time now) const;
  /// Time from `now` until `count` events are reached; the longest time when the rate is 0.
  Time until(std::int64_t count, Time now) const;

 private:
  double exact(Time now) const;

  std::int64_t base_ = 0;
  double fraction_ = 0;
  double rate_ = 0;
  Time since_{0};
};

}  // namespace board
