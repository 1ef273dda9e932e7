#include "parameters/families/port_status.h"

#include <algorithm>

#include "parameters/port/port.h"
#include "velmora/parameters.h"

namespace velmora::port_status {
namespace {

constexpr std::uint32_t kPixelClock = 1u << 0;
constexpr unsigned kOverflowShift = 5;
constexpr std::uint32_t kOverflow = 1u << kOverflowShift;
constexpr unsigned kBufferStatusShift = 6;
constexpr std::uint32_t kBufferStatus = 3u << kBufferStatusShift;

struct Reading {
  std::uint32_t fillLevel;
  std::uint32_t overflow;
  std::uint32_t runtimeStatus;
};

Reading read(const Port& port) {
  const std::uint32_t fillLevel = port.design.read(DesignId::kFillLevel);
  const std::uint32_t overflow = port.design.read(DesignId::kOverflow);
  return {fillLevel, overflow, port.design.getRuntime(FG_CAMSTATUS_EXTENDED)};
}

/// The quarter of the buffer, from 0, that the fill level (percent) is in.
constexpr std::uint32_t quarter(std::uint32_t fillLevel) {
  return std::min(fillLevel / 25, std::uint32_t{3});
}

}  // namespace

std::uint32_t dmaStatus(const Port& port) { return port.design.getRuntime(FG_DMASTATUS); }

std::uint32_t cameraStatus(const Port& port) { return read(port).runtimeStatus & kPixelClock; }

std::uint32_t cameraStatusExtended(const Port& port) {
  const Reading reading = read(port);
  const std::uint32_t fromRuntime = reading.runtimeStatus & ~(kBufferStatus | kOverflow);
  return fromRuntime | (quarter(reading.fillLevel) << kBufferStatusShift) |
         (reading.overflow << kOverflowShift);
}

}  // namespace velmora::port_status
