/// What no transcript shows: a long random walk over all parameters of all ports, the flags in
/// every situation, parameters that open again, the pace of software triggers.
#include <chrono>
#include <cmath>
#include <random>
#include <set>

#include "tests/applet_test.h"

namespace {

using namespace fixture;

std::string trigger(const std::string& name) { return "Device1_Process4_Trigger_" + name; }
std::string camera(unsigned port, const std::string& name) {
  return trigger(fmt::format("TriggerCam{}_{}", port, name));
}

class Port : public testing::Test {
 protected:
  Port() {
    board::stopJournal();
    // Follows from what failing writes left, so it is kept still.
    for (unsigned port = 0; port < kPorts; ++port) give(port, "FG_CAMSTATUS_EXTENDED", 1);
    for (const int id : applet.ids())
      if (applet.writable(id)) writable.push_back(id);
  }

  /// Plays the hardware.
  void give(unsigned port, const std::string& name, double value) {
    board::setValue(applet.device(), name, port, value);
  }
  std::uint32_t below(std::uint32_t count) { return static_cast<std::uint32_t>(random() % count); }
  bool oneIn(std::uint32_t count) { return below(count) == 0; }

  /// A value for a parameter as described: mostly inside its range, often near an end of it.
  double randomValue(const RegisterInfo& node) {
    const double share = static_cast<double>(random()) / 4294967296.0;
    if (node.kind == REGISTER_INFO_ENUM) {
      const auto& entries = node.value.enumeration;
      return oneIn(8) ? below(13) : entries.values[below(entries.entryCount)];
    }
    if (node.kind == REGISTER_INFO_UINT) {
      const auto [min, max, inc] = node.value.uint32;
      if (oneIn(8)) return oneIn(2) ? min - 1.0 : max + 1.0;
      return oneIn(2) ? below(12) : min + std::floor(share * (max - min) / inc) * inc;
    }
    const auto [min, max, inc] = node.value.real;
    if (oneIn(8))
      return std::array{min, max, std::nextafter(min, -1), 2 * max, std::nan("")}[below(5)];
    const double least = std::max(min, 1e-3);
    return least * std::pow(max / least, share);
  }

  static bool isDescribed(const RegisterInfo& node, double value) {
    const auto& entries = node.value.enumeration;
    if (node.kind == REGISTER_INFO_ENUM)
      return std::count(entries.values, entries.values + entries.entryCount, value) == 1;
    return node.kind == REGISTER_INFO_UINT
               ? value >= node.value.uint32.min && value <= node.value.uint32.max
               : value >= node.value.real.min && value <= node.value.real.max;
  }

  Sight sightOfAll() {
    Sight all;
    for (unsigned port = 0; port < kPorts; ++port) all.merge(sightOf(applet, port));
    return all;
  }

  Applet applet;
  std::vector<int> writable;
  std::mt19937 random{20240229};
};

TEST_F(Port, WhatFailsChangesNothing) {
  constexpr int kFavourites[] = {FG_AREATRIGGERMODE, FG_TRIGGERSTATE, FG_SENDSOFTWARETRIGGER};
  std::set<std::pair<unsigned, int>> accepted, failed;
  std::map<int, int> codes;
  Sight before;
  for (int step = 0; step < 20000; ++step) {
    if (step % 16 == 0) {  // The hardware goes on.
      give(below(kPorts), trigger("Monitoring_ReadQueueStatus_Status"), below(4096));
      const unsigned port = below(kPorts);
      give(port, camera(port, "Generators_QueueValue_Status"), below(2));
      give(port, camera(port, "Generators_Generator_MaximumReached_Status"), oneIn(4) ? 0 : 1);
      before = sightOfAll();
    }
    const unsigned port = below(kPorts);
    const int id = oneIn(4) ? kFavourites[below(3)]
                            : writable[below(static_cast<std::uint32_t>(writable.size()))];
    const RegisterInfo& node = *applet.node(id, port);
    const double value = randomValue(node);
    const bool described = isDescribed(node, value), real = node.kind == REGISTER_INFO_DOUBLE;
    if (oneIn(2)) board::failAt(1 + below(oneIn(2) ? 2 : 24), kInjected);
    const int code =
        real ? applet.set(id, value, port) : applet.set(id, static_cast<std::int64_t>(value), port);
    board::clearFaults();
    SCOPED_TRACE(testing::Message() << "step " << step << " parameter " << id << " port " << port
                                    << " value " << value << " code " << code);
    ASSERT_EQ(applet.lastError(), code);
    ASSERT_TRUE(described || code == VELMORA_OUT_OF_RANGE);
    Sight after = sightOfAll();
    for (const auto& [place, seen] : before)
      // The debouncer serves all ports.
      if (code != VELMORA_OK || (place.first != port && place.second != FG_TRIGGERIN_DEBOUNCE)) {
        ASSERT_EQ(seen, after.at(place)) << place.second << " on port " << place.first;
      }
    ++codes[code];
    if (code == kInjected) failed.emplace(port, id);
    if (code == VELMORA_OK) {
      accepted.emplace(port, id);
      ASSERT_TRUE(real || applet.word(id, port).value == value);
    }
    before = std::move(after);
  }
  // It went everywhere. Two parameters reach no design.
  EXPECT_EQ(accepted.size(), kPorts * writable.size());
  EXPECT_EQ(failed.size(), kPorts * (writable.size() - 2));
  for (const int code :
       {VELMORA_STEP_VIOLATION, VELMORA_TRIGGER_PERIOD, VELMORA_DOWNSCALE_PERIOD,
        VELMORA_NOT_SOFTWARE_MODE, VELMORA_TRIGGER_NOT_ACTIVE, VELMORA_TRIGGER_BUSY})
    EXPECT_GT(codes[code], 0) << code;
}

/// The flags and fill levels of a port in every mode and state, with each bit of the status word
/// that the ports share. What a mode or state decides alone is not read.
TEST_F(Port, FlagsAndFillLevels) {
  board::startJournal();
  const std::array<std::uint32_t, 3> generators[] = {{0, 1, 0}, {0, 0, 1}, {7, 0, 7}, {7, 1, 7}};
  for (unsigned situation = 0; situation < kPorts * 4 * 3 * 12; ++situation) {
    const unsigned bit = situation % 12, port = situation / 144;
    const std::uint32_t state = situation / 12 % 3, mode = situation / 36 % 4 + 1;
    if (port == 0 && mode == ATM_SYNCHRONIZED) continue;
    ASSERT_EQ(applet.set(FG_AREATRIGGERMODE, mode, port), VELMORA_OK);
    ASSERT_EQ(applet.set(FG_TRIGGERSTATE, state, port), VELMORA_OK);
    ASSERT_EQ(applet.set(FG_TRIGGER_MULTIPLY_PULSES, port + 1, port), VELMORA_OK);
    const bool software = mode == ATM_SOFTWARE, triggered = software || mode == ATM_EXTERNAL;
    const bool queueing = triggered && state != TS_ASYNC_STOP;
    give(port, trigger("Monitoring_ReadQueueStatus_Status"), 1u << bit);
    for (const auto& [queued, reached, pending] : generators) {
      give(port, camera(port, "Generators_QueueValue_Status"), queued);
      give(port, camera(port, "Generators_Generator_MaximumReached_Status"), reached);
      const std::uint32_t level = bit == 3 * port + 1 ? 2040 : pending;
      const auto expect = [&](int id, bool read, std::uint32_t value) {
        takeAccesses();
        EXPECT_EQ(applet.word(id, port).value, read ? value : 0) << id << " in " << situation;
        EXPECT_EQ(!takeAccesses().empty(), read) << id << " in " << situation;
      };
      expect(FG_TRIGGER_EXCEEDED_PERIOD_LIMITS, triggered, bit == 3 * port ? 1 : 0);
      expect(FG_MISSING_CAMERA_FRAME_RESPONSE, true, bit == 3 * port + 2 ? 1 : 0);
      expect(FG_SOFTWARETRIGGER_IS_BUSY, software, pending != 0 ? 1 : 0);
      expect(FG_TRIGGERQUEUE_FILLLEVEL, queueing, level);
      expect(FG_SOFTWARETRIGGER_QUEUE_FILLLEVEL, queueing && software, level * (port + 1));
    }
  }
}

/// A completed transition opens the trigger parameters of its port again but for six, the software
/// trigger only as it applies.
TEST_F(Port, TransitionReopensParameters) {
  const std::tuple<int, std::uint32_t, std::uint32_t> changes[] = {
      {FG_TRIGGERSTATE, TS_ACTIVE, 7}, {FG_AREATRIGGERMODE, ATM_EXTERNAL, 1}};
  constexpr int kReopened = 27;
  for (const auto& [id, value, pulseAccess] : changes)
    for (const bool fails : {true, false}) {
      for (unsigned port = 0; port < kPorts; ++port)
        for (const int each : writable) applet.node(each, port)->accessMode = 0;
      if (fails) board::failAtWrite(1, kInjected);
      EXPECT_EQ(applet.set(id, value, 2), fails ? kInjected : VELMORA_OK);
      for (unsigned port = 0; port < kPorts; ++port)
        EXPECT_EQ(std::ranges::count_if(
                      writable, [&](int each) { return applet.node(each, port)->accessMode != 0; }),
                  !fails && port == 2 ? kReopened : 0);
      EXPECT_EQ(applet.node(FG_SENDSOFTWARETRIGGER, 2)->accessMode, fails ? 0 : pulseAccess);
    }
}

/// The design takes one in 160 ns. A bound from below: it holds on the slowest machine.
TEST_F(Port, SoftwareTriggersKeepTheirDistance) {
  constexpr std::uint32_t kMost = 2040;
  ASSERT_EQ(applet.set(FG_AREATRIGGERMODE, ATM_SOFTWARE), VELMORA_OK);
  ASSERT_EQ(applet.set(FG_TRIGGERSTATE, TS_ACTIVE), VELMORA_OK);
  ASSERT_EQ(applet.set(FG_TRIGGERQUEUE_MODE, FG_ON), VELMORA_OK);
  for (int round = 0; round < 20; ++round) {  // Some of which nobody interrupts.
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(applet.set(FG_SENDSOFTWARETRIGGER, kMost), VELMORA_OK);
    EXPECT_GE(std::chrono::steady_clock::now() - start, kMost * std::chrono::nanoseconds(160));
  }
}

TEST(PortWithoutDefaults, ReportsAnUntouchedDesign) {
  Applet applet(kNoDefaults);
  for (unsigned port = 0; port < kPorts; ++port) {
    EXPECT_EQ(applet.word(FG_GEN_ACTIVE, port).value, 4u);
    EXPECT_EQ(applet.word(FG_GEN_PASSIVE, port).value, 30u);
    EXPECT_EQ(applet.word(FG_GEN_LINE_WIDTH, port).value, 1028u);
  }
}

}  // namespace
