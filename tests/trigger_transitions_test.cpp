/// Area trigger mode and trigger state: what every change writes, and what is left of one that
/// fails.
#include <algorithm>
#include <map>
#include <tuple>

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
    {"enable(0)", {"Generators_EnableQueue_Select = 0"}},
    {"enable(1)", {"Generators_EnableQueue_Select = 1"}},
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
  fails(port, FG_AREATRIGGERMODE, {0u, port == 0 ? 3u : 5u}, VELMORA_OUT_OF_RANGE);
}

/// Changes that program the period, each with the steps before that.
TEST_P(TransitionTest, PeriodIsCheckedAgainstTheDesign) {
  const std::string queue = "park; clear input; hold; enable(1)";
  const std::tuple<std::uint32_t, std::uint32_t, int, std::uint32_t, std::string> changes[] = {
      {ATM_EXTERNAL, TS_SYNC_STOP, FG_TRIGGERSTATE, TS_ACTIVE, queue},
      {ATM_GENERATOR, TS_SYNC_STOP, FG_TRIGGERSTATE, TS_ACTIVE, "reset; hold; enable(0)"},
      {ATM_GENERATOR, TS_ACTIVE, FG_AREATRIGGERMODE, ATM_EXTERNAL, queue}};
  for (const auto& [mode, state, id, value, before] : changes) {
    bringTo(port, mode, state);
    for (const std::string& name : kTimesOfBothForms) {
      give(port, name, 4294967295.0);  // Ticks, 68.7 s.
      fails(port, id, {value}, VELMORA_TRIGGER_PERIOD, writesOfSteps(before));
      give(port, name, 250);
    }
    reads(port, id, value, kTimesOfBothForms, writesOfSteps(before));
  }
}

/// All writable trigger parameters of the port but six, the software trigger only as it applies.
TEST_P(TransitionTest, CompletedTransitionReopensParameters) {
  const std::tuple<int, std::uint32_t, std::uint32_t> changes[] = {
      {FG_TRIGGERSTATE, TS_ACTIVE, 7}, {FG_AREATRIGGERMODE, ATM_EXTERNAL, 1}};
  for (const auto& [id, value, pulseAccess] : changes)
    for (const unsigned fault : {1u, 0u}) {
      for (auto& all : nodes)
        for (const std::size_t i : writable) all[i]->accessMode = 0;
      if (fault != 0) board::failAtWrite(fault, kInjected);
      EXPECT_EQ(set(port, id, value), fault != 0 ? kInjected : VELMORA_OK);
      for (unsigned other = 0; other < kPorts; ++other)
        EXPECT_EQ(std::ranges::count_if(writable,
                                        [&](auto i) { return nodes[other][i]->accessMode != 0; }),
                  fault == 0 && other == port ? 27 : 0);
      EXPECT_EQ(applet.node(FG_SENDSOFTWARETRIGGER, port)->accessMode, fault ? 0 : pulseAccess);
    }
}

}  // namespace
}  // namespace fixture
