#include "parameters/families/pulse_form_generators.h"

#include "parameters/families/time_base.h"
#include "parameters/port/setting.h"

namespace velmora::pulse_form_generators {
namespace {

bool fits(double frameRate, double delay, double width, double downscale) {
  const double period = 1000000 / frameRate;
  return period > delay / downscale && period > width / downscale && period > 0;
}

/// Whether the frame rate leaves room for the delay and width in the design.
bool fitsInDesign(const Port& port, double frameRate, const Generator& generator) {
  const double delayInDesign = delay(port, generator);
  const double widthInDesign = width(port, generator);
  return fits(frameRate, delayInDesign, widthInDesign,
              port.settings.*generator.downscaler.downscale);
}

void writeTime(Port& port, DesignId id, double time, double delay, double width,
               std::uint32_t downscale) {
  if (!fits(port.settings.frameRate, delay, width, downscale)) fail(VELMORA_TRIGGER_PERIOD);
  port.design.write(id, time_base::ticksFromMicroseconds(time));
}

}  // namespace

void requirePeriod(const Port& port, double frameRate) {
  const bool fitsFirst = fitsInDesign(port, frameRate, kGenerator0);
  const bool fitsSecond = fitsInDesign(port, frameRate, kGenerator1);
  if (!fitsFirst || !fitsSecond) fail(VELMORA_TRIGGER_PERIOD);
}

void setDownscale(Port& port, const ParameterRow& row, std::uint32_t value,
                  const Generator& generator) {
  generator.downscaler.setDownscale(port, row, value, [&] {
    if (!fitsInDesign(port, port.settings.frameRate, generator)) fail(VELMORA_DOWNSCALE_PERIOD);
  });
}

void setDelay(Port& port, const ParameterRow& row, double delay, const Generator& generator) {
  setThrough(port, row, delay, [&] {
    writeTime(port, generator.delayId, delay, delay, width(port, generator),
              port.settings.*generator.downscaler.downscale);
  });
}

void setWidth(Port& port, const ParameterRow& row, double width, const Generator& generator) {
  setThrough(port, row, width, [&] {
    writeTime(port, generator.widthId, width, delay(port, generator), width,
              port.settings.*generator.downscaler.downscale);
  });
}

double delay(const Port& port, const Generator& generator) {
  return time_base::microsecondsFromTicks(port.design.read(generator.delayId));
}

double width(const Port& port, const Generator& generator) {
  return time_base::microsecondsFromTicks(port.design.read(generator.widthId));
}

}  // namespace velmora::pulse_form_generators
