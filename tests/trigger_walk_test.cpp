/// A long random walk over the trigger parameters of all ports.
#include <algorithm>
#include <cmath>
#include <map>
#include <random>

#include "tests/trigger_fixture.h"

namespace fixture {
namespace {

class TriggerWalkTest : public TriggerTest {
 protected:
  std::uint32_t below(std::uint32_t count) { return static_cast<std::uint32_t>(random() % count); }
  bool oneIn(std::uint32_t count) { return below(count) == 0; }

  /// A value for a parameter as described: mostly inside its range, often near an end of it.
  Value randomValue(const RegisterInfo& node) {
    const double share = static_cast<double>(random()) / 4294967296.0;
    switch (node.kind) {
      case REGISTER_INFO_ENUM: {
        const auto& entries = node.value.enumeration;
        return oneIn(8) ? below(13)
                        : static_cast<std::uint32_t>(entries.values[below(entries.entryCount)]);
      }
      case REGISTER_INFO_UINT: {
        const auto [min, max, inc] = node.value.uint32;
        if (oneIn(8)) return oneIn(2) ? min - 1 : max + 1;
        return oneIn(2) ? below(12) : min + static_cast<std::uint32_t>(share * (max - min));
      }
      default: {
        const auto [min, max, inc] = node.value.real;
        if (oneIn(8))
          return std::array{min, max, std::nextafter(min, -1), 2 * max, std::nan("")}[below(5)];
        const double least = std::max(min, 1e-3);
        return least * std::pow(max / least, share);
      }
    }
  }

  static bool isDescribed(const RegisterInfo& node, const Value& value) {
    if (node.kind == REGISTER_INFO_UINT)
      return value.word() >= node.value.uint32.min && value.word() <= node.value.uint32.max;
    const auto& entries = node.value.enumeration;
    if (node.kind == REGISTER_INFO_ENUM)
      return std::count(entries.values, entries.values + entries.entryCount, value.number) == 1;
    return value.number >= node.value.real.min && value.number <= node.value.real.max;
  }

  /// Lets the hardware go on.
  void disturb() {
    const unsigned port = below(kPorts);
    give(port, "/Monitoring_ReadQueueStatus_Status", below(4096));
    give(port, "Generators_QueueValue_Status", below(2));
    give(port, "Generators_Generator_MaximumReached_Status", oneIn(4) ? 0 : 1);
  }

  std::array<Sight, kPorts> sights() { return {sight(0), sight(1), sight(2), sight(3)}; }

  std::mt19937 random{20240229};
};

TEST_F(TriggerWalkTest, WhatFailsChangesNothing) {
  board::stopJournal();
  constexpr std::size_t kSoftwareTrigger = 52;
  ASSERT_EQ(ids[kSoftwareTrigger], FG_SENDSOFTWARETRIGGER);
  std::map<int, int> codes, accepted;
  std::array<Sight, kPorts> before = sights();
  for (int step = 0; step < 8000; ++step) {
    if (oneIn(16)) {
      disturb();
      before = sights();
    }
    const unsigned port = below(kPorts);
    // Mode, state and software trigger more often than the rest.
    const std::size_t favourites[] = {writable[0], writable[1], kSoftwareTrigger};
    const std::size_t parameter =
        oneIn(3) ? favourites[below(3)]
                 : writable[below(static_cast<std::uint32_t>(writable.size()))];
    const int id = ids[parameter];
    const Value value = randomValue(*nodes[port][parameter]);
    const bool described = isDescribed(*nodes[port][parameter], value);
    if (oneIn(2)) board::failAt(1 + below(oneIn(2) ? 2 : 24), kInjected);
    const int code = set(port, id, value);
    board::clearFaults();
    ++codes[code];
    SCOPED_TRACE(testing::Message()
                 << "step " << step << " parameter " << id << " port " << port << " code " << code);
    ASSERT_EQ(applet.lastError(), code);
    ASSERT_TRUE(described || code == VELMORA_OUT_OF_RANGE);
    std::array<Sight, kPorts> after = sights();
    for (unsigned other = 0; other < kPorts; ++other) {
      // The debouncer serves all ports.
      if (code == VELMORA_OK && (other == port || id == FG_TRIGGERIN_DEBOUNCE)) continue;
      ASSERT_EQ(differences(before[other], after[other]), Lines{}) << "port " << other;
    }
    if (code == VELMORA_OK) {
      ++accepted[id];
      if (!value.isReal) {
        ASSERT_EQ(word(port, id), value.word());
      }
    }
    before = std::move(after);
  }
  // It went everywhere.
  EXPECT_EQ(accepted.size(), writable.size());
  EXPECT_GT(codes[VELMORA_OK], 2000);
  EXPECT_GT(codes[kInjected], 500);
  for (const int code :
       {VELMORA_OUT_OF_RANGE, VELMORA_TRIGGER_PERIOD, VELMORA_DOWNSCALE_PERIOD,
        VELMORA_NOT_SOFTWARE_MODE, VELMORA_TRIGGER_NOT_ACTIVE, VELMORA_TRIGGER_BUSY})
    EXPECT_GT(codes[code], 0) << code;
}

}  // namespace
}  // namespace fixture
