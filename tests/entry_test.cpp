#include <gtest/gtest.h>
#include <pthread.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <new>
#include <set>
#include <sstream>
#include <utility>

#include "tests/applet_fixture.h"
#include "tests/external_design.h"
#include "tests/loaded_runtime.h"

namespace {

using fixture::Applet;
using fixture::Lines;
using Steps = std::vector<std::pair<std::string, int>>;

// A logger asks for its level once, when it is made.
[[maybe_unused]] const int kWarningsAreLogged = setenv("KORV_LOG_LEVEL", "5", 1);

std::string outputOf(const char* command) {
  std::FILE* const pipe = popen(command, "r");
  std::string text;
  for (int c; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
  EXPECT_EQ(pclose(pipe), 0) << command;
  return text;
}

std::multiset<std::string> wordsOf(const std::string& text) {
  std::istringstream in(text);
  return {std::istream_iterator<std::string>(in), {}};
}

/// The names of everything that was called, set or written.
Lines takeNames() {
  Lines names;
  for (const board::Access& access : board::takeJournal()) names.push_back(access.name);
  return names;
}

/// A message as the board's dispatcher writes it.
std::string logLine(const std::string& level, const std::string& text) {
  return "korv.wrapper.Velmora " + level +
         ": thread-id=" + std::to_string(static_cast<unsigned long>(pthread_self())) + "|" + text +
         "\n";
}

TEST(Library, ExportsExactlyTheInterface) {
  EXPECT_EQ(wordsOf(outputOf(NM " -D --defined-only --format=just-symbols " LIBRARY)),
            wordsOf("Std_entry Fg_FreeGrabber Info Fg_getAppletId Fg_AcquireEx Fg_stopAcquireEx "
                    "Fg_getLastPicNumberEx Fg_getLastPicNumberBlockingEx Fg_getStatusEx "
                    "Fg_setParameterWithType Fg_getParameterWithType "
                    "Fg_freeParameterStringWithType Fg_getNrOfParameter Fg_getParameterName "
                    "Fg_getParameterId Fg_getParameterIdByName Fg_saveConfig Fg_loadConfig "
                    "Fg_getParameterInfoXML Fg_getParameterInfo Fg_getEventMask Fg_getEventName "
                    "Fg_getLastErrorNumber Fg_AllocShading Fg_FreeShading Shad_SetSubValueLine "
                    "Shad_SetMultValueLine Shad_SetFixedPatternNoiseLine Shad_GetMaxLine "
                    "Shad_GetAccess Shad_FreeAccess Shad_WriteActLine mkstemps"));
}

TEST(Library, NeedsTheDesignAndTheRegisterLibrary) {
  const std::string dynamic = outputOf(READELF " -d " LIBRARY);
  for (const auto& [text, there] : {std::pair{"[libdervin.so]", true},
                                    {"[libkorv_hw.so]", true},
                                    {"libvorn5", false},
                                    {"libvirtualboard", false},
                                    {"(RPATH)", false},
                                    {"[libVelmora.so]", true}})
    EXPECT_EQ(dynamic.find(text) != std::string::npos, there) << text;
}

TEST(Entry, TakesItsStepsInOrder) {
  const struct {
    std::string lacking;
    int flags;
  } rows[] = {{"", 0},
              {"", 1},
              {"", -2},
              {"", -1},
              {"without/Fg_InitHandle", 2},
              {"without/Fg_InitHandleSlaveAware", 2}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.lacking + std::to_string(row.flags));
    const LoadedRuntime runtime(row.lacking);
    const Applet applet(row.flags);
    EXPECT_TRUE(applet.opened());
    EXPECT_EQ(applet.error(), 0);
    // A step is all calls of one function, or all accesses to parameters or registers, in a row; of
    // the first two, the call.
    Steps steps;
    for (const board::Access& access : board::takeJournal()) {
      std::string step = steps.size() < 2 ? board::describe(access) : access.name;
      if (access.kind == board::AccessKind::kSet) step = "sets";
      if (access.kind == board::AccessKind::kRegisterWrite) step = "writes";
      if (!steps.empty() && steps.back().first == step)
        ++steps.back().second;
      else
        steps.emplace_back(step, 1);
    }
    const std::string init =
        row.lacking == "without/Fg_InitHandleSlaveAware"
            ? "Fg_InitHandle(Velmora.hap)"
            : "Fg_InitHandleSlaveAware(Velmora.hap, flags " + std::to_string(row.flags) + ")";
    Steps expected = {{"call HapLoadDesignFromBuffer(2662941 bytes)", 1},
                      {"call " + init, 1},
                      {"HapGetEvent", 44 + 1},
                      {"Fg_getParameterIdByName", 258},
                      {"HapGetRegisterByName", 32},
                      {"sets", 4 * 9}};
    if (row.flags % 2 == 0) expected.emplace_back("writes", 32);
    EXPECT_EQ(steps.size() > expected.size(), row.flags % 2 == 0);
    steps.resize(std::min(steps.size(), expected.size()));
    EXPECT_EQ(steps, expected);
  }
}

TEST(Entry, RefusalsReleaseEverything) {
  const std::string load = "HapLoadDesignFromBuffer";
  const std::string init = "Fg_InitHandleSlaveAware";
  const std::string ask = "Fg_getLastErrorNumber";
  const std::string unload = "HapUnloadHapFile";
  const auto calling = [](const std::string& function) {
    return logLine("warning", "error calling '" + function + "' (hapName = 'Velmora.hap')");
  };
  const std::string unresolved =
      logLine("error", "cannot resolve function 'Fg_InitHandle' and/or 'Fg_InitHandleSlaveAware'");
  const struct {
    std::string lacking;
    std::string failing;
    int failure;
    int error;
    Lines calls;
    std::string log;
  } rows[] = {{"", load, -9, -100, {load}, ""},
              {"", init, -2052, -2052, {load, init, ask, unload}, calling(init)},
              {"", init, 0, -100, {load, init, ask, unload}, calling(init)},
              {"without/" + ask, init, -2052, -100, {load, init, unload}, calling(init)},
              {"without/" + init,
               "Fg_InitHandle",
               -2052,
               -2052,
               {load, "Fg_InitHandle", ask, unload},
               calling("Fg_InitHandle")},
              {"without/any_init", "", 0, -2031, {load, unload}, unresolved}};
  KTdevice* const device = board::createDevice();
  board::startJournal();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.lacking + " " + row.failing + " " + std::to_string(row.failure));
    {
      const LoadedRuntime runtime(row.lacking);
      board::failNamed(row.failing, row.failure);
      for (const bool reported : {true, false}) {
        int error = 1;
        testing::internal::CaptureStderr();
        EXPECT_EQ(Std_entry(device, reported ? &error : nullptr, 0), nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), row.log);
        EXPECT_EQ(takeNames(), row.calls);
        EXPECT_EQ(error, reported ? row.error : 1);
      }
      board::clearFaults();
    }
    EXPECT_TRUE(allReleased());
  }
  board::stopJournal();
  Fg_Struct opened{Std_entry(device, nullptr, 0)};
  EXPECT_NE(opened.applet, nullptr);
  EXPECT_EQ(Fg_FreeGrabber(&opened), 0);
  board::destroyDevice(device);
}

TEST(Entry, ExternalDesignReplacesTheEmbeddedOne) {
  for (const std::string records : {"", "# missing", "damaged"}) {
    const fixture::ExternalDesign external(records);
    if (records == "# missing") std::filesystem::remove("Velmora.hap");
    {
      const Applet applet;
      EXPECT_EQ(applet.opened(), records.empty());
      EXPECT_EQ(applet.error(), records.empty() ? 0 : -100);
      const auto journal = board::takeJournal();
      EXPECT_TRUE(board::describe(journal.at(0))
                      .starts_with("call HapLoadHapFileWithType(Velmora.hap, board type 3652)"));
      EXPECT_EQ(journal.size() > 1, records.empty());
    }
    EXPECT_TRUE(allReleased());
  }
}

TEST(Entry, NeedsALoadableRuntime) {
  KTdevice* const device = board::createDevice();
  int error = 1;
  // Opens the dispatcher for what is to come.
  board::failNamed("Fg_InitHandleSlaveAware", -2052, 1);
  EXPECT_EQ(Std_entry(device, &error, 0), nullptr);
  EXPECT_TRUE(allReleased());
  board::clearFaults();
  board::startJournal();
  testing::internal::CaptureStderr();
  // No library can be opened where no file can.
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  rlimit none = before;
  none.rlim_cur = 0;
  setrlimit(RLIMIT_NOFILE, &none);
  void* const applet = Std_entry(device, &error, 0);
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            logLine("error", "error opening dll 'libvorn5.so'"));
  EXPECT_EQ(applet, nullptr);
  EXPECT_EQ(error, -2031);
  EXPECT_EQ(takeNames(), Lines{});
  board::stopJournal();
  board::destroyDevice(device);
}

/// As if there were no memory left for whatever the step does. The first one follows a refusal.
TEST(Entry, LetsNoExceptionOut) {
  const fixture::EnvironmentVariable registers("KORV_ENABLE_DRA", "1");
  const fixture::EnvironmentVariable parameters("KORV_ENABLE_DKTA", "1");
  board::failNamed("Fg_InitHandleSlaveAware", -2052);
  for (const char* step : {"Fg_getLastErrorNumber", "HapGetEvent", "HapGetNrOfRegister",
                           "Fg_getParameterInfo", "Fg_getParameterIdByName", "HapGetRegisterByName",
                           "CamGenEnable0", "Device1_Process2_Buffer_XLength"}) {
    SCOPED_TRACE(step);
    bool thrown = false;
    board::observe([&](const board::Access& access) {
      if (access.name == step && !std::exchange(thrown, true)) throw std::bad_alloc();
    });
    const Applet applet;
    board::observe({});
    EXPECT_TRUE(thrown);
    EXPECT_FALSE(applet.opened());
    EXPECT_EQ(applet.error(), -100);
    EXPECT_TRUE(allReleased());
  }
}

TEST(FreeGrabber, ReleasesHandleThenRuntimeThenDesign) {
  Applet applet;
  EXPECT_TRUE(applet.opened());
  Steps calls;
  board::observe(
      [&](const board::Access& access) { calls.emplace_back(access.name, runtimeIsOpen()); });
  EXPECT_EQ(applet.close(), 0);
  board::observe({});
  EXPECT_EQ(calls, (Steps{{"Fg_FreeGrabber", 1}, {"HapUnloadHapFile", 0}}));
  EXPECT_FALSE(applet.opened());
  EXPECT_TRUE(allReleased());
  EXPECT_EQ(applet.close(), -2001);
}

}  // namespace
