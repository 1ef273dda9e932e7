/// Trigger outputs, camera action command, digital outputs, statistics and monitoring flags.
#include <algorithm>

#include "tests/trigger_fixture.h"

namespace fixture {
namespace {

using TriggerOutputsTest = TriggerTest;

struct Output {
  int id;
  std::string name;
};
const Output kOutputs[] = {
    {FG_CAMERA_ACTION_COMMAND_SOURCE, "TriggerCamera_SelectTriggerCamera_"},
    {FG_TRIGGEROUT_SELECT0, "TriggerOutput_Select0_"},
    {FG_TRIGGEROUT_SELECT1, "TriggerOutput_Select1_"},
};

TEST_F(TriggerOutputsTest, SourcesAreRoutedAtOnceUnlessStoppedAsynchronously) {
  struct Route {
    std::uint32_t source;
    const char *select, *invert;
  };
  const Route routes[] = {{0, "0", "0"}, {1, "1", "0"}, {4, "3", "0"},  {5, "3", "1"},
                          {6, "0", "1"}, {7, "1", "1"}, {10, "2", "0"}, {11, "2", "1"}};
  const auto writes = [](const Output& output, const Route& route) {
    return Lines{output.name + "Select_Select = " + route.select,
                 output.name + "Polarity_Invert = " + route.invert};
  };
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const auto state : {TS_SYNC_STOP, TS_ACTIVE}) {
      ASSERT_EQ(set(port, FG_TRIGGERSTATE, state), VELMORA_OK);
      for (const Output& output : kOutputs) {
        for (const std::uint32_t source : {2u, 3u, 8u, 9u, 12u, 0xFFFFFFFFu})
          fails(port, output.id, source, VELMORA_OUT_OF_RANGE);
        for (const Route& route : routes)
          accepts(port, output.id, route.source, writes(output, route));
      }
    }
    for (const Route& route : routes) {
      ASSERT_EQ(set(port, FG_TRIGGERSTATE, TS_ASYNC_STOP), VELMORA_OK);
      Lines expected;
      for (const Output& output : kOutputs) {
        fails(port, output.id, 2, VELMORA_OUT_OF_RANGE);
        accepts(port, output.id, route.source, {});
        const Lines lines = writesOf(port, writes(output, route));
        expected.insert(expected.end(), lines.begin(), lines.end());
      }
      takeWrites();
      ASSERT_EQ(set(port, FG_TRIGGERSTATE, TS_ACTIVE), VELMORA_OK);
      const Lines activation = takeWrites();
      ASSERT_GE(activation.size(), 9u);
      EXPECT_EQ(Lines(activation.begin() + 3, activation.begin() + 9), expected);
    }
  }
}

TEST_F(TriggerOutputsTest, DigitalOutputReachesTwoCamerasFromEveryPort) {
  for (unsigned port = 0; port < kPorts; ++port) {
    EXPECT_EQ(word(port, FG_DIGIO_OUTPUT), 3u);
    for (const std::uint32_t levels : {2u, 1u, 0u, 3u}) {
      accepts(
          port, FG_DIGIO_OUTPUT, levels,
          {"/TriggerCam1_TriggerOutput_Select1_Select_Select = 3",
           "/TriggerCam1_TriggerOutput_Select1_Polarity_Invert = " + std::to_string(levels & 1),
           "/TriggerCam3_TriggerOutput_Select1_Select_Select = 3",
           "/TriggerCam3_TriggerOutput_Select1_Polarity_Invert = " + std::to_string(levels >> 1)});
    }
    fails(port, FG_DIGIO_OUTPUT, 4, VELMORA_OUT_OF_RANGE);
    EXPECT_EQ(word(port, FG_TRIGGEROUT_SELECT1), unsigned{NOT_PULSEGEN1});
  }
}

TEST_F(TriggerOutputsTest, ClearCommands) {
  const std::pair<int, const char*> commands[] = {
      {FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR, "/Monitoring_ClearOverrideCam{c}_Mode"},
      {FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR, "/Monitoring_ClearMissingFrame_Cam{c}_Mode"},
      {FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR, "InputStatistics_ClearPulses_Mode"},
      {FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR, "OutputStatistics_ClearPulses_Mode"},
  };
  const std::string toggle = "InputStatistics_ClearMinMax_Value";
  constexpr int kToggleId = FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR;
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const auto& [id, name] : commands) {
      EXPECT_EQ(word(port, id), 1u);
      fails(port, id, 0, VELMORA_OUT_OF_RANGE);
      fails(port, id, 2, VELMORA_OUT_OF_RANGE);
      accepts(port, id, 1, {name + std::string(" = 2")});
    }
    fails(port, kToggleId, 0, VELMORA_OUT_OF_RANGE);
    accepts(port, kToggleId, 1, {toggle + " = 1"});
    accepts(port, kToggleId, 1, {toggle + " = 0"});
    give(port, toggle, 7);
    accepts(port, kToggleId, 1, {toggle + " = 0"});
    reads(port, kToggleId, 1, {toggle});
  }
}

/// The flags and fill levels of a port in every mode and state, with each bit of the status word
/// that the ports share. What a mode or state decides alone is not read.
TEST_F(TriggerOutputsTest, FlagsAndFillLevels) {
  struct Generator {
    std::uint32_t queued, reached, pending;
  };
  for (unsigned situation = 0; situation < kPorts * 4 * 3 * 12; ++situation) {
    const unsigned bit = situation % 12, port = situation / 144;
    const std::uint32_t state = situation / 12 % 3, mode = situation / 36 % 4 + 1;
    if (port == 0 && mode == ATM_SYNCHRONIZED) continue;
    if (bit == 0) bringTo(port, mode, state);
    const bool software = mode == ATM_SOFTWARE, triggered = software || mode == ATM_EXTERNAL;
    const bool queueing = triggered && state != TS_ASYNC_STOP;
    const std::uint32_t multiply = port + 1;
    ASSERT_EQ(set(port, FG_TRIGGER_MULTIPLY_PULSES, multiply), VELMORA_OK);
    give(port, "/Monitoring_ReadQueueStatus_Status", 1u << bit);
    for (const auto& [queued, reached, pending] :
         {Generator{0, 1, 0}, Generator{0, 0, 1}, Generator{7, 0, 7}, Generator{7, 1, 7}}) {
      SCOPED_TRACE(testing::Message() << "port " << port << " mode " << mode << " state " << state
                                      << " bit " << bit << " pending " << pending);
      give(port, "Generators_QueueValue_Status", queued);
      give(port, "Generators_Generator_MaximumReached_Status", reached);
      const std::uint32_t level = bit == 3 * port + 1 ? 2040 : pending;
      const auto expect = [&](int id, bool read, std::uint32_t value) {
        takeAccesses();
        EXPECT_EQ(word(port, id), read ? value : 0) << "parameter " << id;
        EXPECT_EQ(!takeAccesses().empty(), read) << "parameter " << id;
      };
      expect(FG_TRIGGER_EXCEEDED_PERIOD_LIMITS, triggered, bit == 3 * port ? 1 : 0);
      expect(FG_MISSING_CAMERA_FRAME_RESPONSE, true, bit == 3 * port + 2 ? 1 : 0);
      expect(FG_SOFTWARETRIGGER_IS_BUSY, software, pending != 0 ? 1 : 0);
      expect(FG_TRIGGERQUEUE_FILLLEVEL, queueing, level);
      expect(FG_SOFTWARETRIGGER_QUEUE_FILLLEVEL, queueing && software, level * multiply);
    }
  }
}

TEST_F(TriggerOutputsTest, Statistics) {
  const std::pair<int, std::string> words[] = {
      {FG_TRIGGERIN_STATS_PULSECOUNT, "InputStatistics_ReadPulses_Status"},
      {FG_TRIGGEROUT_STATS_PULSECOUNT, "OutputStatistics_ReadPulses_Status"},
      {FG_CAMERA_ACTION_COMMAND_PENDING_COUNT, "TriggerCamera_ActionCommand_PendingActionCmdCount"},
  };
  const std::pair<int, std::string> periods[] = {
      {FG_TRIGGERIN_STATS_FREQUENCY, "InputStatistics_ReadPeriod_Status"},
      {FG_TRIGGERIN_STATS_MINFREQUENCY, "InputStatistics_ReadMax_Status"},
      {FG_TRIGGERIN_STATS_MAXFREQUENCY, "InputStatistics_ReadMin_Status"},
  };
  for (unsigned port = 0; port < kPorts; ++port) {
    std::uint32_t count = 1000 * (port + 1);
    for (const auto& [id, name] : words) give(port, name, ++count);
    count = 1000 * (port + 1);
    for (const auto& [id, name] : words) EXPECT_EQ(word(port, id), ++count) << id;

    for (const auto& [id, name] : periods) EXPECT_EQ(real(port, id), 0.0);  // No pulse yet.
    const double hertz[] = {50.0 * (1 << port), 12.5, 6.25e6};
    for (unsigned i = 0; i < 3; ++i) give(port, periods[i].second, 62.5e6 / hertz[i]);
    for (unsigned i = 0; i < 3; ++i) EXPECT_DOUBLE_EQ(real(port, periods[i].first), hertz[i]);

    give(0, "/TriggerInput_InputStatus_Status", 0x81 + port);
    EXPECT_EQ(word(0, FG_DIGIO_INPUT), 0x81 + port);
    EXPECT_EQ(word(3, FG_DIGIO_INPUT), 0x81 + port);
  }
}

/// Every access of a get to the design can fail; the caller's value then stays as it is.
TEST_F(TriggerOutputsTest, FailingReads) {
  ASSERT_EQ(set(3, FG_AREATRIGGERMODE, ATM_SOFTWARE), VELMORA_OK);
  unsigned failures = 0;
  for (std::size_t i = kFirstTriggerParameter; i < ids.size(); ++i) {
    SCOPED_TRACE(Fg_getParameterName(applet.fg(), static_cast<int>(i)));
    takeAccesses();
    EXPECT_EQ(applet.real(ids[i], 3).code, VELMORA_OK);
    const std::size_t accesses = takeAccesses().size();
    for (unsigned k = 1; k <= accesses; ++k, ++failures) {
      board::failAt(k, kInjected);
      const Applet::Reading<double> reading = applet.real(ids[i], 3);
      EXPECT_EQ(reading.code, kInjected);
      EXPECT_EQ(reading.value, -1.0);
      EXPECT_EQ(applet.lastError(), kInjected);
    }
    if (std::ranges::count(writable, i) == 0) fails(3, ids[i], 1, VELMORA_NOT_AVAILABLE);
  }
  // Times 5, busy flag 2, fill levels 3 each, flags 2, statistics 5, the two others.
  EXPECT_EQ(failures, 22u);
}

}  // namespace
}  // namespace fixture
