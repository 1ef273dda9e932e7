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
#include <span>

#include "velmora/handles.h"

namespace board {

using velmora::kPorts;

/// The registers and parameters of a port that determine its pictures.
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

/// Trigger pulses per second of a port, not counting software pulses.
double triggerRate(const Ports& ports, unsigned port);
/// Pictures per second of a port, not counting those that software pulses trigger.
double pictureRate(const Ports& ports, unsigned port);
/// Whether a software pulse on camera `pulsed` reaches the output of `port`.
bool softwarePulseReaches(const Ports& ports, unsigned pulsed, unsigned port);
/// Whether the port's pictures follow its trigger pulses.
bool followsTrigger(const PortSettings& port);

/// The register or parameter that holds a setting; `{}` in its name stands for the port.
struct SettingSource {
  const char* name;
  std::uint64_t PortSettings::*member;
};
std::span<const SettingSource> settingSources();

/// Counts the whole events that occur at a rate. When the rate changes, the fraction of an event
/// that has elapsed is carried over.
class RateCounter {
 public:
  using Time = std::chrono::nanoseconds;  ///< Since the clock's start.

  void restart(Time now);
  void setRate(Time now, double perSecond);
  /// Adds events that occur outside the rate.
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
