#pragma once

#include <cstdint>

/// Conversions between the SDK's units and those of the trigger block, which counts ticks of 16 ns
/// and debounces in units of three ticks. The order of the operations determines the last bit.
namespace velmora::time_base {

inline constexpr double kTickSeconds = 16e-9;

/// Rounded to the nearest tick.
constexpr std::uint32_t ticksFromMicroseconds(double microseconds) {
  return static_cast<std::uint32_t>(microseconds * 1000 * 0.0625 + 0.5);
}

constexpr double microsecondsFromTicks(std::uint32_t ticks) { return ticks * 16.0 / 1000; }

/// Rounded to the nearest unit of 48 ns.
constexpr std::uint32_t debounceUnitsFromMicroseconds(double microseconds) {
  return static_cast<std::uint32_t>(microseconds * 1000 / 48 + 0.5);
}

constexpr double microsecondsFromDebounceUnits(std::uint32_t units) {
  return units * 16.0 * 3 / 1000;
}

/// Minimum period of the generator as the design counts it: in ticks, less the nine that the
/// generator itself takes. It would wrap around above 6.9 MHz, beyond the range of the frame rate.
constexpr std::uint32_t minimumPeriod(double hertz) {
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(1 / (kTickSeconds * hertz)) - 9);
}

/// A frame rate converted to ticks and back, without rounding to whole ticks.
constexpr double frameRateOverTicks(double hertz) {
  return 1 / ((1 / (hertz * kTickSeconds)) * kTickSeconds);
}

/// Frequency of pulses that are `ticks` apart; 0 when none was measured.
constexpr double hertzFromPeriod(std::uint32_t ticks) {
  return ticks == 0 ? 0.0 : 1 / (ticks * kTickSeconds);
}

}  // namespace velmora::time_base
