#include "parameters/trigger_path.h"

#include <chrono>

#include "parameters/downscaler.h"
#include "parameters/handlers.h"
#include "parameters/pulse_form_generator.h"
#include "parameters/queue_status.h"
#include "parameters/time_base.h"
#include "parameters/trigger_outputs.h"
#include "parameters/trigger_transitions.h"

namespace velmora {

using handlers::requireAccepted;

namespace {

constexpr std::uint32_t kQueueDepth = 2040;
constexpr std::uint32_t kQueueDepthOff = 1;
/// Minimum period, in the design's terms, while pulses are not queued.
constexpr std::uint32_t kUnlimitedPeriod = 10;
constexpr std::uint32_t kClear = 2;
constexpr std::uint32_t kPulse = 2;
/// The design takes a software pulse every ten ticks.
constexpr std::chrono::nanoseconds kSoftwarePulseDistance{160};

constexpr Downscaler::Parts kInputDownscaler = {
    &ProcessSettings::inputDownscale, &ProcessSettings::inputDownscalePhase, FG_TRIGGERIN_DOWNSCALE,
    FG_TRIGGERIN_DOWNSCALE_PHASE};

/// Parameters that can be changed again once a transition is complete.
constexpr int kReopenedParameters[] = {FG_AREATRIGGERMODE,
                                       FG_TRIGGERSTATE,
                                       FG_TRIGGER_FRAMESPERSECOND,
                                       FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR,
                                       FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD,
                                       FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_OFF_THRESHOLD,
                                       FG_TRIGGER_OUTPUT_EVENT_SELECT,
                                       FG_TRIGGERIN_DEBOUNCE,
                                       FG_TRIGGERIN_SRC,
                                       FG_TRIGGERIN_POLARITY,
                                       FG_SENDSOFTWARETRIGGER,
                                       FG_TRIGGERIN_DOWNSCALE,
                                       FG_TRIGGERIN_DOWNSCALE_PHASE,
                                       FG_TRIGGER_MULTIPLY_PULSES,
                                       FG_TRIGGERQUEUE_MODE,
                                       FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE,
                                       FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE,
                                       FG_TRIGGER_PULSEFORMGEN0_DELAY,
                                       FG_TRIGGER_PULSEFORMGEN0_WIDTH,
                                       FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE,
                                       FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE,
                                       FG_TRIGGER_PULSEFORMGEN1_DELAY,
                                       FG_TRIGGER_PULSEFORMGEN1_WIDTH,
                                       FG_CAMERA_ACTION_COMMAND_SOURCE,
                                       FG_TRIGGEROUT_SELECT0,
                                       FG_TRIGGEROUT_SELECT1,
                                       FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR};

constexpr std::uint32_t kReadOnly = REGISTER_INFO_READABLE;
constexpr std::uint32_t kOpen =
    REGISTER_INFO_READABLE | REGISTER_INFO_WRITABLE | REGISTER_INFO_RUNTIME_FLAG;

/// Waits without giving up the processor: the shortest sleep is several hundred times as long.
void waitFor(std::chrono::nanoseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (std::chrono::steady_clock::now() < end) {
  }
}

}  // namespace

void TriggerPath::setMode(const ParameterRow& row, std::uint32_t mode) {
  requireAccepted(port_, row, mode);
  changeTo(port_.settings.triggerMode, mode);
}

void TriggerPath::setState(const ParameterRow& row, std::uint32_t state) {
  requireAccepted(port_, row, state);
  changeTo(port_.settings.triggerState, state);
}

/// Stores a new mode or state and takes the steps that lead there. Steps see the new situation.
void TriggerPath::changeTo(std::uint32_t& setting, std::uint32_t value) {
  const auto& settings = port_.settings;
  const TriggerSituation from{settings.triggerMode, settings.triggerState};
  Transaction change(setting, value);
  Transaction rate(port_.settings.frameRate);  // Steps may store it anew.
  for (const Step step : transition(from, {settings.triggerMode, settings.triggerState}))
    (this->*step)();
  rate.keep();
  change.keep();
  describeTransition();
}

void TriggerPath::describeTransition() {
  for (const int parameter : kReopenedParameters) port_.describeAccess(parameter, kOpen);
  if (port_.settings.triggerMode == ATM_EXTERNAL)
    port_.describeAccess(FG_SENDSOFTWARETRIGGER, kReadOnly);
}

void TriggerPath::park() { TriggerOutputs(port_).park(); }
void TriggerPath::route() { TriggerOutputs(port_).route(); }
void TriggerPath::hold() { port_.design.write(DesignId::kClearQueuePulse, 1u); }
void TriggerPath::release() { port_.design.write(DesignId::kClearQueuePulse, 0u); }
void TriggerPath::externalOn() { port_.design.write(DesignId::kSelectExternal, 1u); }
void TriggerPath::externalOff() { port_.design.write(DesignId::kSelectExternal, 0u); }
void TriggerPath::slaveOn() { port_.design.write(DesignId::kSlaveMode, 1u); }
void TriggerPath::slaveOff() { port_.design.write(DesignId::kSlaveMode, 0u); }
void TriggerPath::generatorsOn() { port_.design.write(DesignId::kPulseFormGeneratorsEnable, 1u); }
void TriggerPath::generatorsOff() { port_.design.write(DesignId::kPulseFormGeneratorsEnable, 0u); }

void TriggerPath::resetCounters() {
  port_.design.write(DesignId::kMissingFrameReset, kClear);
  port_.design.write(DesignId::kPulseForm0DownscaleClear, kClear);
  port_.design.write(DesignId::kPulseForm1DownscaleClear, kClear);
}

void TriggerPath::clearInputDownscale() {
  port_.design.write(DesignId::kInputDownscaleClear, kClear);
}

void TriggerPath::clearSequenceDownscale() {
  port_.design.write(DesignId::kSequenceDownscaleClear, kClear);
}

void TriggerPath::startGenerator() {
  hold();
  port_.design.write(DesignId::kEnableQueue, 0u);
  programPeriod();
  generatorsOn();
  release();
}

void TriggerPath::startQueue() {
  hold();
  port_.design.write(DesignId::kEnableQueue, 1u);
  programPeriod();
  generatorsOn();
  release();
}

void TriggerPath::restartGenerator() {
  hold();
  port_.design.write(DesignId::kEnableQueue, 0u);
  setFrameRate(*findParameter(FG_TRIGGER_FRAMESPERSECOND), port_.settings.frameRate);
  generatorsOn();
  release();
}

/// Takes the stored frame rate over ticks and back before it programs it.
void TriggerPath::programPeriod() {
  const double rate = time_base::frameRateOverTicks(port_.settings.frameRate);
  requireAccepted(port_, *findParameter(FG_TRIGGER_FRAMESPERSECOND), rate);
  port_.settings.frameRate = rate;
  programMinimumPeriod(rate);
}

void TriggerPath::programMinimumPeriod(double frameRate) {
  const bool fitsFirst = PulseForm<0>(port_).fits(frameRate);
  const bool fitsSecond = PulseForm<1>(port_).fits(frameRate);
  if (!fitsFirst || !fitsSecond) throw int{VELMORA_TRIGGER_PERIOD};
  port_.design.write(DesignId::kMinimumPeriod, time_base::minimumPeriod(frameRate));
}

void TriggerPath::setFrameRate(const ParameterRow& row, double frameRate) {
  handlers::setThrough(port_, row, frameRate, [&] { programMinimumPeriod(frameRate); });
}

double TriggerPath::frameRate() const {
  return time_base::frameRateOverTicks(port_.settings.frameRate);
}

void TriggerPath::setDebounce(const ParameterRow& row, double time) {
  handlers::setThrough(port_, row, time, [&] {
    port_.design.write(DesignId::kDebouncePeriod, time_base::debounceUnitsFromMicroseconds(time));
  });
}

double TriggerPath::debounce() const {
  return time_base::microsecondsFromDebounceUnits(port_.design.read(DesignId::kDebouncePeriod));
}

void TriggerPath::setInputDownscale(const ParameterRow& row, std::uint32_t downscale) {
  Downscaler(port_, kInputDownscaler).setDownscale(row, downscale, [] {});
}

void TriggerPath::setInputDownscalePhase(const ParameterRow& row, std::uint32_t phase) {
  Downscaler(port_, kInputDownscaler).setPhase(row, phase);
}

void TriggerPath::setMultiplyPulses(const ParameterRow& row, std::uint32_t factor) {
  requireAccepted(port_, row, factor);
  Transaction change(port_.settings.multiplyPulses, factor);
  // The selected pulse must never lie beyond the series.
  const bool grows = factor > change.previous();
  port_.design.write(grows ? DesignId::kSequenceDownscale : DesignId::kSequenceSelectedPulse,
                     factor);
  port_.design.write(grows ? DesignId::kSequenceSelectedPulse : DesignId::kSequenceDownscale,
                     factor);
  clearSequenceDownscale();
  change.keep();
}

void TriggerPath::setQueueMode(const ParameterRow& row, std::uint32_t mode) {
  requireAccepted(port_, row, mode);
  const bool on = mode == FG_ON;
  Transaction change(port_.settings.queueMode, mode);
  Transaction rate(port_.settings.frameRate);  // Programming the period stores it anew.
  if (port_.settings.triggerMode != ATM_GENERATOR) {
    if (on)
      programPeriod();
    else
      port_.design.write(DesignId::kMinimumPeriod, kUnlimitedPeriod);
    port_.design.write(DesignId::kQueueFullValue, on ? kQueueDepth : kQueueDepthOff);
    port_.design.write(DesignId::kQueueEnabled, on ? 1u : 0u);
  }
  rate.keep();
  change.keep();
  port_.describeMaximum(FG_SENDSOFTWARETRIGGER, on ? kQueueDepth : kQueueDepthOff);
}

std::uint32_t TriggerPath::queueFillLevel() const {
  const auto& settings = port_.settings;
  const bool queued = settings.triggerMode == ATM_EXTERNAL || settings.triggerMode == ATM_SOFTWARE;
  return queued && settings.triggerState != TS_ASYNC_STOP ? pendingPulses() : 0;
}

void TriggerPath::sendSoftwareTrigger(std::uint32_t pulses) {
  const auto& settings = port_.settings;
  const bool queued = settings.queueMode == FG_ON;
  if (pulses == 0 || pulses > (queued ? kQueueDepth : kQueueDepthOff))
    throw int{VELMORA_OUT_OF_RANGE};
  Transaction change(port_.settings.softwareTrigger, pulses);
  if (settings.triggerMode != ATM_SOFTWARE) throw int{VELMORA_NOT_SOFTWARE_MODE};
  if (settings.triggerState != TS_ACTIVE) throw int{VELMORA_TRIGGER_NOT_ACTIVE};
  if (!queued && generatorBusy()) throw int{VELMORA_TRIGGER_BUSY};
  for (; pulses > 0; --pulses) {
    port_.design.write(DesignId::kSoftwareTrigger, kPulse);
    waitFor(kSoftwarePulseDistance);
  }
  change.keep();
}

bool TriggerPath::generatorBusy() const {
  const bool periodOver = port_.design.read(DesignId::kMaximumReached) != 0;
  const bool queueEmpty = port_.design.read(DesignId::kQueueValue) == 0;
  return !periodOver || !queueEmpty;
}

std::uint32_t TriggerPath::softwareTriggerBusy() const {
  if (port_.settings.triggerMode != ATM_SOFTWARE) return IS_NOT_BUSY;
  return generatorBusy() ? IS_BUSY : IS_NOT_BUSY;
}

std::uint32_t TriggerPath::softwareTriggerQueueFillLevel() const {
  const auto& settings = port_.settings;
  if (settings.triggerMode != ATM_SOFTWARE || settings.triggerState == TS_ASYNC_STOP) return 0;
  return pendingPulses() * settings.multiplyPulses;
}

std::uint32_t TriggerPath::pendingPulses() const {
  if (QueueStatus(port_.design.read(DesignId::kQueueStatus)).queueFull(port_.index))
    return kQueueDepth;
  if (const std::uint32_t queued = port_.design.read(DesignId::kQueueValue); queued != 0)
    return queued;
  const bool pulseInProgress = port_.design.read(DesignId::kMaximumReached) == 0;
  return pulseInProgress ? 1 : 0;
}

}  // namespace velmora
