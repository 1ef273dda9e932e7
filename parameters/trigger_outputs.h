#pragma once

#include <cstdint>

#include "parameters/parameter_table.h"

namespace velmora {

/// What leaves a port's trigger path: the two trigger outputs, the camera action command, and the
/// digital outputs that belong to single ports but are reachable from all.
class TriggerOutputs {
 public:
  explicit TriggerOutputs(Port& port) : port_(port) {}

  /// Puts both outputs at a constant level; their inverters stay, and with them the level.
  void park();
  /// Applies the stored action command source and both output sources. Throws -6000 for a stored
  /// value that is no source.
  void route();

  /// Any of the three sources; while the port is stopped asynchronously it is only stored.
  void setSource(const ParameterRow& row, std::uint32_t source);
  /// Bit 0 drives board output 3, bit 1 board output 7.
  void setDigitalOutput(const ParameterRow& row, std::uint32_t levels);

 private:
  void routeTo(DesignId select, std::uint32_t source);

  Port& port_;
};

/// What a port's trigger path reports: statistics and monitoring flags.
class TriggerMonitor {
 public:
  explicit TriggerMonitor(Port& port) : port_(port) {}

  std::uint32_t exceededPeriodLimits() const;
  std::uint32_t missingFrame() const;
  /// Frequencies of the input in Hz; 0 while nothing was measured.
  double frequency() const;
  double minFrequency() const;
  double maxFrequency() const;

  /// Flips the design's clear value, which restarts the measurement.
  void clearMinMaxFrequency(const ParameterRow& row, std::uint32_t apply);

 private:
  Port& port_;
};

}  // namespace velmora
