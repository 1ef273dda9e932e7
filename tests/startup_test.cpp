/// What opening the applet does to the design, access by access, what happens when an access fails,
/// and what is made of the names and events of a design.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "external/dervin.h"
#include "tests/dispatch_support.h"

/// All designs of this program report their events in one record, which the next one overwrites.
extern "C" [[gnu::visibility("default")]] const HapEvent* HapGetEvent(fpga_design* design,
                                                                      int index) {
  static auto* const real =
      reinterpret_cast<decltype(&HapGetEvent)>(dlsym(RTLD_NEXT, "HapGetEvent"));
  static HapEvent record;
  static std::string name;
  const HapEvent* event = real(design, index);
  if (!event) return nullptr;
  name = event->name;
  record = {event->id, name.c_str(), event->kind};
  return &record;
}

namespace {

using namespace fixture;

const EnvironmentVariable kThreshold("KORV_LOG_LEVEL", "4");

/// Steps, separated by ';': the accesses to the design of a failing one end with the failure.
/// "NAME=VALUE" writes a design parameter on the port's channel or a register, "?NAME" reads. {p}
/// stands for the port, {I} for its image path, {T} for its trigger path, {C} for its camera
/// trigger, {O} for its outputs, {0} and {1} for its pulse form generators, {R} for the reads of
/// their times.
constexpr const char* kRouting =
    "{O}0_Select_Select=3 {O}1_Select_Select=3 {T}Generators_ClearQueuePulse_Mode=1 "
    "{C}Select_Select=0 {C}Polarity_Invert=0 {O}0_Select_Select=0 {O}0_Polarity_Invert=1 "
    "{O}1_Select_Select=1 {O}1_Polarity_Invert=1";

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
    "{C}Select_Select=0 {C}Polarity_Invert=0;{O}0_Select_Select=0 {O}0_Polarity_Invert=1;"
    "{O}1_Select_Select=1 {O}1_Polarity_Invert=1;"
    "{T}OutputStatistics_Select_Select=0;{T}OutputEvent_Select_Select=0";

using Step = Lines;

/// Appends the accesses of a step as they are found in the journal.
void append(Step& step, std::string text, unsigned port) {
  constexpr const char* kMarks[][2] = {
      {"{R}", "?{0}Delay_Delay ?{0}Width_Width ?{1}Delay_Delay ?{1}Width_Width"},
      {"{0}", "{T}PulseFormGenerators_PulseFormGenerator0_"},
      {"{1}", "{T}PulseFormGenerators_PulseFormGenerator1_"},
      {"{C}", "{T}TriggerCamera_SelectTriggerCamera_"},
      {"{O}", "{T}TriggerOutput_Select"},
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
    for (unsigned port = 0; port < kPorts; ++port)
      EXPECT_EQ(applet.word(FG_GEN_ACTIVE, port).value, defaults ? 8u : 4u);
  }
}

/// A failure ends its own step. The setting concerned keeps its first value, which is the default.
TEST(StartUp, GoesOnWhateverWriteFails) {
  const ExternalDesign design(ownRecords());  // Loads faster than the image.
  constexpr unsigned kWrites = 4 * 9 + 32 + 4 * 52;
  for (unsigned k = 1; k <= kWrites + 1; ++k) {
    // Every third one, of each port's routing others; 32 and 52 shift by themselves.
    if ((k + std::min(k - 1, 35u) / 9) % 3 != 1) continue;
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

TEST(DesignNames, AreThoseOfTheOwnDesign) {
  EXPECT_EQ(logged([] { EXPECT_TRUE(Applet().opened()); }), Lines{});
  const ExternalDesign design("");
  Lines names = missing(logged([] { EXPECT_TRUE(Applet().opened()); }));
  EXPECT_EQ(std::erase_if(names, [](const auto& line) { return line.starts_with("event "); }), 92u);
  EXPECT_EQ(names[0],
            "KT Device1_Process4_Trigger_TriggerCam0_TriggerOutput_Select0_Select_Select");
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::unique(names.begin(), names.end()) - names.begin(), 290);
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
      std::array<char, 16> value;
      EXPECT_EQ(Fg_getParameterWithType(applet->fg(), p.id, value.data(), port, 2), VELMORA_OK);
      if (!p.writable() || p.id == FG_SENDSOFTWARETRIGGER) continue;
      const int code = p.real() ? applet->set(p.id, std::stod(p.initial), port)
                                : applet->set(p.id, std::stoi(p.initial), port);
      const int lacking = p.id == FG_WIDTH && port == 2      ? kNoSuchParameter
                          : p.id == FG_GEN_ROLL && port == 3 ? kNoSuchRegister
                                                             : VELMORA_OK;
      EXPECT_EQ(code, lacking) << p.name << " on port " << port;
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

TEST(DesignEvents, HaveTheNamesOfTheSdk) {
  Applet applet;
  unsigned position = 0;
  for (const auto& [sdk, own] : kEvents)
    for (unsigned c = 0; c < (std::string(sdk).find("INPUT") == std::string::npos ? 4u : 8u); ++c) {
      const auto expand = [c](std::string text) {
        text = replaced(text, "{M}", c < 2 ? "MonitoringEvents" : "MonitoringEvents_1");
        return replaced(replaced(text, "{c}", std::to_string(c)), "{L}", {"ABCDEFGH"[c]});
      };
      const std::uint64_t mask = 1ull << position++;
      for (const std::string& name : {expand(sdk), "Device1_Process4_Trigger_" + expand(own)})
        EXPECT_EQ(Fg_getEventMask(applet.fg(), name.c_str()), mask) << name;
      EXPECT_EQ(applet.lastError(), VELMORA_OK);
      EXPECT_STREQ(Fg_getEventName(applet.fg(), mask), expand(sdk).c_str());
    }
  EXPECT_EQ(position, 44u);
  for (const char* name : {static_cast<const char*>(nullptr), "", "FG_TRIGGER_INPUT8_RISING"})
    EXPECT_EQ(Fg_getEventMask(applet.fg(), name), 0u);
  for (const std::uint64_t mask : {0ull, 3ull, ~0ull, 1ull << 44}) {
    Fg_getParameterId(applet.fg(), 0);
    EXPECT_EQ(Fg_getEventName(applet.fg(), mask), nullptr);
    EXPECT_EQ(applet.lastError(), VELMORA_INVALID_ARGUMENT);
  }
}

}  // namespace
