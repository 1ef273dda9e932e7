#include "parameters/pulse_form_generator.h"

#include "parameters/handlers.h"
#include "parameters/time_base.h"

namespace velmora {

using handlers::requireAccepted;

bool PulseFormGenerator::fits(double frameRate, double delay, double width) const {
  const double period = 1000000 / frameRate;
  const double downscale = downscaler_.downscale();
  return period > delay / downscale && period > width / downscale && period > 0;
}

bool PulseFormGenerator::fits(double frameRate) const {
  const double delayInDesign = delay();
  return fits(frameRate, delayInDesign, width());
}

void PulseFormGenerator::setDownscale(const ParameterRow& row, std::uint32_t downscale) {
  downscaler_.setDownscale(row, downscale, [this] {
    if (!fits(port_.settings.frameRate)) throw int{VELMORA_DOWNSCALE_PERIOD};
  });
}

void PulseFormGenerator::setPhase(const ParameterRow& row, std::uint32_t phase) {
  downscaler_.setPhase(row, phase);
}

void PulseFormGenerator::setDelay(const ParameterRow& row, double delay) {
  requireAccepted(port_, row, delay);
  Transaction change(port_.settings.*parts_.delay, delay);
  setTime(row, delay, delay, width());
  change.keep();
}

void PulseFormGenerator::setWidth(const ParameterRow& row, double width) {
  requireAccepted(port_, row, width);
  Transaction change(port_.settings.*parts_.width, width);
  setTime(row, width, delay(), width);
  change.keep();
}

void PulseFormGenerator::setTime(const ParameterRow& row, double time, double delay, double width) {
  if (!fits(port_.settings.frameRate, delay, width)) throw int{VELMORA_TRIGGER_PERIOD};
  port_.design.write(row.design, time_base::ticksFromMicroseconds(time));
}

double PulseFormGenerator::delay() const {
  return time_base::microsecondsFromTicks(port_.design.read(parts_.delayId));
}

double PulseFormGenerator::width() const {
  return time_base::microsecondsFromTicks(port_.design.read(parts_.widthId));
}

}  // namespace velmora
