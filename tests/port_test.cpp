/// What no transcript shows: the flags in every situation, parameters that open again, the pace of
/// software triggers.
#include <array>
#include <chrono>

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
    for (const int id : applet.ids())
      if (applet.writable(id)) writable.push_back(id);
  }

  /// Plays the hardware.
  void give(unsigned port, const std::string& name, double value) {
    board::setValue(applet.device(), name, port, value);
  }

  Applet applet;
  std::vector<int> writable;
};

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
  for (const auto& [id, value, pulseAccess] : changes) {
    for (unsigned port = 0; port < kPorts; ++port)
      for (const int each : writable) applet.node(each, port)->accessMode = 0;
    EXPECT_EQ(applet.set(id, value, 2), VELMORA_OK);
    for (unsigned port = 0; port < kPorts; ++port)
      EXPECT_EQ(std::ranges::count_if(
                    writable, [&](int each) { return applet.node(each, port)->accessMode != 0; }),
                port == 2 ? kReopened : 0);
    EXPECT_EQ(applet.node(FG_SENDSOFTWARETRIGGER, 2)->accessMode, pulseAccess);
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

}  // namespace
