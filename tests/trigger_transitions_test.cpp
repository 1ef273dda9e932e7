/// Area trigger mode and trigger state: what every change writes, and what is left of one that
/// fails.
#include <algorithm>
#include <map>

#include "tests/trigger_fixture.h"

namespace fixture {
namespace {

/// The writes of each step. The routes are those of the sources that the suite sets.
const std::map<std::string, Lines> kSteps = {
    {"park",
     {"TriggerOutput_Select0_Select_Select = 3", "TriggerOutput_Select1_Select_Select = 3"}},
    {"route",
     {"TriggerCamera_SelectTriggerCamera_Select_Select = 1",
      "TriggerCamera_SelectTriggerCamera_Polarity_Invert = 1",
      "TriggerOutput_Select0_Select_Select = 2", "TriggerOutput_Select0_Polarity_Invert = 0",
      "TriggerOutput_Select1_Select_Select = 3", "TriggerOutput_Select1_Polarity_Invert = 1"}},
    {"hold", {"Generators_ClearQueuePulse_Mode = 1"}},
    {"external(0)", {"TriggerMode_SelectExternal_Select = 0"}},
    {"external(1)", {"TriggerMode_SelectExternal_Select = 1"}},
    {"slave(0)", {"Synchronize_SlaveMode_Select = 0"}},
    {"slave(1)", {"Synchronize_SlaveMode_Select = 1"}},
    {"generators(0)", {"PulseFormGenerators_Enable_Select = 0"}},
    {"generators(1)", {"PulseFormGenerators_Enable_Select = 1"}},
    {"reset",
     {"/Monitoring_CheckForMissingFrame_Cam{c}_ResetMissing_Mode = 2",
      "PulseFormGenerators_PulseFormGenerator0_ClearDownscale_Mode = 2",
      "PulseFormGenerators_PulseFormGenerator1_ClearDownscale_Mode = 2"}},
    {"clear input", {"Downscale_Clear_Mode = 2"}},
    {"clear sequence", {"Generators_ClearDownscale_Mode = 2"}},
    {"start generator",
     {"Generators_ClearQueuePulse_Mode = 1", "Generators_EnableQueue_Select = 0",
      "Generators_Generator_MinimumPeriod_Number = 53418794",
      "PulseFormGenerators_Enable_Select = 1", "Generators_ClearQueuePulse_Mode = 0"}},
    {"start queue",
     {"Generators_ClearQueuePulse_Mode = 1", "Generators_EnableQueue_Select = 1",
      "Generators_Generator_MinimumPeriod_Number = 53418794",
      "PulseFormGenerators_Enable_Select = 1", "Generators_ClearQueuePulse_Mode = 0"}},
};
/// Its period is 53418803.4 ticks, which stays so when transitions store the rate anew; but a rate
/// stored anew reads otherwise, and so gives away one that a failed transition left behind.
constexpr double kFrameRate = 1.17;

/// The writes of steps that are separated by "; ".
Lines writesOfSteps(const std::string& steps) {
  Lines writes;
  for (std::size_t from = 0; from < steps.size();) {
    const std::size_t to = std::min(steps.find("; ", from), steps.size());
    const Lines& step = kSteps.at(steps.substr(from, to - from));
    writes.insert(writes.end(), step.begin(), step.end());
    from = to + 2;
  }
  return writes;
}

// Rows and columns of the tables, in this order.
constexpr std::uint32_t kModes[] = {ATM_GENERATOR, ATM_EXTERNAL, ATM_SOFTWARE, ATM_SYNCHRONIZED};
constexpr std::uint32_t kStates[] = {TS_ACTIVE, TS_ASYNC_STOP, TS_SYNC_STOP};

const std::string kQueueSteps = "clear input; start queue; clear sequence; reset; route";
const std::string kExternalSteps = kQueueSteps + "; external(1)";

const std::string kModeChangesWhileActive[4][4] = {
    {"", "park; " + kExternalSteps, "park; " + kQueueSteps,
     "park; slave(1); reset; route; generators(1)"},
    {"external(0); park; reset; route; start generator", "", "external(0); park; " + kQueueSteps,
     "external(0); park; reset; route; generators(1)"},
    {"park; reset; route; start generator", "park; " + kExternalSteps, "",
     "park; slave(1); reset; route; generators(1)"},
    {"park; slave(0); reset; route; start generator", "park; slave(0); " + kExternalSteps,
     "park; slave(0); " + kQueueSteps, ""},
};
/// In Sync Stop; in Async Stop the outputs are parked already.
const std::string kModeChangesWhileStopped[4][4] = {
    {"", "", "", "park; slave(1); generators(0)"},
    {"hold", "", "", "park; slave(1); generators(0)"},
    {"hold", "", "", "park; slave(1); generators(0)"},
    {"", "", "", ""},
};
std::string modeChange(std::size_t from, std::size_t to, std::uint32_t state) {
  if (state == TS_ACTIVE) return kModeChangesWhileActive[from][to];
  const std::string& steps = kModeChangesWhileStopped[from][to];
  return state == TS_ASYNC_STOP && steps.starts_with("park; ") ? steps.substr(6) : steps;
}

/// By mode, from state and to state.
const std::string kStateChanges[4][3][3] = {
    {{"", "park; hold", "hold"},
     {"reset; route; start generator", "", ""},
     {"reset; start generator", "park", ""}},
    {{"", "park; external(0)", "external(0)"},
     {kExternalSteps, "", ""},
     {"park; " + kExternalSteps, "park", ""}},
    {{"", "park", ""}, {kQueueSteps, "", ""}, {"park; " + kQueueSteps, "park", ""}},
    {{"", "park; generators(0)", "generators(0)"},
     {"reset; route; generators(1)", "", ""},
     {"park; reset; route; generators(1)", "park", ""}},
};

class TransitionTest : public TriggerTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  TransitionTest() {
    set(port, FG_CAMERA_ACTION_COMMAND_SOURCE, NOT_PULSEGEN1);
    set(port, FG_TRIGGEROUT_SELECT0, INPUT_BYPASS);
    set(port, FG_TRIGGEROUT_SELECT1, VCC);
    set(port, FG_TRIGGER_FRAMESPERSECOND, kFrameRate);
  }

  const unsigned port = GetParam();
  const std::size_t modes = port == 0 ? 3 : 4;
};

INSTANTIATE_TEST_SUITE_P(Ports, TransitionTest, ::testing::Values(0u, 2u));

TEST_P(TransitionTest, EveryPairOfSituations) {
  for (std::size_t from = 0; from < modes * 3; ++from) {
    for (std::size_t to = 0; to < modes * 3; ++to) {
      const std::size_t mode = from / 3, newMode = to / 3, state = from % 3, newState = to % 3;
      SCOPED_TRACE(testing::Message()
                   << "mode " << kModes[mode] << " state " << kStates[state] << " to mode "
                   << kModes[newMode] << " state " << kStates[newState]);
      bringTo(port, kModes[mode], kStates[state]);
      accepts(port, FG_AREATRIGGERMODE, kModes[newMode],
              writesOfSteps(modeChange(mode, newMode, kStates[state])));
      accepts(port, FG_TRIGGERSTATE, kStates[newState],
              writesOfSteps(kStateChanges[newMode][state][newState]));
      EXPECT_EQ(word(port, FG_AREATRIGGERMODE), kModes[newMode]);
    }
  }
  for (const std::uint32_t mode : {0u, port == 0 ? 3u : 5u, 0xFFFFFFFFu})
    fails(port, FG_AREATRIGGERMODE, mode, VELMORA_OUT_OF_RANGE);
  for (const std::uint32_t state : {3u, 0xFFFFFFFFu})
    fails(port, FG_TRIGGERSTATE, state, VELMORA_OUT_OF_RANGE);
}

/// Changes that program the period, each with what comes before that.
TEST_P(TransitionTest, PeriodIsCheckedAgainstTheDesign) {
  const Lines kRead = {"PulseFormGenerators_PulseFormGenerator0_Delay_Delay",
                       "PulseFormGenerators_PulseFormGenerator0_Width_Width",
                       "PulseFormGenerators_PulseFormGenerator1_Delay_Delay",
                       "PulseFormGenerators_PulseFormGenerator1_Width_Width"};
  struct Change {
    std::uint32_t mode, state;
    int id;
    std::uint32_t value;
    std::string before;  ///< Steps until the generator or the queue is started.
    bool queue;
  };
  const Change changes[] = {
      {ATM_GENERATOR, TS_ACTIVE, FG_AREATRIGGERMODE, ATM_EXTERNAL, "park; clear input; ", true},
      {ATM_SOFTWARE, TS_ACTIVE, FG_AREATRIGGERMODE, ATM_GENERATOR, "park; reset; route; ", false},
      {ATM_EXTERNAL, TS_SYNC_STOP, FG_TRIGGERSTATE, TS_ACTIVE, "park; clear input; ", true},
      {ATM_GENERATOR, TS_SYNC_STOP, FG_TRIGGERSTATE, TS_ACTIVE, "reset; ", false},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.before);
    Lines writes = writesOfSteps(change.before + "hold");
    writes.push_back("Generators_EnableQueue_Select = " + std::to_string(change.queue ? 1 : 0));
    bringTo(port, change.mode, change.state);
    // 4294967295 ticks are 68.7 s.
    for (const std::string& name : kRead) {
      give(port, name, 4294967295.0);
      fails(port, change.id, change.value, VELMORA_TRIGGER_PERIOD, writes);
      give(port, name, 250);
    }
    reads(port, change.id, change.value, kRead, writes);
  }
}

TEST_P(TransitionTest, LowestFrameRateDoesNotSurviveTheWayOverTicks) {
  constexpr double kLowest = 0.01455191522836685;
  ASSERT_EQ(set(port, FG_TRIGGER_FRAMESPERSECOND, kLowest), VELMORA_OK);
  // The generator is restarted through the rate's own setter, which accepts it.
  bringTo(port, ATM_GENERATOR, TS_ACTIVE);
  EXPECT_EQ(board::value(applet.device(),
                         designName(port, "Generators_Generator_MinimumPeriod_Number"), 0),
            4294967287.0);
  fails(port, FG_AREATRIGGERMODE, ATM_EXTERNAL, VELMORA_OUT_OF_RANGE,
        {"TriggerOutput_Select0_Select_Select = 3", "TriggerOutput_Select1_Select_Select = 3",
         "Downscale_Clear_Mode = 2", "Generators_ClearQueuePulse_Mode = 1",
         "Generators_EnableQueue_Select = 1"});
  bringTo(port, ATM_GENERATOR, TS_SYNC_STOP);
  bringTo(port, ATM_EXTERNAL, TS_SYNC_STOP);
  fails(port, FG_TRIGGERQUEUE_MODE, FG_ON, VELMORA_OUT_OF_RANGE);
}

TEST_P(TransitionTest, CompletedTransitionReopensParameters) {
  // The writable trigger parameters, but for these.
  const std::vector<int> untouched = {FG_TRIGGERIN_BYPASS_SRC,
                                      FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR,
                                      FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR,
                                      FG_TRIGGEROUT_STATS_SOURCE,
                                      FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR,
                                      FG_DIGIO_OUTPUT};
  std::vector<int> reopened;
  for (const std::size_t i : writable)
    if (std::ranges::count(untouched, ids[i]) == 0) reopened.push_back(ids[i]);
  ASSERT_EQ(reopened.size(), 27u);
  const auto expectAccess = [&](std::uint32_t access, std::uint32_t softwareTriggerAccess) {
    for (unsigned other = 0; other < kPorts; ++other) {
      for (std::size_t i = kFirstTriggerParameter; i < ids.size(); ++i) {
        const bool opens = other == port && std::ranges::count(reopened, ids[i]) == 1;
        const bool pulses = ids[i] == FG_SENDSOFTWARETRIGGER;
        EXPECT_EQ(nodes[other][i]->accessMode, !opens   ? 0
                                               : pulses ? softwareTriggerAccess
                                                        : access)
            << "parameter " << ids[i] << " port " << other;
      }
    }
  };
  struct Change {
    int id;
    std::uint32_t value, softwareTriggerAccess;
  };
  const Change changes[] = {{FG_TRIGGERSTATE, TS_ACTIVE, 7},
                            {FG_AREATRIGGERMODE, ATM_EXTERNAL, 1},
                            {FG_TRIGGERSTATE, TS_SYNC_STOP, 1},
                            {FG_AREATRIGGERMODE, ATM_GENERATOR, 7}};
  for (const Change& change : changes) {
    SCOPED_TRACE(testing::Message() << "parameter " << change.id << " to " << change.value);
    for (auto& portNodes : nodes)
      for (std::size_t i = kFirstTriggerParameter; i < ids.size(); ++i)
        portNodes[i]->accessMode = 0;
    board::failAtWrite(1, kInjected);
    EXPECT_EQ(set(port, change.id, change.value), kInjected);
    expectAccess(0, 0);
    EXPECT_EQ(set(port, change.id, change.value), VELMORA_OK);
    expectAccess(7, change.softwareTriggerAccess);
  }
}

}  // namespace
}  // namespace fixture
