/// The trigger path but for its transitions: input, frame rate, pulse form generators, queue and
/// software trigger.
#include <cmath>
#include <limits>

#include "tests/trigger_fixture.h"

namespace fixture {
namespace {

using TriggerPathTest = TriggerTest;

const std::string kPeriod = "Generators_Generator_MinimumPeriod_Number";
const std::string kMaximumReached = "Generators_Generator_MaximumReached_Status";
const std::string kQueueValue = "Generators_QueueValue_Status";
const std::string kDebounce = "/TriggerInput_Debounce8_Prescale_Period";
const std::string kPulse = "TriggerMode_SoftwareTrigger_Mode = 2";
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/// The parameters of a pulse form generator.
struct PulseForm {
  int downscale, phase, delay, width;
  std::string name;
};
const PulseForm kPulseForms[] = {
    {FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE,
     FG_TRIGGER_PULSEFORMGEN0_DELAY, FG_TRIGGER_PULSEFORMGEN0_WIDTH,
     "PulseFormGenerators_PulseFormGenerator0_"},
    {FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE, FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE,
     FG_TRIGGER_PULSEFORMGEN1_DELAY, FG_TRIGGER_PULSEFORMGEN1_WIDTH,
     "PulseFormGenerators_PulseFormGenerator1_"},
};
const Lines kTimesOfBothForms = {
    kPulseForms[0].name + "Delay_Delay", kPulseForms[0].name + "Width_Width",
    kPulseForms[1].name + "Delay_Delay", kPulseForms[1].name + "Width_Width"};

TEST_F(TriggerPathTest, ValuesWrittenUnchanged) {
  struct Row {
    int id;
    const char* name;
    std::uint32_t least, most;
  };
  const Row rows[] = {
      {FG_TRIGGERIN_SRC, "InputSelect_Select_Select", 0, 7},
      {FG_TRIGGERIN_BYPASS_SRC, "InputSelect_BypassSelect_Select", 0, 7},
      {FG_TRIGGERIN_POLARITY, "InputSelect_Polarity_Invert", 0, 1},
      {FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD, "Hysteresis_OnLevel_Number", 2, 2047},
      {FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_OFF_THRESHOLD, "Hysteresis_OffLevel_Number", 2, 2047},
      {FG_TRIGGEROUT_STATS_SOURCE, "OutputStatistics_Select_Select", 0, 1},
      {FG_TRIGGER_OUTPUT_EVENT_SELECT, "OutputEvent_Select_Select", 0, 1},
  };
  for (const Row& row : rows) {
    for (unsigned port = 0; port < kPorts; ++port) {
      for (const std::uint32_t value : {row.most, (row.least + row.most) / 2, row.least})
        accepts(port, row.id, value, {row.name + (" = " + std::to_string(value))});
      fails(port, row.id, row.least - 1, VELMORA_OUT_OF_RANGE);
      fails(port, row.id, row.most + 1, VELMORA_OUT_OF_RANGE);
    }
  }
}

TEST_F(TriggerPathTest, DebounceIsSharedAndRounded) {
  accepts(0, FG_TRIGGERIN_DEBOUNCE, 3.024, {kDebounce + " = 63"});
  accepts(3, FG_TRIGGERIN_DEBOUNCE, 0.096, {kDebounce + " = 2"});
  accepts(1, FG_TRIGGERIN_DEBOUNCE, 1.08, {kDebounce + " = 23"});  // Half a unit goes up.
  accepts(2, FG_TRIGGERIN_DEBOUNCE, 1.0, {kDebounce + " = 21"});
  for (unsigned port = 0; port < kPorts; ++port) {
    EXPECT_DOUBLE_EQ(real(port, FG_TRIGGERIN_DEBOUNCE), 1.008);
    for (const double time : {std::nextafter(0.096, 0), std::nextafter(3.024, 4), kNotANumber})
      fails(port, FG_TRIGGERIN_DEBOUNCE, time, VELMORA_OUT_OF_RANGE);
  }
}

TEST_F(TriggerPathTest, DownscaleAndPhaseBoundEachOther) {
  struct Row {
    int downscale, phase;
    std::string name;
    std::uint32_t most;
  };
  const Row rows[] = {
      {FG_TRIGGERIN_DOWNSCALE, FG_TRIGGERIN_DOWNSCALE_PHASE, "Downscale_", 2147483647},
      {kPulseForms[0].downscale, kPulseForms[0].phase, kPulseForms[0].name, 7},
      {kPulseForms[1].downscale, kPulseForms[1].phase, kPulseForms[1].name, 7},
  };
  for (const Row& row : rows) {
    const auto written = [&](const char* name, std::uint32_t value) {
      return Lines{row.name + "Downscale_" + name + " = " + std::to_string(value)};
    };
    for (unsigned port = 0; port < kPorts; ++port) {
      const auto& downscale = applet.node(row.downscale, port)->value.uint32;
      const auto& phase = applet.node(row.phase, port)->value.uint32;
      EXPECT_EQ(phase.max, 0u);
      for (const std::uint32_t value : {0u, row.most + 1, 0xFFFFFFFFu})
        fails(port, row.downscale, value, VELMORA_OUT_OF_RANGE);
      fails(port, row.phase, 1, VELMORA_OUT_OF_RANGE);

      accepts(port, row.downscale, 4, written("Downscale", 4));
      EXPECT_EQ(phase.max, 3u);
      fails(port, row.phase, 4, VELMORA_OUT_OF_RANGE);
      fails(port, row.phase, 0xFFFFFFFF, VELMORA_OUT_OF_RANGE);
      EXPECT_EQ(downscale.min, 1u);
      accepts(port, row.phase, 3, written("SelectedPulse", 4));
      EXPECT_EQ(downscale.min, 4u);
      fails(port, row.downscale, 3, VELMORA_OUT_OF_RANGE);
      accepts(port, row.downscale, row.most, written("Downscale", row.most));
      accepts(port, row.phase, row.most - 1, written("SelectedPulse", row.most));
      fails(port, row.downscale, row.most - 1, VELMORA_OUT_OF_RANGE);
      EXPECT_EQ(phase.max, row.most - 1);
      EXPECT_EQ(downscale.min, row.most);
      accepts(port, row.phase, 0, written("SelectedPulse", 1));
      accepts(port, row.downscale, 1, written("Downscale", 1));
    }
  }
}

TEST_F(TriggerPathTest, MultiplyingNeverSelectsAPulseBeyondTheSeries) {
  const auto ordered = [](const char* first, const char* second, int factor) {
    const std::string value = " = " + std::to_string(factor);
    return Lines{"Generators_Sequence_" + (first + value),
                 "Generators_Sequence_" + (second + value), "Generators_ClearDownscale_Mode = 2"};
  };
  for (const unsigned port : {0u, 3u}) {
    for (const int factor : {3, 5, 65535})
      accepts(port, FG_TRIGGER_MULTIPLY_PULSES, factor,
              ordered("Downscale", "SelectedPulse", factor));
    for (const int factor : {5, 2, 2, 1})
      accepts(port, FG_TRIGGER_MULTIPLY_PULSES, factor,
              ordered("SelectedPulse", "Downscale", factor));
    fails(port, FG_TRIGGER_MULTIPLY_PULSES, 0, VELMORA_OUT_OF_RANGE);
    fails(port, FG_TRIGGER_MULTIPLY_PULSES, 65536, VELMORA_OUT_OF_RANGE);
  }
}

TEST_F(TriggerPathTest, FrameRateLimitsAndPeriods) {
  for (const PulseForm& form : kPulseForms) {  // Narrow enough for the highest rate.
    ASSERT_EQ(set(2, form.downscale, 7), VELMORA_OK);
    ASSERT_EQ(set(2, form.width, 1.0), VELMORA_OK);
  }
  const std::pair<double, const char*> accepted[] = {
      {8.0, "7812490"}, {1000.0, "62490"}, {6.25e6, "1"}, {0.01455191522836685, "4294967287"}};
  for (const auto& [rate, period] : accepted) {
    accepts(2, FG_TRIGGER_FRAMESPERSECOND, rate, {kPeriod + " = " + period});
    EXPECT_DOUBLE_EQ(real(2, FG_TRIGGER_FRAMESPERSECOND), rate);
  }
  for (const double rate :
       {1e7, std::nextafter(6.25e6, 1e7), std::nextafter(0.01455191522836685, 0), 0.0, -8.0,
        kNotANumber, std::numeric_limits<double>::infinity()})
    fails(2, FG_TRIGGER_FRAMESPERSECOND, rate, VELMORA_OUT_OF_RANGE);
  reads(2, FG_TRIGGER_FRAMESPERSECOND, 30.0, kTimesOfBothForms);
}

TEST_F(TriggerPathTest, PeriodExceedsDelayAndWidthOfEachGenerator) {
  for (unsigned g = 0; g < 2; ++g) {
    const PulseForm& form = kPulseForms[g];
    const PulseForm& other = kPulseForms[1 - g];
    const unsigned port = g + 1;
    const auto rate = [](const char* period) { return Lines{kPeriod + " = " + period}; };
    ASSERT_EQ(set(port, FG_TRIGGER_FRAMESPERSECOND, 4.0), VELMORA_OK);
    for (const auto& [time, leaf] :
         {std::pair{form.width, "Width_Width = "}, std::pair{form.delay, "Delay_Delay = "}}) {
      const auto ticks = [&](const char* count) { return Lines{form.name + leaf + count}; };
      accepts(port, form.downscale, 3, {form.name + "Downscale_Downscale = 3"});
      accepts(port, time, 200000.0, ticks("12500000"));
      accepts(port, FG_TRIGGER_FRAMESPERSECOND, 10.0, rate("6249991"));
      fails(port, form.downscale, 1, VELMORA_DOWNSCALE_PERIOD);
      fails(port, form.downscale, 2, VELMORA_DOWNSCALE_PERIOD);  // Longer it has to be, not equal.
      fails(port, FG_TRIGGER_FRAMESPERSECOND, 20.0, VELMORA_TRIGGER_PERIOD);
      accepts(port, FG_TRIGGER_FRAMESPERSECOND, 5.0, rate("12499991"));
      accepts(port, form.downscale, 2, {form.name + "Downscale_Downscale = 2"});
      fails(port, time, 400000.0, VELMORA_TRIGGER_PERIOD);
      accepts(port, time, 399999.984, ticks("24999999"));
      EXPECT_DOUBLE_EQ(real(port, time), 399999.984);
      accepts(port, time, 3.0, ticks("188"));  // 187.5 ticks.
      EXPECT_DOUBLE_EQ(real(port, time), 3.008);
    }
    // The time that is not set is the design's; the other generator is not looked at.
    give(port, other.name + "Width_Width", 4294967295.0);
    give(port, form.name + "Width_Width", 25000000);
    fails(port, form.delay, 4.0, VELMORA_TRIGGER_PERIOD);
    fails(port, form.downscale, 2, VELMORA_DOWNSCALE_PERIOD);
    accepts(port, form.width, 4.0, {form.name + "Width_Width = 250"});
    give(port, form.name + "Delay_Delay", 25000000);
    fails(port, form.width, 4.0, VELMORA_TRIGGER_PERIOD);
    fails(port, FG_TRIGGER_FRAMESPERSECOND, 5.0, VELMORA_TRIGGER_PERIOD);
    accepts(port, form.delay, 0.0, {form.name + "Delay_Delay = 0"});
    fails(port, FG_TRIGGER_FRAMESPERSECOND, 5.0, VELMORA_TRIGGER_PERIOD);
    reads(port, form.delay, 8.0, {form.name + "Width_Width"});
    reads(port, form.width, 8.0, {form.name + "Delay_Delay"});
    reads(port, form.downscale, 7, {form.name + "Delay_Delay", form.name + "Width_Width"});
  }
}

TEST_F(TriggerPathTest, LongestDelayAndWidth) {
  // The slowest frame rates leave room for both.
  for (const PulseForm& form : kPulseForms) {
    ASSERT_EQ(set(0, FG_TRIGGER_FRAMESPERSECOND, 0.0146), VELMORA_OK);
    accepts(0, form.delay, 34000000.0, {form.name + "Delay_Delay = 2125000000"});
    accepts(0, form.width, 68000000.0, {form.name + "Width_Width = 4250000000"});
    EXPECT_EQ(real(0, form.delay), 34000000.0);
    EXPECT_EQ(real(0, form.width), 68000000.0);
    accepts(0, form.width, 1.0, {form.name + "Width_Width = 63"});
    for (const double time : {-0.016, 34000000.1, kNotANumber})
      fails(0, form.delay, time, VELMORA_OUT_OF_RANGE);
    for (const double time : {0.999, 68000000.1, kNotANumber})
      fails(0, form.width, time, VELMORA_OUT_OF_RANGE);
  }
}

TEST_F(TriggerPathTest, QueueMode) {
  const std::string kFull = "Generators_Queue_QueueFullValue_Number = ";
  const std::string kEnabled = "Generators_Queue_QueueEnabled_Select = ";
  for (const auto& [mode, port] : {std::pair{ATM_GENERATOR, 0u}, std::pair{ATM_EXTERNAL, 0u},
                                   std::pair{ATM_SOFTWARE, 1u}, std::pair{ATM_SYNCHRONIZED, 3u}}) {
    SCOPED_TRACE(mode);
    ASSERT_EQ(set(port, FG_AREATRIGGERMODE, mode), VELMORA_OK);
    ASSERT_EQ(set(port, FG_TRIGGER_FRAMESPERSECOND, 1.17), VELMORA_OK);
    const bool writes = mode != ATM_GENERATOR;
    const auto& pulses = applet.node(FG_SENDSOFTWARETRIGGER, port)->value.uint32;
    accepts(port, FG_TRIGGERQUEUE_MODE, FG_ON,
            writes ? Lines{kPeriod + " = 53418794", kFull + "2040", kEnabled + "1"} : Lines{});
    EXPECT_EQ(pulses.max, 2040u);
    // Programming the period stores the rate as it comes back over ticks, which shows in this one.
    EXPECT_EQ(real(port, FG_TRIGGER_FRAMESPERSECOND),
              writes ? 1.1700000000000004 : 1.1700000000000002);
    accepts(port, FG_TRIGGERQUEUE_MODE, FG_OFF,
            writes ? Lines{kPeriod + " = 10", kFull + "1", kEnabled + "0"} : Lines{});
    EXPECT_EQ(pulses.max, 1u);
    fails(port, FG_TRIGGERQUEUE_MODE, 2, VELMORA_OUT_OF_RANGE);
    if (!writes) continue;
    give(port, kTimesOfBothForms[3], 53418804);  // The period is 53418803.4 ticks.
    fails(port, FG_TRIGGERQUEUE_MODE, FG_ON, VELMORA_TRIGGER_PERIOD);
    give(port, kTimesOfBothForms[3], 53418803);
    reads(port, FG_TRIGGERQUEUE_MODE, FG_ON, kTimesOfBothForms);
  }
}

TEST_F(TriggerPathTest, SoftwareTrigger) {
  constexpr int kId = FG_SENDSOFTWARETRIGGER;
  struct Refusal {
    std::uint32_t queueMode, mode, state, reached, queued, pulses;
    int code;
  };
  // What comes first decides: count, mode, state, busy generator. The queue makes room for more.
  const Refusal refusals[] = {
      {FG_OFF, ATM_GENERATOR, TS_SYNC_STOP, 0, 5, 0, VELMORA_OUT_OF_RANGE},
      {FG_OFF, ATM_GENERATOR, TS_ACTIVE, 1, 0, 2, VELMORA_OUT_OF_RANGE},
      {FG_ON, ATM_GENERATOR, TS_ACTIVE, 1, 0, 2041, VELMORA_OUT_OF_RANGE},
      {FG_ON, ATM_GENERATOR, TS_ACTIVE, 1, 0, 2040, VELMORA_NOT_SOFTWARE_MODE},
      {FG_OFF, ATM_EXTERNAL, TS_SYNC_STOP, 0, 5, 1, VELMORA_NOT_SOFTWARE_MODE},
      {FG_OFF, ATM_SOFTWARE, TS_ASYNC_STOP, 0, 5, 1, VELMORA_TRIGGER_NOT_ACTIVE},
      {FG_ON, ATM_SOFTWARE, TS_SYNC_STOP, 1, 0, 1, VELMORA_TRIGGER_NOT_ACTIVE},
      {FG_ON, ATM_SOFTWARE, TS_ACTIVE, 1, 0, 0, VELMORA_OUT_OF_RANGE},
      {FG_OFF, ATM_SOFTWARE, TS_ACTIVE, 0, 0, 1, VELMORA_TRIGGER_BUSY},
      {FG_OFF, ATM_SOFTWARE, TS_ACTIVE, 1, 5, 1, VELMORA_TRIGGER_BUSY},
      {FG_OFF, ATM_SOFTWARE, TS_ACTIVE, 0, 5, 2, VELMORA_OUT_OF_RANGE},
  };
  for (const unsigned port : {0u, 3u}) {
    for (const Refusal& row : refusals) {
      bringTo(port, row.mode, row.state);
      ASSERT_EQ(set(port, FG_TRIGGERQUEUE_MODE, row.queueMode), VELMORA_OK);
      give(port, kMaximumReached, row.reached);
      give(port, kQueueValue, row.queued);
      fails(port, kId, row.pulses, row.code);
    }
    // A queue takes pulses from a busy generator too; nothing is read.
    ASSERT_EQ(set(port, FG_TRIGGERQUEUE_MODE, FG_ON), VELMORA_OK);
    accepts(port, kId, 2, {kPulse, kPulse});
    accepts(port, kId, 4, {kPulse, kPulse, kPulse, kPulse});
    reads(port, kId, 3, {});
    attempt(port, kId, 2040, VELMORA_OK, writesOf(port, Lines(2040, kPulse)));

    ASSERT_EQ(set(port, FG_TRIGGERQUEUE_MODE, FG_OFF), VELMORA_OK);
    // Both words are read before either is judged.
    attempt(port, kId, 1, kInjected, {},
            [&] { board::failNamed(designName(port, kQueueValue), kInjected, 1); });
    give(port, kMaximumReached, 1);
    give(port, kQueueValue, 0);
    reads(port, kId, 1, {kMaximumReached, kQueueValue});
    accepts(port, kId, 1, {kPulse});
  }
}

}  // namespace
}  // namespace fixture
