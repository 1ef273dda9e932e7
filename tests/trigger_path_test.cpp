/// The trigger path but for its transitions: input, frame rate, pulse form generators, queue and
/// software trigger.
#include <tuple>
#include <utility>

#include "tests/trigger_fixture.h"

namespace fixture {
namespace {

using TriggerPathTest = TriggerTest;

const std::string kPeriod = "Generators_Generator_MinimumPeriod_Number = ";

/// Downscale, delay and width of each pulse form generator.
constexpr std::array<int, 3> kForms[] = {
    {FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN0_DELAY,
     FG_TRIGGER_PULSEFORMGEN0_WIDTH},
    {FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN1_DELAY,
     FG_TRIGGER_PULSEFORMGEN1_WIDTH}};

TEST_F(TriggerPathTest, ClearCommandsDebouncerAndSequencer) {
  const std::pair<int, std::string> commands[] = {
      {FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR, "/Monitoring_ClearOverrideCam{c}_Mode = 2"},
      {FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR, "/Monitoring_ClearMissingFrame_Cam{c}_Mode = 2"},
      {FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR, "InputStatistics_ClearPulses_Mode = 2"},
      {FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR, "OutputStatistics_ClearPulses_Mode = 2"}};
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const auto& [id, write] : commands) accepts(port, id, 1, {write});
    for (const auto& [time, units] : {std::pair{3.024, "63"}, std::pair{0.096, "2"}}) {
      accepts(port, FG_TRIGGERIN_DEBOUNCE, time,
              {"/TriggerInput_Debounce8_Prescale_Period = " + std::string(units)});
      EXPECT_DOUBLE_EQ(real(3 - port, FG_TRIGGERIN_DEBOUNCE), time);  // All ports share it.
    }
    // The selected pulse never lies beyond the series.
    std::uint32_t last = 1;
    for (const std::uint32_t factor : {3u, 5u, 65535u, 2u, 2u, 1u}) {
      std::string first = "Downscale = ", second = "SelectedPulse = ";
      if (factor <= std::exchange(last, factor)) std::swap(first, second);
      accepts(port, FG_TRIGGER_MULTIPLY_PULSES, factor,
              {"Generators_Sequence_" + first + std::to_string(factor),
               "Generators_Sequence_" + second + std::to_string(factor),
               "Generators_ClearDownscale_Mode = 2"});
    }
  }
}

TEST_F(TriggerPathTest, DownscaleAndPhaseBoundEachOther) {
  const std::tuple<int, int, std::string> rows[] = {
      {FG_TRIGGERIN_DOWNSCALE, FG_TRIGGERIN_DOWNSCALE_PHASE, "Downscale_"},
      {FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE,
       "PulseFormGenerators_PulseFormGenerator0_"},
      {FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE,
       "PulseFormGenerators_PulseFormGenerator1_"}};
  for (unsigned port = 0; port < kPorts; ++port)
    for (const auto& [downscale, phase, name] : rows) {
      accepts(port, downscale, 4, {name + "Downscale_Downscale = 4"});
      EXPECT_EQ(applet.node(phase, port)->value.uint32.max, 3u);
      fails(port, phase, {4}, VELMORA_OUT_OF_RANGE);
      accepts(port, phase, 3, {name + "Downscale_SelectedPulse = 4"});
      EXPECT_EQ(applet.node(downscale, port)->value.uint32.min, 4u);
      fails(port, downscale, {3}, VELMORA_OUT_OF_RANGE);
    }
}

TEST_F(TriggerPathTest, PeriodExceedsDelayAndWidthOfEachGenerator) {
  for (unsigned g = 0; g < 2; ++g) {
    const unsigned port = g + 1;
    const int scale = kForms[g][0];
    accepts(port, FG_TRIGGER_FRAMESPERSECOND, 8.0, {kPeriod + "7812490"});
    fails(port, FG_TRIGGER_FRAMESPERSECOND, {1e7}, VELMORA_OUT_OF_RANGE);
    for (unsigned which = 0; which < 2; ++which) {
      const int time = kForms[g][1 + which], otherTime = kForms[g][2 - which];
      const std::string& name = kTimesOfBothForms[2 * g + which];
      accepts(port, FG_TRIGGER_FRAMESPERSECOND, 4.0, {kPeriod + "15624990"});
      ASSERT_EQ(set(port, scale, 3), VELMORA_OK);
      accepts(port, time, 200000.0, {name + " = 12500000"});
      accepts(port, FG_TRIGGER_FRAMESPERSECOND, 10.0, {kPeriod + "6249991"});
      fails(port, scale, {1, 2}, VELMORA_DOWNSCALE_PERIOD);  // With 2 it is equal.
      fails(port, FG_TRIGGER_FRAMESPERSECOND, {20.0}, VELMORA_TRIGGER_PERIOD);
      accepts(port, FG_TRIGGER_FRAMESPERSECOND, 5.0, {kPeriod + "12499991"});
      fails(port, time, {600000.0}, VELMORA_TRIGGER_PERIOD);
      accepts(port, time, 3.0, {name + " = 188"});  // 187.5 ticks.
      EXPECT_DOUBLE_EQ(real(port, time), 3.008);
      // The time that is not set is the design's; the other generator is not looked at.
      give(port, kTimesOfBothForms[2 - 2 * g], 4294967295.0);
      give(port, name, 37500000);
      fails(port, otherTime, {4.0}, VELMORA_TRIGGER_PERIOD);
      fails(port, scale, {3}, VELMORA_DOWNSCALE_PERIOD);
      give(port, name, 188);
      reads(port, otherTime, 8.0, {name});
      give(port, kTimesOfBothForms[2 - 2 * g], 0);
    }
    reads(port, scale, 7, {kTimesOfBothForms[2 * g], kTimesOfBothForms[2 * g + 1]});
    reads(port, FG_TRIGGER_FRAMESPERSECOND, 30.0, kTimesOfBothForms);
  }
}

TEST_F(TriggerPathTest, QueueMode) {
  const std::string full = "Generators_Queue_QueueFullValue_Number = ";
  const std::string enabled = "Generators_Queue_QueueEnabled_Select = ";
  for (const auto& [mode, port] : {std::pair{ATM_GENERATOR, 0u}, std::pair{ATM_EXTERNAL, 0u},
                                   std::pair{ATM_SOFTWARE, 1u}, std::pair{ATM_SYNCHRONIZED, 3u}}) {
    ASSERT_EQ(set(port, FG_AREATRIGGERMODE, mode), VELMORA_OK);
    Lines on = {kPeriod + "7812490", full + "2040", enabled + "1"};
    Lines off = {kPeriod + "10", full + "1", enabled + "0"};
    if (mode == ATM_GENERATOR) on = off = {};
    accepts(port, FG_TRIGGERQUEUE_MODE, FG_ON, on);
    EXPECT_EQ(applet.node(FG_SENDSOFTWARETRIGGER, port)->value.uint32.max, 2040u);
    accepts(port, FG_TRIGGERQUEUE_MODE, FG_OFF, off);
    EXPECT_EQ(applet.node(FG_SENDSOFTWARETRIGGER, port)->value.uint32.max, 1u);
    if (mode == ATM_GENERATOR) continue;
    give(port, kTimesOfBothForms[3], 7812500);  // As long as the period.
    fails(port, FG_TRIGGERQUEUE_MODE, {FG_ON}, VELMORA_TRIGGER_PERIOD);
    give(port, kTimesOfBothForms[3], 7812499);
    reads(port, FG_TRIGGERQUEUE_MODE, FG_ON, kTimesOfBothForms);
  }
}

TEST_F(TriggerPathTest, SoftwareTrigger) {
  using Word = std::uint32_t;
  constexpr int kId = FG_SENDSOFTWARETRIGGER;
  const std::string reachedName = "Generators_Generator_MaximumReached_Status";
  const std::string queuedName = "Generators_QueueValue_Status";
  const std::string pulse = "TriggerMode_SoftwareTrigger_Mode = 2";
  // Queue mode, mode, state, maximum reached, queued, pulses and code. What comes first decides:
  // count, mode, state, busy generator. The queue makes room for more pulses.
  const std::tuple<Word, Word, Word, Word, Word, Word, int> refusals[] = {
      {FG_OFF, ATM_GENERATOR, TS_SYNC_STOP, 0, 5, 0, VELMORA_OUT_OF_RANGE},
      {FG_ON, ATM_GENERATOR, TS_ACTIVE, 1, 0, 2041, VELMORA_OUT_OF_RANGE},
      {FG_ON, ATM_GENERATOR, TS_ACTIVE, 1, 0, 2040, VELMORA_NOT_SOFTWARE_MODE},
      {FG_OFF, ATM_EXTERNAL, TS_SYNC_STOP, 0, 5, 1, VELMORA_NOT_SOFTWARE_MODE},
      {FG_OFF, ATM_SOFTWARE, TS_ASYNC_STOP, 0, 5, 1, VELMORA_TRIGGER_NOT_ACTIVE},
      {FG_ON, ATM_SOFTWARE, TS_SYNC_STOP, 1, 0, 1, VELMORA_TRIGGER_NOT_ACTIVE},
      {FG_OFF, ATM_SOFTWARE, TS_ACTIVE, 0, 0, 1, VELMORA_TRIGGER_BUSY},
      {FG_OFF, ATM_SOFTWARE, TS_ACTIVE, 1, 5, 1, VELMORA_TRIGGER_BUSY},
      {FG_OFF, ATM_SOFTWARE, TS_ACTIVE, 0, 5, 2, VELMORA_OUT_OF_RANGE}};
  for (const unsigned port : {0u, 3u}) {
    for (const auto& [queueMode, mode, state, reached, queued, pulses, code] : refusals) {
      bringTo(port, mode, state);
      ASSERT_EQ(set(port, FG_TRIGGERQUEUE_MODE, queueMode), VELMORA_OK);
      give(port, reachedName, reached);
      give(port, queuedName, queued);
      fails(port, kId, {pulses}, code);
    }
    // A queue takes pulses from a busy generator too; nothing is read.
    ASSERT_EQ(set(port, FG_TRIGGERQUEUE_MODE, FG_ON), VELMORA_OK);
    accepts(port, kId, 2, {pulse, pulse});
    reads(port, kId, 3, {});
    attempt(port, kId, 2040, VELMORA_OK, writesOf(port, Lines(2040, pulse)));

    ASSERT_EQ(set(port, FG_TRIGGERQUEUE_MODE, FG_OFF), VELMORA_OK);
    give(port, reachedName, 1);
    give(port, queuedName, 0);
    reads(port, kId, 1, {reachedName, queuedName});
    accepts(port, kId, 1, {pulse});
  }
}

}  // namespace
}  // namespace fixture
