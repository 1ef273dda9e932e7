#pragma once

#include <cstdint>

#include "parameters/parameter_table.h"

namespace velmora {

/// A port's trigger path from its input to the pulse form generators: area trigger mode and state
/// with the transitions between them, frame rate, input conditioning, queue and software trigger.
/// Times are in µs, frequencies in Hz.
class TriggerPath {
 public:
  explicit TriggerPath(Port& port) : port_(port) {}

  void setMode(const ParameterRow& row, std::uint32_t mode);
  void setState(const ParameterRow& row, std::uint32_t state);

  void setFrameRate(const ParameterRow& row, double frameRate);
  double frameRate() const;

  /// The debouncer is one for all ports: the last write wins.
  void setDebounce(const ParameterRow& row, double time);
  double debounce() const;
  void setInputDownscale(const ParameterRow& row, std::uint32_t downscale);
  void setInputDownscalePhase(const ParameterRow& row, std::uint32_t phase);

  void setMultiplyPulses(const ParameterRow& row, std::uint32_t factor);
  void setQueueMode(const ParameterRow& row, std::uint32_t mode);
  std::uint32_t queueFillLevel() const;

  /// Sends pulses, one after the other; a design that refuses one ends it.
  void sendSoftwareTrigger(std::uint32_t pulses);
  std::uint32_t softwareTriggerBusy() const;
  std::uint32_t softwareTriggerQueueFillLevel() const;

  /// A step of a transition. Throws the code of the access that fails.
  using Step = void (TriggerPath::*)();

  /// @name Steps of the transitions
  /// @{
  void park();
  void route();
  void hold();
  void release();
  void externalOn();
  void externalOff();
  void slaveOn();
  void slaveOff();
  void generatorsOn();
  void generatorsOff();
  void resetCounters();
  void clearInputDownscale();
  void clearSequenceDownscale();
  void startGenerator();
  void startQueue();
  void restartGenerator();
  /// @}

 private:
  void changeTo(std::uint32_t& setting, std::uint32_t value);
  void describeTransition();
  void programPeriod();
  void programMinimumPeriod(double frameRate);
  std::uint32_t pendingPulses() const;
  bool generatorBusy() const;

  Port& port_;
};

}  // namespace velmora
