#include "parameters/families/trigger_input.h"

#include "parameters/families/downscaler.h"
#include "parameters/families/time_base.h"
#include "velmora/parameters.h"

namespace velmora::trigger_input {
namespace {

constexpr Downscaler kDownscaler{
    &ProcessSettings::inputDownscale, &ProcessSettings::inputDownscalePhase,
    FG_TRIGGERIN_DOWNSCALE,           FG_TRIGGERIN_DOWNSCALE_PHASE,
    DesignId::kInputDownscale,        DesignId::kInputSelectedPulse};

}  // namespace

void setDebounce(Port& port, const ParameterRow& row, double time) {
  setThrough(port, row, time, [&] {
    port.design.write(DesignId::kDebouncePeriod, time_base::debounceUnitsFromMicroseconds(time));
  });
}

double debounce(const Port& port) {
  return time_base::microsecondsFromDebounceUnits(port.design.read(DesignId::kDebouncePeriod));
}

void setDownscale(Port& port, const ParameterRow& row, std::uint32_t downscale) {
  kDownscaler.setDownscale(port, row, downscale, [] {});
}

void setDownscalePhase(Port& port, const ParameterRow&, std::uint32_t phase) {
  kDownscaler.setPhase(port, phase);
}

}  // namespace velmora::trigger_input
