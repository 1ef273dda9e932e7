#include "parameters/families/time_base.h"

#include <gtest/gtest.h>

#include <cmath>

namespace velmora::time_base {
namespace {

TEST(TimeBase, MicrosecondsAndTicks) {
  // 62.5 ticks a microsecond: odd numbers of microseconds end in half a tick, which goes up.
  for (std::uint64_t time = 1; time <= 68000000; time += time < 2000 ? 1 : 9973) {
    const auto real = static_cast<double>(time);
    ASSERT_EQ(ticksFromMicroseconds(real), (125 * time + 1) / 2) << time;
    ASSERT_EQ(ticksFromMicroseconds(std::nextafter(real, 0)), (125 * time + 1 - time % 2) / 2);
  }
  for (std::uint64_t ticks = 0; ticks <= 4250000000; ticks += ticks < 100000 ? 1 : 99991) {
    const double time = microsecondsFromTicks(static_cast<std::uint32_t>(ticks));
    ASSERT_EQ(time, static_cast<double>(2 * ticks) / 125);
    ASSERT_EQ(ticksFromMicroseconds(time), ticks);
  }
  for (std::uint32_t units = 0; units <= 63; ++units) {
    ASSERT_EQ(microsecondsFromDebounceUnits(units), units * 48 / 1000.0);
    ASSERT_EQ(debounceUnitsFromMicroseconds(units * 48 / 1000.0), units);
  }
  EXPECT_EQ(debounceUnitsFromMicroseconds(3.0), 63u);  // Half a unit goes up.
  EXPECT_EQ(debounceUnitsFromMicroseconds(std::nextafter(3.0, 0)), 62u);
}

TEST(TimeBase, FrequenciesAndPeriods) {
  EXPECT_EQ(minimumPeriod(8.0), 7812490u);
  EXPECT_EQ(minimumPeriod(0.01455191522836685), 4294967287u);  // 2^32 ticks.
  EXPECT_EQ(minimumPeriod(1.0), 62499990u);  // One tick less than exact: it is cut off.
  for (double rate = 0.0146; rate < 6.25e6; rate *= 1.0007)
    ASSERT_NEAR(frameRateOverTicks(rate), rate, rate * 1e-15);
  EXPECT_EQ(hertzFromPeriod(0), 0.0);
  EXPECT_DOUBLE_EQ(hertzFromPeriod(4294967295), 62.5e6 / 4294967295.0);
}

}  // namespace
}  // namespace velmora::time_base
