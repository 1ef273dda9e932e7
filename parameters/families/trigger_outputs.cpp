#include "parameters/families/trigger_outputs.h"

#include "parameters/port/setting.h"

namespace velmora::trigger_outputs {
namespace {

/// Inputs of the design's output multiplexers.
enum Select : std::uint32_t { kPulseForm0 = 0, kPulseForm1 = 1, kBypass = 2, kConstant = 3 };

/// How a source reaches an output: by a multiplexer input, inverted or not.
struct OutputSourceRoute {
  std::uint32_t source;
  std::uint32_t select;
  std::uint32_t invert;
};

constexpr OutputSourceRoute kRoutes[] = {
    {PULSEGEN0, kPulseForm0, 0}, {PULSEGEN1, kPulseForm1, 0},     {GND, kConstant, 0},
    {VCC, kConstant, 1},         {NOT_PULSEGEN0, kPulseForm0, 1}, {NOT_PULSEGEN1, kPulseForm1, 1},
    {INPUT_BYPASS, kBypass, 0},  {NOT_INPUT_BYPASS, kBypass, 1},
};

const OutputSourceRoute& routeOf(std::uint32_t source) {
  for (const OutputSourceRoute& route : kRoutes)
    if (route.source == source) return route;
  fail(VELMORA_OUT_OF_RANGE);
}

void routeTo(Port& port, const Output& output, std::uint32_t source) {
  const OutputSourceRoute& route = routeOf(source);
  if (port.settings.triggerState == TS_ASYNC_STOP) return;
  port.design.write(output.select, route.select);
  port.design.write(output.invert, route.invert);
}

}  // namespace

void park(Port& port) {
  port.design.write(kOutput0.select, kConstant);
  port.design.write(kOutput1.select, kConstant);
}

void route(Port& port) {
  for (const Output* output : {&kActionCommand, &kOutput0, &kOutput1})
    routeTo(port, *output, port.settings.*output->source);
}

void setSource(Port& port, const ParameterRow& row, std::uint32_t source, const Output& output) {
  setThrough(port, row, source, [&] { routeTo(port, output, source); });
}

void setDigitalOutput(Port& port, const ParameterRow& row, std::uint32_t levels) {
  setThrough(port, row, levels, [&] {
    // Board outputs 3 and 7 are the second outputs of the ports 1 and 3.
    constexpr unsigned kPortsOfOutputs[] = {1, 3};
    for (unsigned bit = 0; bit < 2; ++bit) {
      const unsigned owner = kPortsOfOutputs[bit];
      port.design.writeOfPort(owner, kOutput1.select, kConstant);
      port.design.writeOfPort(owner, kOutput1.invert, (levels >> bit) & 1u);
    }
  });
}

}  // namespace velmora::trigger_outputs
