/// What opening the applet does to the design, access by access, what happens when an access fails,
/// and what is made of the names and events of a design.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>

#include "tests/dispatch_support.h"

namespace {

using namespace fixture;

const EnvironmentVariable kThreshold("KORV_LOG_LEVEL", "4");

/// Steps, separated by ';': the accesses to the design of a failing one end with the failure.
/// "NAME=VALUE" writes a design parameter on the port's channel or a register, "?NAME" reads. {p}
/// stands for the port, {I} for its image path, {T} for its trigger path, {0} and {1} for its pulse
/// form generators, {R} for the reads of their times.
constexpr const char* kRouting =
    "{T}TriggerOutput_Select0_Select_Select=3 {T}TriggerOutput_Select1_Select_Select=3 "
    "{T}Generators_ClearQueuePulse_Mode=1 "
    "{T}TriggerCamera_SelectTriggerCamera_Select_Select=0 "
    "{T}TriggerCamera_SelectTriggerCamera_Polarity_Invert=0 "
    "{T}TriggerOutput_Select0_Select_Select=0 {T}TriggerOutput_Select0_Polarity_Invert=1 "
    "{T}TriggerOutput_Select1_Select_Select=1 {T}TriggerOutput_Select1_Polarity_Invert=1";

/// The defaults of a port. Mode, state, queue mode, format and alignment reach no design parameter.
constexpr const char* kDefaults =
    "FG_TIMEOUT=1000000;{I}Cam_PixelFormat=0;{I}Buffer_XLength=1024;{I}Buffer_YLength=1024;"
    "{I}Buffer_XOffset=0;{I}Buffer_YOffset=0;CamGenEnable{p}=0;CamGenStart{p}=1;"
    "CamGenWidth{p}=1024 CamGenLineWidth{p}=1028;CamGenHeight{p}=1023;"
    "CamGenWidth{p}=1024 CamGenLineWidth{p}=1028;CamGenActive{p}=7 CamGenPassive{p}=16;"
    "CamGenActive{p}=7 CamGenPassive{p}=16;CamGenRoll{p}=0;"
    "{I}Bayerfilter_BayerInit=2 {I}White_BayerInit=2;{I}White_BlueCoefficient=1;"
    "{I}White_GreenCoefficient=1;{I}White_RedCoefficient=1;"
    "{R} {T}Generators_Generator_MinimumPeriod_Number=7812490;"
    "TriggerInput_Debounce8_Prescale_Period=21;{T}InputSelect_Select_Select=0;"
    "{T}InputSelect_Polarity_Invert=0;{T}Downscale_Downscale_Downscale=1;"
    "{T}Downscale_Downscale_SelectedPulse=1;{T}InputSelect_BypassSelect_Select=0;"
    "{T}InputStatistics_ClearPulses_Mode=2;{T}Generators_Sequence_SelectedPulse=1 "
    "{T}Generators_Sequence_Downscale=1 {T}Generators_ClearDownscale_Mode=2;"
    "{T}Hysteresis_OnLevel_Number=2047;{T}Hysteresis_OffLevel_Number=2;"
    "?{0}Delay_Delay ?{0}Width_Width {0}Downscale_Downscale=1;{0}Downscale_SelectedPulse=1;"
    "?{0}Width_Width {0}Delay_Delay=0;?{0}Delay_Delay {0}Width_Width=250;"
    "?{1}Delay_Delay ?{1}Width_Width {1}Downscale_Downscale=1;{1}Downscale_SelectedPulse=1;"
    "?{1}Width_Width {1}Delay_Delay=0;?{1}Delay_Delay {1}Width_Width=250;"
    "{T}TriggerCamera_SelectTriggerCamera_Select_Select=0 "
    "{T}TriggerCamera_SelectTriggerCamera_Polarity_Invert=0;"
    "{T}TriggerOutput_Select0_Select_Select=0 {T}TriggerOutput_Select0_Polarity_Invert=1;"
    "{T}TriggerOutput_Select1_Select_Select=1 {T}TriggerOutput_Select1_Polarity_Invert=1;"
    "{T}OutputStatistics_Select_Select=0;{T}OutputEvent_Select_Select=0";

using Step = Lines;

/// Appends the accesses of a step as they are found in the journal.
void append(Step& step, std::string text, unsigned port) {
  constexpr const char* kMarks[][2] = {
      {"{R}", "?{0}Delay_Delay ?{0}Width_Width ?{1}Delay_Delay ?{1}Width_Width"},
      {"{0}", "{T}PulseFormGenerators_PulseFormGenerator0_"},
      {"{1}", "{T}PulseFormGenerators_PulseFormGenerator1_"},
      {"{T}", "TriggerCam{p}_"},
      {"{I}", "Device1_Process{p}_"}};
  const std::string p = std::to_string(port);
  for (const auto& [mark, with] : kMarks) text = replaced(text, mark, with);
  std::istringstream words(replaced(text, "{p}", p));
  for (std::string word; words >> word;)
    if (word[0] == '?')
      step.push_back(replaced("get " + word.substr(1) + "[{p}]", "{p}", p));
    else if (word.starts_with("CamGen"))
      step.push_back("write " + replaced(word, "=", " = "));
    else
      step.push_back("set " + replaced(word, "=", replaced("[{p}] = ", "{p}", p)));
}

std::vector<Step> startUpSteps(bool apply) {
  std::vector<Step> steps(1);  // A failure ends the routing of all ports.
  for (unsigned port = 0; port < kPorts; ++port) append(steps.back(), kRouting, port);
  if (!apply) return steps;
  for (const char* registers :
       {"Enable", "Start", "Width LineWidth", "Height", "Active Passive", "Roll"})
    for (unsigned port = 0; port < kPorts; ++port) {
      std::istringstream words(registers);
      for (std::string word; words >> word;)
        append(steps.emplace_back(), "CamGen" + word + "{p}=0", port);
    }
  for (unsigned port = 0; port < kPorts; ++port) {
    std::istringstream defaults(kDefaults);
    for (std::string step; std::getline(defaults, step, ';');)
      append(steps.emplace_back(), step, port);
  }
  return steps;
}

bool isRead(const std::string& line) { return line.starts_with("get "); }

/// Reads that follow each other have no order; their values do not matter here.
Lines sortedReads(Lines lines) {
  for (std::string& line : lines)
    if (isRead(line)) line.erase(std::min(line.find(" -> "), line.size()));
  for (auto from = lines.begin(); from != lines.end();) {
    const auto to = std::find_if_not(from, lines.end(), isRead);
    std::sort(from, to);
    from = std::find_if(to, lines.end(), isRead);
  }
  return lines;
}

/// All accesses in their order when the `failing`th write (from 1, 0 for none) fails.
Lines startUp(bool defaults, unsigned failing = 0) {
  static const std::vector<Step> steps[] = {startUpSteps(false), startUpSteps(true)};
  Lines lines;
  unsigned write = 0;
  for (const Step& step : steps[defaults])
    for (const std::string& line : step) {
      lines.push_back(line);
      if (isRead(line) || ++write != failing) continue;
      lines.back() += " failed: " + std::to_string(kInjected);
      break;
    }
  return sortedReads(lines);
}

TEST(StartUp, RoutesThePortsAndAppliesTheDefaults) {
  for (const int flags : {0, 2, ~1, 1, -1}) {
    SCOPED_TRACE(flags);
    const bool defaults = flags % 2 == 0;
    Applet applet(flags);
    EXPECT_EQ(sortedReads(takeAccesses()), startUp(defaults));
    expectInitialSettings(applet);
    for (unsigned port = 0; port < kPorts; ++port) {
      EXPECT_EQ(applet.word(FG_GEN_ACTIVE, port).value, defaults ? 8u : 4u);
      EXPECT_EQ(applet.word(FG_GEN_PASSIVE, port).value, defaults ? 17u : 30u);
      EXPECT_DOUBLE_EQ(applet.real(FG_TRIGGERIN_DEBOUNCE, port).value, defaults ? 1.008 : 0);
      for (const int id : {FG_TRIGGER_PULSEFORMGEN0_WIDTH, FG_TRIGGER_PULSEFORMGEN1_WIDTH})
        EXPECT_DOUBLE_EQ(applet.real(id, port).value, defaults ? 4.0 : 0);
    }
  }
}

/// A failure ends its own step. The setting behind it keeps its first value, which is the default.
TEST(StartUp, GoesOnWhateverWriteFails) {
  const ExternalDesign design(ownRecords());  // Loads faster than the image.
  constexpr unsigned kWrites = 4 * 9 + 32 + 4 * 52;
  for (unsigned k = 1; k <= kWrites + 1; ++k) {
    SCOPED_TRACE(k);
    board::failAtWrite(k, kInjected);
    Applet applet;
    ASSERT_TRUE(applet.opened());
    EXPECT_EQ(applet.error(), VELMORA_OK);
    const Lines accesses = sortedReads(takeAccesses());
    EXPECT_EQ(accesses, startUp(true, k));
    EXPECT_EQ(accesses == startUp(true), k > kWrites);
    board::clearFaults();
    expectInitialSettings(applet);
  }
}

TEST(StartUp, KeepsWhatARegisterWasNotGiven) {
  board::failNamed("CamGenActive2", kInjected);
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    EXPECT_EQ(applet.word(FG_GEN_ACTIVE, port).value, port == 2 ? 4u : 8u);
    EXPECT_EQ(applet.word(FG_GEN_PASSIVE, port).value, port == 2 ? 1u : 17u);
  }
}

TEST(StartUp, DiscardsEveryExceptionOfTheRouting) {
  board::observe([](const board::Access& access) {
    if (access.name.ends_with("TriggerCam1_Generators_ClearQueuePulse_Mode"))
      throw std::runtime_error("observer");
  });
  Applet applet;
  board::observe({});
  EXPECT_EQ(applet.error(), VELMORA_OK);
  Lines expected = startUp(true);
  expected.erase(expected.begin() + 9 + 3, expected.begin() + 4 * 9);
  EXPECT_EQ(sortedReads(takeAccesses()), expected);
}

/// What is logged of names that a design lacks, as "KT <name>", "HAP <name>" and "event <name>".
Lines missing(const Lines& log) {
  Lines lines;
  for (std::string line : log) {
    EXPECT_TRUE(line.ends_with("'")) << line;
    line.pop_back();
    line = replaced(line, "FgKtWrapper|cannot retrieve KT id for KT parameter: '", "KT ");
    line = replaced(line, "FgKtWrapper|cannot retrieve HAP id for HAP parameter: '", "HAP ");
    lines.push_back(
        replaced(line, "FgKtWrapper|cannot retrieve event id for internal event: '", "event "));
  }
  return lines;
}

TEST(DesignNames, AreResolvedInOrder) {
  // What the applet's own design consists of, by the names of direct access.
  Lines own;
  EXPECT_EQ(logged([&] {
              const EnvironmentVariable dra("KORV_ENABLE_DRA", "1"), dkta("KORV_ENABLE_DKTA", "1");
              Applet applet;
              for (int i = 85; i < Fg_getNrOfParameter(applet.fg()); ++i)
                own.push_back(Fg_getParameterName(applet.fg(), i));
            }),
            Lines{});
  const ExternalDesign design("");
  Lines names = missing(logged([] { EXPECT_TRUE(Applet().opened()); }));
  const auto isEvent = [](const std::string& line) { return line.starts_with("event "); };
  EXPECT_TRUE(std::is_partitioned(names.begin(), names.end(), isEvent));
  EXPECT_EQ(std::erase_if(names, isEvent), 4u * (2 + 16 + 5));
  ASSERT_EQ(names.size(), 290u);

  // First, port by port, what a port starts with.
  Step first;
  for (unsigned port = 0; port < kPorts; ++port)
    append(first,
           "?{T}TriggerOutput_Select0_Select_Select ?{T}TriggerOutput_Select1_Select_Select "
           "?{T}TriggerMode_SelectExternal_Select ?{T}PulseFormGenerators_Enable_Select "
           "?Monitoring_CheckForMissingFrame_Cam{p}_ResetMissing_Mode "
           "?{0}ClearDownscale_Mode ?{1}ClearDownscale_Mode "
           "?{T}Generators_ClearQueuePulse_Mode ?{T}Generators_EnableQueue_Select "
           "?{T}Downscale_Clear_Mode ?{T}Generators_ClearDownscale_Mode "
           "?{T}Synchronize_SlaveMode_Select",
           port);
  EXPECT_EQ(std::erase(first, "get TriggerCam0_Synchronize_SlaveMode_Select[0]"), 1u);
  for (std::string& line : first)
    line = "KT Device1_Process4_Trigger_" + line.substr(4, line.find('[') - 4);
  EXPECT_EQ(Lines(names.begin(), names.begin() + 47), first);
  for (std::string& name : names) name = replaced(replaced(name, "KT ", "DKTA_"), "HAP ", "DRA_");
  std::sort(names.begin(), names.end());
  std::sort(own.begin(), own.end());
  EXPECT_EQ(names, own);
}

TEST(DesignNames, ThatAreMissingSpoilOnlyWhatNeedsThem) {
  const ExternalDesign design(
      replaced(replaced(ownRecords(), "Process{0-3}_Buffer_XLength         rw channel 8 8192 4",
                        "Process{0-1}_Buffer_XLength rw channel 8 8192 4\n"
                        "uint Device1_Process3_Buffer_XLength rw channel 8 8192 4"),
               "CamGenRoll{0-3}", "CamGenRoll{0-2}"));
  std::optional<Applet> applet;
  EXPECT_EQ(missing(logged([&] { applet.emplace(); })),
            (Lines{"KT Device1_Process2_Buffer_XLength", "HAP CamGenRoll3"}));
  ASSERT_TRUE(applet->opened());
  EXPECT_EQ(applet->error(), VELMORA_OK);
  for (unsigned port = 0; port < kPorts; ++port)
    for (const Parameter& p : parameters()) {
      SCOPED_TRACE(p.name + " on port " + std::to_string(port));
      std::array<char, 16> value;
      EXPECT_EQ(Fg_getParameterWithType(applet->fg(), p.id, value.data(), port, 2), VELMORA_OK);
      if (!p.writable() || p.id == FG_SENDSOFTWARETRIGGER) continue;
      const int expected = p.id == FG_WIDTH && port == 2      ? kNoSuchParameter
                           : p.id == FG_GEN_ROLL && port == 3 ? kNoSuchRegister
                                                              : VELMORA_OK;
      EXPECT_EQ(p.real() ? applet->set(p.id, std::stod(p.initial), port)
                         : applet->set(p.id, std::stoi(p.initial), port),
                expected);
    }
  EXPECT_EQ(applet->set(FG_WIDTH, 512, 2), kNoSuchParameter);
  EXPECT_EQ(applet->word(FG_WIDTH, 2).value, 1024u);
}

/// Events of cameras or inputs ({c}, port letter {L}) in the order of the own design; {M} is the
/// monitoring module of the camera.
constexpr const char* kEvents[][2] = {
    {"FG_START_OF_FRAME_CAM_PORT_{L}", "Monitoring_FVAL_CamPort{c}TransferStart"},
    {"FG_END_OF_FRAME_CAM_PORT_{L}", "Monitoring_FVAL_CamPort{c}TransferEnd"},
    {"FG_TRIGGER_INPUT{c}_RISING", "TriggerInput_InputEvents_InputEvents_Pin{c}"},
    {"FG_TRIGGER_INPUT{c}_FALLING", "TriggerInput_InputEvents_InputEvents_NotPin{c}"},
    {"FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CAM{c}", "Monitoring_{M}_Cam{c}Override"},
    {"FG_MISSING_CAM{c}_FRAME_RESPONSE", "Monitoring_MonitoringEvents_Cam{c}MissingFrame"},
    {"FG_TRIGGER_QUEUE_FILLLEVEL_THRESHOLD_CAM{c}_ON", "Monitoring_{M}_Cam{c}HysteresisOn"},
    {"FG_TRIGGER_QUEUE_FILLLEVEL_THRESHOLD_CAM{c}_OFF", "Monitoring_{M}_Cam{c}HysteresisOff"},
    {"FG_TRIGGER_OUTPUT_CAM{c}", "Monitoring_{M}_Cam{c}OutputEvent"},
};

struct Event {
  std::string name, designName;
  unsigned position;
};

std::vector<Event> sdkEvents(unsigned position) {
  std::vector<Event> events;
  for (const auto& [name, designName] : kEvents)
    for (unsigned c = 0; c < (std::string(name).find("INPUT") == std::string::npos ? 4u : 8u);
         ++c) {
      const auto expand = [c](std::string text) {
        text = replaced(text, "{M}", c < 2 ? "MonitoringEvents" : "MonitoringEvents_1");
        return replaced(replaced(text, "{c}", std::to_string(c)), "{L}", {"ABCDEFGH"[c]});
      };
      events.push_back(
          {expand(name), "Device1_Process4_Trigger_" + expand(designName), position++});
    }
  return events;
}

/// The event has this mask by its name, and this name by its mask.
void expectEvent(Applet& applet, const std::string& name, std::uint64_t mask,
                 const std::string& nameOfMask) {
  EXPECT_EQ(Fg_getEventMask(applet.fg(), name.c_str()), mask) << name;
  EXPECT_EQ(applet.lastError(), mask ? VELMORA_OK : VELMORA_INVALID_ARGUMENT);
  if (!mask) return;
  const char* found = Fg_getEventName(applet.fg(), mask);
  EXPECT_EQ(applet.lastError(), VELMORA_OK);
  ASSERT_NE(found, nullptr) << name;
  EXPECT_EQ(found, nameOfMask);
}

TEST(DesignEvents, HaveTheNamesOfTheSdk) {
  Applet applet;
  EXPECT_EQ(sdkEvents(0).size(), 44u);
  for (const Event& event : sdkEvents(0)) {
    expectEvent(applet, event.name, 1ull << event.position, event.name);
    expectEvent(applet, event.designName, 1ull << event.position, event.name);
  }
  for (const char* name : {"", "FG_TRIGGER_INPUT8_RISING"}) expectEvent(applet, name, 0, "");
  EXPECT_EQ(Fg_getEventMask(applet.fg(), nullptr), 0u);
  for (const std::uint64_t mask : {0ull, 3ull, ~0ull, 1ull << 44}) {
    Fg_getParameterId(applet.fg(), 0);
    EXPECT_EQ(Fg_getEventName(applet.fg(), mask), nullptr);
    EXPECT_EQ(applet.lastError(), VELMORA_INVALID_ARGUMENT);
  }
}

/// 70 events: 21 of no interest, every other one reported; then the SDK's, the kinds alternating;
/// the last ones lie beyond the 64 bits of a mask.
TEST(DesignEvents, HaveMasksOf64Bits) {
  const auto events = sdkEvents(21);
  std::string records = ownRecords();
  records.erase(records.find("\nevent "));
  for (int i = 0; i < 21; ++i)
    records += "\nevent Other" + std::to_string(i) + " " + std::to_string(i % 2);
  for (const Event& event : events)
    records += "\nevent " + event.designName + " " + std::to_string(event.position % 3);
  records += "\nevent Other{65-69} 1";
  const ExternalDesign design(records);
  std::optional<Applet> applet;
  const Lines log = missing(logged([&] { applet.emplace(); }));
  for (const std::string& line : log) EXPECT_EQ(line, "event " + events.back().designName);
  std::set<std::string> asked;
  for (const board::Access& access : board::takeJournal())
    if (access.name == "HapGetEvent") asked.insert(access.value);
  EXPECT_EQ(asked.size(), 65u);
  EXPECT_TRUE(asked.contains("64"));

  for (unsigned i = 0; i < 21; ++i)
    expectEvent(*applet, "Other" + std::to_string(i), i % 2 ? 1ull << i : 0,
                "Other" + std::to_string(i));
  for (const Event& event : events) {
    const std::uint64_t mask = event.position < 64 ? 1ull << event.position : 0;
    expectEvent(*applet, event.name, mask, event.name);
    expectEvent(*applet, event.designName, event.position % 3 == 1 ? mask : 0, event.name);
  }
  for (unsigned i = 65; i < 70; ++i) expectEvent(*applet, "Other" + std::to_string(i), 0, "");
}

}  // namespace
