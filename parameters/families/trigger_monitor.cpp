#include "parameters/families/trigger_monitor.h"

#include "parameters/families/queue_status.h"
#include "parameters/families/time_base.h"
#include "parameters/families/trigger_mode.h"
#include "parameters/port/setting.h"

namespace velmora::trigger_monitor {

std::uint32_t exceededPeriodLimits(const Port& port) {
  if (!triggerMode(port).queuesInput) return FG_NO;
  return QueueStatus(port.design.read(DesignId::kQueueStatus)).periodExceeded(port.index);
}

std::uint32_t missingFrame(const Port& port) {
  return QueueStatus(port.design.read(DesignId::kQueueStatus)).frameMissing(port.index);
}

double frequency(const Port& port) {
  return time_base::hertzFromPeriod(port.design.read(DesignId::kInputPeriod));
}

double minFrequency(const Port& port) {
  return time_base::hertzFromPeriod(port.design.read(DesignId::kInputPeriodMax));
}

double maxFrequency(const Port& port) {
  return time_base::hertzFromPeriod(port.design.read(DesignId::kInputPeriodMin));
}

void clearMinMaxFrequency(Port& port, const ParameterRow& row, std::uint32_t apply) {
  setThrough(port, row, apply, [&] {
    const std::uint32_t current = port.design.read(DesignId::kInputMinMaxClear);
    port.design.write(DesignId::kInputMinMaxClear, current == 0 ? 1u : 0u);
  });
}

}  // namespace velmora::trigger_monitor
