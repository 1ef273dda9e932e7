#include "board/model/frame_source.h"

#include <algorithm>
#include <cmath>

namespace board {
namespace {

constexpr double kSimulatorClock = 125e6;   // Hz
constexpr double kFreeRunningRate = 30.0;   // Hz
constexpr double kTick = 16e-9;             // s
constexpr double kGeneratorOverhead = 9.0;  // ticks
/// Keeps rounding errors from holding back an event that is due.
constexpr double kSlack = 1e-6;

constexpr SettingSource kSettingSources[] = {
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

/// Registers hold one less than the count; all ones mean none.
double countOf(std::uint64_t registerValue) { return static_cast<double>(registerValue + 1); }

double simulatorRate(const PortSettings& port) {
  // The height is a 32-bit count: 4294967295 means no lines.
  const auto lines = static_cast<double>(static_cast<std::uint32_t>(port.simulatorHeight + 1));
  const double units = static_cast<double>(port.simulatorLineWidth) * lines;
  const double active = countOf(port.simulatorActive);
  const double period = active + countOf(port.simulatorPassive);
  if (port.simulatorStarted == 0 || units == 0 || active == 0) return 0;
  return kSimulatorClock * active / period / units;
}

bool isSlave(const PortSettings& port, unsigned index) {
  return index != 0 && port.triggerSlave != 0;
}

}  // namespace

std::span<const SettingSource> settingSources() { return kSettingSources; }

double triggerRate(const Ports& ports, unsigned index) {
  const auto& port = ports[index];
  if (port.triggerEnabled == 0) return 0;
  if (isSlave(port, index)) return triggerRate(ports, 0);
  if (port.triggerHeld != 0 || port.triggerExternal != 0 || port.triggerQueued != 0) return 0;
  return 1.0 / ((static_cast<double>(port.triggerPeriod) + kGeneratorOverhead) * kTick);
}

bool followsTrigger(const PortSettings& port) {
  return port.simulatorEnabled == 0 && port.triggerEnabled != 0;
}

double pictureRate(const Ports& ports, unsigned index) {
  const auto& port = ports[index];
  if (port.simulatorEnabled != 0) return simulatorRate(port);
  return followsTrigger(port) ? triggerRate(ports, index) : kFreeRunningRate;
}

bool softwarePulseReaches(const Ports& ports, unsigned pulsed, unsigned index) {
  const auto& port = ports[index];
  const auto& source = ports[pulsed];
  if (port.triggerEnabled == 0 || source.triggerEnabled == 0 || source.triggerHeld != 0) {
    return false;
  }
  return isSlave(port, index) ? pulsed == 0 : pulsed == index;
}

void RateCounter::restart(Time now) {
  base_ = 0;
  fraction_ = 0;
  since_ = now;
}

void RateCounter::setRate(Time now, double perSecond) {
  if (perSecond == rate_) return;
  const double events = exact(now);
  const double whole = std::floor(events + kSlack);
  base_ += static_cast<std::int64_t>(whole);
  fraction_ = std::max(events - whole, 0.0);
  since_ = now;
  rate_ = perSecond;
}

double RateCounter::exact(Time now) const {
  return fraction_ + std::chrono::duration<double>(now - since_).count() * rate_;
}

std::int64_t RateCounter::count(Time now) const {
  return base_ + static_cast<std::int64_t>(std::floor(exact(now) + kSlack));
}

RateCounter::Time RateCounter::until(std::int64_t count, Time now) const {
  constexpr std::chrono::duration<double> kLongest{1e9};
  const double missing = static_cast<double>(count - base_) - exact(now);
  if (missing <= 0) return Time{0};
  if (rate_ <= 0 || missing > kLongest.count() * rate_) {
    return std::chrono::duration_cast<Time>(kLongest);
  }
  return std::chrono::duration_cast<Time>(std::chrono::duration<double>(missing / rate_));
}

}  // namespace board
