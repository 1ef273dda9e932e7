#include "parameters/trigger_outputs.h"

#include "parameters/handlers.h"
#include "parameters/queue_status.h"
#include "parameters/time_base.h"

namespace velmora {

namespace {

/// Inputs of the design's output multiplexers.
enum Select : std::uint32_t { kGenerator0 = 0, kGenerator1 = 1, kBypass = 2, kConstant = 3 };

/// How an output source is made: a multiplexer input and whether it is inverted.
struct OutputSourceRoute {
  std::uint32_t source;
  std::uint32_t select;
  std::uint32_t invert;
};

constexpr OutputSourceRoute kRoutes[] = {
    {PULSEGEN0, kGenerator0, 0}, {PULSEGEN1, kGenerator1, 0},     {GND, kConstant, 0},
    {VCC, kConstant, 1},         {NOT_PULSEGEN0, kGenerator0, 1}, {NOT_PULSEGEN1, kGenerator1, 1},
    {INPUT_BYPASS, kBypass, 0},  {NOT_INPUT_BYPASS, kBypass, 1},
};

const OutputSourceRoute& routeOf(std::uint32_t source) {
  for (const auto& route : kRoutes)
    if (route.source == source) return route;
  throw int{VELMORA_OUT_OF_RANGE};
}

/// The inverter behind a multiplexer.
constexpr DesignId inverterOf(DesignId select) {
  switch (select) {
    case DesignId::kOutputSelect0:
      return DesignId::kOutputInvert0;
    case DesignId::kOutputSelect1:
      return DesignId::kOutputInvert1;
    default:
      return DesignId::kActionCommandInvert;
  }
}

}  // namespace

void TriggerOutputs::park() {
  port_.design.write(DesignId::kOutputSelect0, kConstant);
  port_.design.write(DesignId::kOutputSelect1, kConstant);
}

void TriggerOutputs::route() {
  const auto& settings = port_.settings;
  routeTo(DesignId::kActionCommandSelect, settings.actionCommandSource);
  routeTo(DesignId::kOutputSelect0, settings.outputSelect0);
  routeTo(DesignId::kOutputSelect1, settings.outputSelect1);
}

void TriggerOutputs::routeTo(DesignId select, std::uint32_t source) {
  const OutputSourceRoute& route = routeOf(source);
  if (port_.settings.triggerState == TS_ASYNC_STOP) return;
  port_.design.write(select, route.select);
  port_.design.write(inverterOf(select), route.invert);
}

void TriggerOutputs::setSource(const ParameterRow& row, std::uint32_t source) {
  handlers::setThrough(port_, row, source, [&] { routeTo(row.design, source); });
}

void TriggerOutputs::setDigitalOutput(const ParameterRow& row, std::uint32_t levels) {
  handlers::setThrough(port_, row, levels, [&] {
    // Board outputs 3 and 7 are the second outputs of the ports 1 and 3.
    constexpr unsigned kPortsOfOutputs[] = {1, 3};
    for (unsigned bit = 0; bit < 2; ++bit) {
      const unsigned port = kPortsOfOutputs[bit];
      port_.design.writeOfPort(port, DesignId::kOutputSelect1, kConstant);
      port_.design.writeOfPort(port, DesignId::kOutputInvert1, (levels >> bit) & 1u);
    }
  });
}

std::uint32_t TriggerMonitor::exceededPeriodLimits() const {
  const std::uint32_t mode = port_.settings.triggerMode;
  if (mode == ATM_GENERATOR || mode == ATM_SYNCHRONIZED) return FG_NO;
  return QueueStatus(port_.design.read(DesignId::kQueueStatus)).periodExceeded(port_.index);
}

std::uint32_t TriggerMonitor::missingFrame() const {
  return QueueStatus(port_.design.read(DesignId::kQueueStatus)).frameMissing(port_.index);
}

double TriggerMonitor::frequency() const {
  return time_base::hertzFromPeriod(port_.design.read(DesignId::kInputPeriod));
}

double TriggerMonitor::minFrequency() const {
  return time_base::hertzFromPeriod(port_.design.read(DesignId::kInputPeriodMax));
}

double TriggerMonitor::maxFrequency() const {
  return time_base::hertzFromPeriod(port_.design.read(DesignId::kInputPeriodMin));
}

void TriggerMonitor::clearMinMaxFrequency(const ParameterRow& row, std::uint32_t apply) {
  handlers::setThrough(port_, row, apply, [&] {
    const std::uint32_t current = port_.design.read(DesignId::kInputMinMaxClear);
    port_.design.write(DesignId::kInputMinMaxClear, current == 0 ? 1u : 0u);
  });
}

}  // namespace velmora
