#include "parameters/port_status.h"

#include <algorithm>
#include <string_view>

#include "parameters/applet_identity.h"
#include "parameters/handlers.h"

namespace velmora {
namespace {

constexpr std::uint32_t kPixelClock = 1u << 0;
constexpr unsigned kOverflowShift = 5;
constexpr std::uint32_t kOverflow = 1u << kOverflowShift;
constexpr unsigned kBufferStatusShift = 6;
constexpr std::uint32_t kBufferStatus = 3u << kBufferStatusShift;

/// Which quarter of the buffer the fill level (percent) lies in.
constexpr std::uint32_t quarter(std::uint32_t fillLevel) {
  return std::min(fillLevel / 25, std::uint32_t{3});
}

void storeText(Port& port, std::string_view text, void* value, int type) {
  if (type == FG_PARAM_TYPE_STRING) {
    handlers::store(value, port.strings.handOut(text));
  } else {
    auto* const out = static_cast<char*>(value);
    out[text.copy(out, text.size())] = '\0';
  }
}

}  // namespace

std::uint32_t PortStatus::dmaStatus() const { return port_.design.getRuntime(FG_DMASTATUS); }

PortStatus::Reading PortStatus::read() const {
  const std::uint32_t fillLevel = port_.design.read(DesignId::kFillLevel);
  const std::uint32_t overflow = port_.design.read(DesignId::kOverflow);
  return {fillLevel, overflow, port_.design.getRuntime(FG_CAMSTATUS_EXTENDED)};
}

std::uint32_t PortStatus::cameraStatus() const { return read().runtimeStatus & kPixelClock; }

std::uint32_t PortStatus::cameraStatusExtended() const {
  const Reading reading = read();
  const std::uint32_t fromRuntime = reading.runtimeStatus & ~(kBufferStatus | kOverflow);
  return fromRuntime | (quarter(reading.fillLevel) << kBufferStatusShift) |
         (reading.overflow << kOverflowShift);
}

void getHapFile(Port& port, const ParameterRow&, void* value, int type) {
  storeText(port, kHapFileName, value, type);
}

void getParameterDescription(Port& port, const ParameterRow&, void* value, int type) {
  const ParameterRow* described = findParameter(std::string_view(static_cast<const char*>(value)));
  storeText(port, described ? described->description : "-", value, type);
}

void getForwarded(Port& port, const ParameterRow& row, void* value, int type) {
  port.design.getRuntime(row.id, value, type);
}

}  // namespace velmora
