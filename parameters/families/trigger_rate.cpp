#include "parameters/families/trigger_rate.h"

#include "parameters/families/pulse_form_generators.h"
#include "parameters/families/time_base.h"
#include "parameters/port/parameter_table.h"
#include "parameters/port/setting.h"

namespace velmora::trigger_rate {
namespace {

/// Minimum period, as the design counts it, while pulses are not queued.
constexpr std::uint32_t kUnlimitedPeriod = 10;

const ParameterRow& ownRow() { return *findParameter(FG_TRIGGER_FRAMESPERSECOND); }

void program(Port& port, double rate) {
  pulse_form_generators::requirePeriod(port, rate);
  port.design.write(DesignId::kMinimumPeriod, time_base::minimumPeriod(rate));
}

}  // namespace

void setFrameRate(Port& port, const ParameterRow& row, double rate) {
  setThrough(port, row, rate, [&] { program(port, rate); });
}

double frameRate(const Port& port) {
  return time_base::frameRateOverTicks(port.settings.frameRate);
}

void programAsStored(Port& port) { setFrameRate(port, ownRow(), port.settings.frameRate); }

void programOverTicks(Port& port) {
  const double rate = frameRate(port);
  requireAccepted(port, ownRow(), rate);
  port.settings.frameRate = rate;
  program(port, rate);
}

void programUnlimited(Port& port) { port.design.write(DesignId::kMinimumPeriod, kUnlimitedPeriod); }

}  // namespace velmora::trigger_rate
