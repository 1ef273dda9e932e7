#include <cstdio>
#include <iterator>
#include <new>
#include <regex>
#include <set>

#include "tests/applet_test.h"
#include "tests/loaded_runtime.h"

namespace {

using namespace fixture;
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

TEST(Library, ExportsExactlyTheInterface) {
  EXPECT_EQ(wordsOf(outputOf(NM " -D --defined-only --format=just-symbols " LIBRARY)),
            wordsOf(contentOf(TEST_DATA "/exports.txt")));
}

/// The board's library: what its header declares; all else is for the board's other libraries.
TEST(Library, OfTheBoardExportsItsHeader) {
  std::multiset<std::string> declared, exported;
  const std::string header = contentOf(BOARD_HEADER);
  const std::regex call("VirtualBoard_[A-Za-z]+(?=\\()");
  for (std::sregex_iterator name(header.begin(), header.end(), call), end; name != end; ++name)
    declared.insert(name->str() + "@@VIRTUALBOARD");
  for (const auto& word : wordsOf(outputOf(NM " -D --defined-only --format=just-symbols " BOARD)))
    if (word.find('@') != std::string::npos && !word.ends_with("@@VIRTUALBOARD_PRIVATE"))
      exported.insert(word);
  EXPECT_EQ(exported, declared);
}

TEST(Library, NeedsTheDesignAndTheRegisterLibrary) {
  const std::string dynamic = outputOf(READELF " -d " LIBRARY);
  for (const char* text : {"[libdervin.so]", "[libkorv_hw.so]", "[libVelmora.so]"})
    EXPECT_NE(dynamic.find(text), std::string::npos) << text;
  for (const char* text : {"libvorn5", "libvirtualboard", "(RPATH)"})
    EXPECT_EQ(dynamic.find(text), std::string::npos) << text;
}

TEST(Library, IsBuiltHardenedWithAllAroundIt) {
  std::istringstream files(BUILT_FILES);
  int checked = 0;
  for (std::string file; files >> file; ++checked) {
    SCOPED_TRACE(file);
    // Some linkers' start files call one function through the table that calls avoid.
    const std::string command = READELF
                                " --wide --file-header --segments --dynamic --relocs --dyn-syms " +
                                file + " | grep -v 'JUMP_SLO.*__cxa_finalize'";
    const std::string text = outputOf(command.c_str());
    for (const char* there : {"DYN (", " GNU_RELRO ", "BIND_NOW", " GNU_STACK ",
#ifdef _FORTIFY_SOURCE
                              file.ends_with("libVelmora.so") ? "_chk@GLIBC" : "",
#endif
                              " __stack_chk_fail"})
      EXPECT_NE(text.find(there), std::string::npos) << there;
    for (const char* missing : {" RWE ", "JUMP_SLO"})
      EXPECT_EQ(text.find(missing), std::string::npos) << missing;
  }
  EXPECT_EQ(checked, 8);
}

/// Up to the first write.
TEST(Entry, TakesItsStepsInOrder) {
  for (const int flags : {0, -1, 2}) {
    const bool old = flags == 2;
    const Library runtime = loadRuntime(old ? "without/Fg_InitHandleSlaveAware" : "");
    const std::string init =
        old ? "(Velmora.hap)" : "SlaveAware(Velmora.hap, flags " + std::to_string(flags) + ")";
    const Applet applet(flags);
    EXPECT_TRUE(applet.opened());
    EXPECT_EQ(applet.error(), 0);
    Steps steps;
    for (const board::Access& access : board::takeJournal()) {
      if (access.kind == board::AccessKind::kSet) break;
      const std::string step = steps.size() < 2 ? board::describe(access) : access.name;
      if (steps.empty() || steps.back().first != step) steps.emplace_back(step, 0);
      ++steps.back().second;
    }
    EXPECT_EQ(steps, (Steps{{"call HapLoadDesignFromBuffer(2662941 bytes)", 1},
                            {"call Fg_InitHandle" + init, 1},
                            {"HapGetEvent", kDesignEvents + 1},
                            {"Fg_getParameterIdByName", kDesignParameters},
                            {"HapGetRegisterByName", kDesignRegisters}}));
  }
}

TEST(Entry, RefusalsReleaseEverything) {
  const std::string load = "HapLoadDesignFromBuffer", unload = "HapUnloadHapFile";
  const std::string older = "Fg_InitHandle", init = "Fg_InitHandleSlaveAware";
  const std::string ask = "Fg_getLastErrorNumber";
  const std::string unresolved = "cannot resolve function '" + older + "' and/or '" + init + "'\n";
  const auto refused = [](const std::string& function) {
    return "error calling '" + function + "' (hapName = 'Velmora.hap')\n";
  };
  const struct {
    std::string lacking, failing;
    int failure, error;
    Lines calls;
    std::string log;
  } rows[] = {{"", load, -9, -100, {load}, ""},
              {"", init, -2052, -2052, {load, init, ask, unload}, refused(init)},
              {"", init, 0, -100, {load, init, ask, unload}, refused(init)},
              {"without/" + ask, init, -2052, -100, {load, init, unload}, refused(init)},
              {"without/" + init, older, -2052, -2052, {load, older, ask, unload}, refused(older)},
              {"without/any_init", "", 0, -2031, {load, unload}, unresolved}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.lacking + " " + row.failing + " " + std::to_string(row.failure));
    Library runtime = loadRuntime(row.lacking);
    board::failNamed(row.failing, row.failure);
    testing::internal::CaptureStderr();
    Applet applet;
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(log.substr(log.find('|') + 1), row.log);
    EXPECT_FALSE(applet.opened());
    EXPECT_EQ(applet.error(), row.error);
    EXPECT_EQ(takeNames(), row.calls);
    EXPECT_EQ(Std_entry(applet.device(), nullptr, 0), nullptr);
    EXPECT_EQ(takeNames(), row.calls);
    runtime.reset();
    EXPECT_TRUE(allReleased());
  }
}

/// As if there were no memory left for whatever the step does. The first one follows a refusal.
/// With the last one the clean-up throws as well.
TEST(Entry, LetsNoExceptionOut) {
  const EnvironmentVariable registers("KORV_ENABLE_DRA", "1");
  const EnvironmentVariable parameters("KORV_ENABLE_DKTA", "1");
  board::failNamed("Fg_InitHandleSlaveAware", -2052);
  for (const std::string step :
       {"Fg_getLastErrorNumber", "HapGetEvent", "HapGetNrOfRegister", "Fg_getParameterInfo",
        "Fg_getParameterIdByName", "HapGetRegisterByName", "CamGenEnable0",
        "Device1_Process2_Buffer_XLength", "last"}) {
    SCOPED_TRACE(step);
    const bool last = step == "last";
    bool thrown = false;
    board::observe([&](const board::Access& access) {
      if (access.name == (last ? "HapGetEvent" : step) && !std::exchange(thrown, true))
        throw std::bad_alloc();
      if (last && (access.name == "Fg_FreeGrabber" || access.name == "HapUnloadHapFile")) throw 7;
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
  Fg_Struct other{Std_entry(applet.device(), nullptr, 0)};  // With no place for the code.
  EXPECT_EQ(Fg_FreeGrabber(&other), 0);
}

}  // namespace
