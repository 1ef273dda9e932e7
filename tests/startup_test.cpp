/// What opening the applet does to the design, access by access, what happens when an access fails,
/// and what is made of the names and events of a design.
#include <dlfcn.h>
#include <pthread.h>

#include <array>
#include <new>
#include <optional>
#include <set>

#include "external/dervin.h"
#include "tests/applet_test.h"

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

/// All accesses in their order when the `failing`th write (from 1, 0 for none) fails.
Lines startUp(bool defaults, unsigned failing = 0) {
  static const Lines all = linesOf(contentOf(TEST_DATA "/start_up.txt"));
  Lines lines;
  unsigned write = 0;
  bool skipping = false;
  for (const std::string& line : all) {
    if (line.empty() && !defaults) break;
    if (line.empty()) skipping = false;
    if (line.empty() || line.starts_with('#') || skipping) continue;
    lines.push_back(line);
    if (line.starts_with("get ") || ++write != failing) continue;
    lines.back() += fmt::format(" failed: {}", kInjected);
    skipping = true;
  }
  return lines;
}

/// The accesses since the last take, without the values of gets.
Lines takeStartUp() {
  Lines lines = takeAccesses();
  for (std::string& line : lines) line.erase(std::min(line.find(" -> "), line.size()));
  return lines;
}

TEST(StartUp, RoutesThePortsAndAppliesTheDefaults) {
  for (const int flags : {0, 2, ~1, 1, -1}) {
    SCOPED_TRACE(flags);
    Applet applet(flags);
    EXPECT_EQ(takeStartUp(), startUp(flags % 2 == 0));
    expectInitialSettings(applet);
    for (unsigned port = 0; port < kPorts && flags % 2 != 0; ++port)  // As the design begins.
      EXPECT_EQ(
          applet.word(FG_GEN_LINE_WIDTH, port).value + applet.word(FG_GEN_PASSIVE, port).value,
          1058u);
  }
}

/// A failure ends its own step. The setting concerned keeps its first value, which is the default.
TEST(StartUp, GoesOnWhateverWriteFails) {
  const ExternalDesign design(ownRecords());  // Loads faster than the image.
  for (unsigned k = 1;; ++k) {
    SCOPED_TRACE(k);
    board::failAtWrite(k, kInjected);
    Applet applet;
    board::clearFaults();
    ASSERT_TRUE(applet.opened());
    EXPECT_EQ(applet.error(), VELMORA_OK);
    const Lines accesses = takeStartUp();
    ASSERT_EQ(accesses, startUp(true, k));
    expectInitialSettings(applet);
    if (accesses == startUp(true)) break;
  }
}

/// While a table is built, in the routing of the ports, which drops every failure, and while a
/// failed start gives everything back, which a cancellation does not interrupt.
TEST(StartUp, LetsACancelledThreadEnd) {
  for (const std::string step :
       {"HapGetEvent", "Device1_Process4_Trigger_TriggerCam1_TriggerOutput_Select0_Select_Select",
        "Fg_FreeGrabber", "HapUnloadHapFile"}) {
    const bool failed = step == "Fg_FreeGrabber" || step == "HapUnloadHapFile";
    KTdevice* const device = VirtualBoard_createDevice();
    board::observe([&](const board::Access& access) {
      if (failed && access.name == "HapGetEvent") throw std::bad_alloc();
      if (access.name != step) return;
      pthread_cancel(pthread_self());
      pthread_testcancel();
    });
    const auto start = [](void* device) {
      void* const applet = Std_entry(static_cast<KTdevice*>(device), nullptr, 0);
      pthread_testcancel();
      return applet;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, start, device), 0);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED) << step;
    board::observe({});
    EXPECT_EQ(board::outstanding().handles, 0) << step;
    EXPECT_EQ(board::outstanding().designs, 0) << step;
    VirtualBoard_destroyDevice(device);
  }
}

/// What is logged of names that a design lacks.
std::string lacking(const std::string& what, const std::string& name) {
  return "FgKtWrapper|cannot retrieve " + what + ": '" + name + "'";
}

TEST(DesignNames, AreThoseOfTheOwnDesign) {
  EXPECT_EQ(logged([] { EXPECT_TRUE(Applet().opened()); }), Lines{});
  const ExternalDesign design("");
  const Lines lines = logged([] { EXPECT_TRUE(Applet().opened()); });
  const auto count = [&](const std::string& text) {
    std::set<std::string> different;
    for (const std::string& line : lines)
      if (line.find(text) != std::string::npos) different.insert(line);
    return different.size();
  };
  EXPECT_EQ(count("KT id for KT parameter"), kDesignParameters);
  EXPECT_EQ(count("HAP id for HAP parameter"), kDesignRegisters);
  EXPECT_EQ(count("event id for internal event"), kDesignEvents);
  // Events of inputs are looked for with each camera.
  EXPECT_EQ(lines.size(),
            kDesignParameters + kDesignRegisters + kDesignEvents + (kPorts - 1) * 2 * 8);
  EXPECT_EQ(*std::ranges::find_if(lines, [](auto& line) { return line.find(" KT ") != line.npos; }),
            lacking("KT id for KT parameter",
                    "Device1_Process4_Trigger_TriggerCam0_TriggerOutput_Select0_Select_Select"));
}

TEST(DesignNames, ThatAreMissingSpoilOnlyWhatNeedsThem) {
  const ExternalDesign design(
      replaced(replaced(ownRecords(), "Process{0-3}_Buffer_XLength         rw channel 8 8192 4",
                        "Process{0-1}_Buffer_XLength rw channel 8 8192 4\n"
                        "uint Device1_Process3_Buffer_XLength rw channel 8 8192 4"),
               "CamGenRoll{0-3}", "CamGenRoll{0-2}"));
  std::optional<Applet> applet;
  EXPECT_EQ(logged([&] { applet.emplace(); }),
            (Lines{lacking("KT id for KT parameter", "Device1_Process2_Buffer_XLength"),
                   lacking("HAP id for HAP parameter", "CamGenRoll3")}));
  ASSERT_TRUE(applet->opened());
  EXPECT_EQ(applet->error(), VELMORA_OK);
  for (unsigned port = 0; port < kPorts; ++port)
    for (const Parameter& p : parameters()) {
      std::array<char, 16> value;
      EXPECT_EQ(Fg_getParameterWithType(applet->fg(), p.id, value.data(), port, 2), VELMORA_OK);
      if (!p.writable() || p.id == FG_SENDSOFTWARETRIGGER) continue;
      const int code = p.real() ? applet->set(p.id, std::stod(p.initial), port)
                                : applet->set(p.id, std::stoi(p.initial), port);
      EXPECT_EQ(code, p.id == FG_WIDTH && port == 2      ? kNoSuchParameter
                      : p.id == FG_GEN_ROLL && port == 3 ? kNoSuchRegister
                                                         : VELMORA_OK)
          << p.name << " on port " << port;
    }
  EXPECT_EQ(applet->set(FG_WIDTH, 512, 2), kNoSuchParameter);
  EXPECT_EQ(applet->word(FG_WIDTH, 2).value, 1024u);
}

TEST(DesignEvents, HaveTheNamesOfTheSdk) {
  Applet applet;
  std::uint64_t mask = 1;
  for (const std::string& line : linesOf(contentOf(TEST_DATA "/events.txt"))) {
    std::string name, own;
    std::istringstream(line) >> name >> own;
    EXPECT_EQ(Fg_getEventMask(applet.fg(), name.c_str()), mask) << name;
    applet.set(FG_WIDTH, 0);  // Records another code.
    EXPECT_EQ(Fg_getEventMask(applet.fg(), own.c_str()), mask) << own;
    EXPECT_EQ(applet.lastError(), VELMORA_OK);
    applet.set(FG_WIDTH, 0);
    EXPECT_EQ(Fg_getEventName(applet.fg(), mask), name);
    EXPECT_EQ(applet.lastError(), VELMORA_OK);
    mask *= 2;
  }
  for (const char* name : {static_cast<const char*>(nullptr), "", "FG_TRIGGER_INPUT8_RISING"}) {
    applet.set(FG_WIDTH, 1024);
    EXPECT_EQ(Fg_getEventMask(applet.fg(), name), 0u);
    EXPECT_EQ(applet.lastError(), VELMORA_INVALID_ARGUMENT);
  }
  for (const std::uint64_t none : {std::uint64_t{0}, std::uint64_t{3}, ~std::uint64_t{0}, mask}) {
    Fg_getParameterId(applet.fg(), 0);
    EXPECT_EQ(Fg_getEventName(applet.fg(), none), nullptr);
    EXPECT_EQ(applet.lastError(), VELMORA_INVALID_ARGUMENT);
  }
}

/// By position, and only those that the design marks as reported; what has no bit has no name.
TEST(DesignEvents, OfAnotherDesign) {
  const ExternalDesign design("event Other 0\nevent Event{1-69} 1");
  std::optional<Applet> opened;
  EXPECT_FALSE(logged([&] { opened.emplace(); }).empty());
  Applet& applet = *opened;
  for (int i = 0; i < 70; ++i) {
    const std::string name = i == 0 ? "Other" : fmt::format("Event{}", i);
    const std::uint64_t mask = i > 0 && i < 64 ? std::uint64_t{1} << i : 0;
    EXPECT_EQ(Fg_getEventMask(applet.fg(), name.c_str()), mask) << name;
    if (mask != 0) {
      EXPECT_EQ(Fg_getEventName(applet.fg(), mask), name);
    }
  }
  EXPECT_EQ(Fg_getEventName(applet.fg(), 1), nullptr);
}

}  // namespace
