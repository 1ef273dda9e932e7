#include "parameters/time_base.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace velmora::time_base {
namespace {

TEST(TimeBase, MicrosecondsToTicks) {
  // 62.5 ticks a microsecond: odd numbers of microseconds end in half a tick, which goes up.
  for (std::uint64_t time = 1; time <= 68000000; time += time < 2000 ? 1 : 9973) {
    const auto real = static_cast<double>(time);
    ASSERT_EQ(ticksFromMicroseconds(real), (125 * time + 1) / 2) << time;
    if (time % 2 == 1) {
      ASSERT_EQ(ticksFromMicroseconds(std::nextafter(real, 0)), (125 * time - 1) / 2) << time;
    }
  }
  EXPECT_EQ(ticksFromMicroseconds(0), 0u);
  EXPECT_EQ(ticksFromMicroseconds(34000000), 2125000000u);
  EXPECT_EQ(ticksFromMicroseconds(68000000), 4250000000u);
}

TEST(TimeBase, TicksAndBack) {
  for (std::uint64_t ticks = 0; ticks <= 4250000000; ticks += ticks < 100000 ? 1 : 99991) {
    const auto count = static_cast<std::uint32_t>(ticks);
    const double time = microsecondsFromTicks(count);
    ASSERT_EQ(time, static_cast<double>(2 * ticks) / 125);
    ASSERT_EQ(ticksFromMicroseconds(time), count);
  }
}

TEST(TimeBase, DebounceUnits) {
  for (std::uint32_t units = 0; units <= 63; ++units) {
    const double time = microsecondsFromDebounceUnits(units);
    ASSERT_EQ(time, units * 48 / 1000.0);
    ASSERT_EQ(debounceUnitsFromMicroseconds(time), units);
  }
  // Half units, 24 ns.
  EXPECT_EQ(debounceUnitsFromMicroseconds(0.12), 3u);
  EXPECT_EQ(debounceUnitsFromMicroseconds(1.08), 23u);
  EXPECT_EQ(debounceUnitsFromMicroseconds(3.0), 63u);
  EXPECT_EQ(debounceUnitsFromMicroseconds(std::nextafter(3.0, 0)), 62u);
  EXPECT_EQ(debounceUnitsFromMicroseconds(1.0), 21u);
}

TEST(TimeBase, FrameRates) {
  EXPECT_EQ(minimumPeriod(8.0), 7812490u);
  EXPECT_EQ(minimumPeriod(6.25e6), 1u);
  EXPECT_EQ(minimumPeriod(0.01455191522836685), 4294967287u);  // 2^32 ticks.
  EXPECT_EQ(minimumPeriod(1.0), 62499990u);  // One tick less than exact: it is cut off.
  for (double rate = 0.0146; rate < 6.25e6; rate *= 1.0007) {
    ASSERT_NEAR(frameRateOverTicks(rate), rate, rate * 1e-15);
    ASSERT_NEAR(minimumPeriod(rate), 62.5e6 / rate - 9.5, 0.5 + 1e-6) << rate;
  }
}

TEST(TimeBase, MeasuredPeriods) {
  EXPECT_EQ(hertzFromPeriod(0), 0.0);
  EXPECT_DOUBLE_EQ(hertzFromPeriod(62500000), 1.0);
  EXPECT_DOUBLE_EQ(hertzFromPeriod(10), 6.25e6);
  EXPECT_DOUBLE_EQ(hertzFromPeriod(4294967295), 62.5e6 / 4294967295.0);
}

}  // namespace
}  // namespace velmora::time_base
