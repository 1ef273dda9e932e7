#include "parameters/families/trigger_queue.h"

#include "parameters/families/queue_status.h"
#include "parameters/families/trigger_mode.h"
#include "parameters/families/trigger_rate.h"
#include "parameters/port/setting.h"
#include "velmora/parameters.h"

namespace velmora::trigger_queue {

void setMultiplyPulses(Port& port, const ParameterRow& row, std::uint32_t factor) {
  // The selected pulse must never exceed the length of the series.
  const bool grows = factor > port.settings.multiplyPulses;
  setThrough(port, row, factor, [&] {
    port.design.write(grows ? DesignId::kSequenceDownscale : DesignId::kSequenceSelectedPulse,
                      factor);
    port.design.write(grows ? DesignId::kSequenceSelectedPulse : DesignId::kSequenceDownscale,
                      factor);
    clearSequenceDownscale(port);
  });
}

void clearSequenceDownscale(Port& port) { port.design.trigger(DesignId::kSequenceDownscaleClear); }

void setMode(Port& port, const ParameterRow& row, std::uint32_t mode) {
  const std::uint32_t depth = mode == FG_ON ? kDepth : kDepthOff;
  Transaction rate(port.settings.frameRate);  // Programming the period may change it.
  setThrough(port, row, mode, [&] {
    if (!triggerMode(port).programsQueue) return;
    if (mode == FG_ON)
      trigger_rate::programOverTicks(port);
    else
      trigger_rate::programUnlimited(port);
    port.design.write(DesignId::kQueueFullValue, depth);
    port.design.write(DesignId::kQueueEnabled, mode);
  });
  rate.commit();
  port.describeMaximum(FG_SENDSOFTWARETRIGGER, depth);
}

std::uint32_t fillLevel(const Port& port) {
  const bool queues = triggerMode(port).queuesInput && port.settings.triggerState != TS_ASYNC_STOP;
  return queues ? pendingPulses(port) : 0;
}

std::uint32_t pendingPulses(const Port& port) {
  if (QueueStatus(port.design.read(DesignId::kQueueStatus)).queueFull(port.index)) return kDepth;
  if (const std::uint32_t queued = port.design.read(DesignId::kQueueValue); queued != 0)
    return queued;
  const bool pulseInProgress = port.design.read(DesignId::kMaximumReached) == 0;
  return pulseInProgress ? 1 : 0;
}

bool busy(const Port& port) {
  const bool periodOver = port.design.read(DesignId::kMaximumReached) != 0;
  const bool queueEmpty = port.design.read(DesignId::kQueueValue) == 0;
  return !periodOver || !queueEmpty;
}

}  // namespace velmora::trigger_queue
