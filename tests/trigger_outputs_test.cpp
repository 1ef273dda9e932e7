/// Trigger outputs, camera action command, digital outputs, statistics and monitoring flags.
#include <algorithm>

#include "tests/trigger_fixture.h"

namespace fixture {
namespace {

using TriggerOutputsTest = TriggerTest;

TEST_F(TriggerOutputsTest, SourcesAreRoutedAtOnceUnlessStoppedAsynchronously) {
  const std::pair<int, std::string> outputs[] = {
      {FG_CAMERA_ACTION_COMMAND_SOURCE, "TriggerCamera_SelectTriggerCamera_"},
      {FG_TRIGGEROUT_SELECT0, "TriggerOutput_Select0_"},
      {FG_TRIGGEROUT_SELECT1, "TriggerOutput_Select1_"}};
  const std::tuple<std::uint32_t, const char*, const char*> routes[] = {
      {0, "0", "0"}, {1, "1", "0"}, {4, "3", "0"},  {5, "3", "1"},
      {6, "0", "1"}, {7, "1", "1"}, {10, "2", "0"}, {11, "2", "1"}};
  for (unsigned port = 0; port < kPorts; ++port)
    for (const auto state : {TS_SYNC_STOP, TS_ACTIVE, TS_ASYNC_STOP}) {
      ASSERT_EQ(set(port, FG_TRIGGERSTATE, state), VELMORA_OK);
      for (const auto& [id, name] : outputs) {
        fails(port, id, {2, 3, 8, 9, 12}, VELMORA_OUT_OF_RANGE);
        for (const auto& [source, select, invert] : routes)
          accepts(port, id, source,
                  state == TS_ASYNC_STOP ? Lines{}
                                         : Lines{name + "Select_Select = " + select,
                                                 name + "Polarity_Invert = " + invert});
      }
    }
}

TEST_F(TriggerOutputsTest, DigitalOutputsAndFrequencyClear) {
  const std::string toggle = "InputStatistics_ClearMinMax_Value";
  const std::string select = "TriggerOutput_Select1_Select_Select = 3";
  const std::string invert = "TriggerOutput_Select1_Polarity_Invert = ";
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const std::uint32_t levels : {2u, 1u, 0u, 3u})  // The same two from every port.
      accepts(port, FG_DIGIO_OUTPUT, levels,
              {"/TriggerCam1_" + select, "/TriggerCam1_" + invert + std::to_string(levels & 1),
               "/TriggerCam3_" + select, "/TriggerCam3_" + invert + std::to_string(levels >> 1)});
    for (const char* value : {" = 1", " = 0"})
      accepts(port, FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR, 1, {toggle + value});
    reads(port, FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR, 1, {toggle});
  }
}

/// The flags and fill levels of a port in every mode and state, with each bit of the status word
/// that the ports share. What a mode or state decides alone is not read.
TEST_F(TriggerOutputsTest, FlagsAndFillLevels) {
  const std::array<std::uint32_t, 3> generators[] = {{0, 1, 0}, {0, 0, 1}, {7, 0, 7}, {7, 1, 7}};
  for (unsigned situation = 0; situation < kPorts * 4 * 3 * 12; ++situation) {
    const unsigned bit = situation % 12, port = situation / 144;
    const std::uint32_t state = situation / 12 % 3, mode = situation / 36 % 4 + 1;
    if (port == 0 && mode == ATM_SYNCHRONIZED) continue;
    if (bit == 0) bringTo(port, mode, state);
    const bool software = mode == ATM_SOFTWARE, triggered = software || mode == ATM_EXTERNAL;
    const bool queueing = triggered && state != TS_ASYNC_STOP;
    ASSERT_EQ(set(port, FG_TRIGGER_MULTIPLY_PULSES, port + 1), VELMORA_OK);
    give(port, "/Monitoring_ReadQueueStatus_Status", 1u << bit);
    for (const auto& [queued, reached, pending] : generators) {
      give(port, "Generators_QueueValue_Status", queued);
      give(port, "Generators_Generator_MaximumReached_Status", reached);
      const std::uint32_t level = bit == 3 * port + 1 ? 2040 : pending;
      const auto expect = [&](int id, bool read, std::uint32_t value) {
        takeAccesses();
        EXPECT_EQ(word(port, id), read ? value : 0) << id << " situation " << situation;
        EXPECT_EQ(!takeAccesses().empty(), read) << id << " situation " << situation;
      };
      expect(FG_TRIGGER_EXCEEDED_PERIOD_LIMITS, triggered, bit == 3 * port ? 1 : 0);
      expect(FG_MISSING_CAMERA_FRAME_RESPONSE, true, bit == 3 * port + 2 ? 1 : 0);
      expect(FG_SOFTWARETRIGGER_IS_BUSY, software, pending != 0 ? 1 : 0);
      expect(FG_TRIGGERQUEUE_FILLLEVEL, queueing, level);
      expect(FG_SOFTWARETRIGGER_QUEUE_FILLLEVEL, queueing && software, level * (port + 1));
    }
  }
}

TEST_F(TriggerOutputsTest, Statistics) {
  const std::pair<int, std::string> rows[] = {
      {FG_TRIGGERIN_STATS_PULSECOUNT, "InputStatistics_ReadPulses_Status"},
      {FG_TRIGGEROUT_STATS_PULSECOUNT, "OutputStatistics_ReadPulses_Status"},
      {FG_CAMERA_ACTION_COMMAND_PENDING_COUNT, "TriggerCamera_ActionCommand_PendingActionCmdCount"},
      {FG_TRIGGERIN_STATS_FREQUENCY, "InputStatistics_ReadPeriod_Status"},
      {FG_TRIGGERIN_STATS_MINFREQUENCY, "InputStatistics_ReadMax_Status"},
      {FG_TRIGGERIN_STATS_MAXFREQUENCY, "InputStatistics_ReadMin_Status"},
  };
  for (unsigned i = 0; i < 6 * kPorts; ++i) give(i / 6, rows[i % 6].second, 1000 + i);
  for (unsigned i = 0; i < 6 * kPorts; ++i) {
    const auto& [id, name] = rows[i % 6];
    EXPECT_DOUBLE_EQ(i % 6 < 3 ? word(i / 6, id) : 62.5e6 / real(i / 6, id), 1000.0 + i);
  }
  give(0, "/TriggerInput_InputStatus_Status", 0x81);
  for (unsigned port = 0; port < kPorts; ++port) EXPECT_EQ(word(port, FG_DIGIO_INPUT), 0x81u);
}

/// Every access of a get to the design can fail; the caller's value then stays as it is.
TEST_F(TriggerOutputsTest, FailingReads) {
  ASSERT_EQ(set(3, FG_AREATRIGGERMODE, ATM_SOFTWARE), VELMORA_OK);
  unsigned failures = 0;
  for (std::size_t i = kFirstTriggerParameter; i < ids.size(); ++i) {
    takeAccesses();
    EXPECT_EQ(applet.real(ids[i], 3).code, VELMORA_OK);
    const std::size_t accesses = takeAccesses().size();
    for (unsigned k = 1; k <= accesses; ++k, ++failures) {
      board::failAt(k, kInjected);
      EXPECT_EQ(applet.real(ids[i], 3), (Applet::Reading<double>{kInjected, -1.0})) << ids[i];
      EXPECT_EQ(applet.lastError(), kInjected);
    }
    if (std::ranges::count(writable, i) == 0) fails(3, ids[i], {1}, VELMORA_NOT_AVAILABLE);
  }
  // Times 5, busy flag 2, fill levels 3 each, flags 2, statistics 5, the two others.
  EXPECT_EQ(failures, 22u);
}

}  // namespace
}  // namespace fixture
