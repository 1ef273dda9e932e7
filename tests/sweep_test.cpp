/// A host's session in which one thing after the other fails: in each step every call of the
/// libraries around the applet, or every allocation. A step that meets a failure tells it and
/// changes nothing but what is documented. The one that meets none has the same result as in an
/// undisturbed session, which goes on beside it.
#include <functional>
#include <iterator>
#include <new>

#include "tests/applet_test.h"
#include "tests/fakes/allocation_hook.h"

namespace {

using namespace fixture;
using Action = std::function<int(Applet&)>;

constexpr int kThrown = 1;  ///< In place of a code: `std::bad_alloc` left the call.
const std::vector<Place> kNone;

int open(Applet& applet) {
  int error = 1;
  applet.fg()->applet = Std_entry(applet.device(), &error, 0);
  return error;
}

int outstanding() {
  const auto [handles, designs, strings, memories] = board::outstanding();
  return handles + designs + strings + memories;
}

class Sweep : public testing::TestWithParam<bool> {
 protected:
  Sweep() {
    board::stopJournal();
    board::setClock([] { return std::chrono::nanoseconds(0); }, [](auto) {});  // One for both.
    for (Applet* each : {&host, &reference})
      for (unsigned port = 0; port < kPorts; ++port)  // Follows from what is written.
        board::setValue(each->device(), "FG_CAMSTATUS_EXTENDED", port, 1);
    host.set(FG_DMASTATUS, 0);  // The loggers are made once, and do without memory.
    // Calls are described to an observer, which takes memory.
    if (allocations)
      VirtualBoard_observe([](void*, const VirtualBoardAccess*) {}, nullptr, nullptr);
  }
  void TearDown() override {
    board::observe({});
    board::setClock({}, {});
    host.close();
    reference.close();
    EXPECT_EQ(outstanding(), left);
    EXPECT_TRUE(failures > 0 || !allocations) << "the hook does not see the libraries";
  }

  /// Takes a step with its first, second, third... call or allocation failing, until it meets none
  /// that does. `failed` looks at what each of the others has left, with its code and number.
  template <class Failed>
  int step(const std::string& name, const Action& action, const Failed& failed) {
    int code = kThrown;
    std::size_t calls = 0;
    bool met = true;
    for (unsigned k = 1; met && !HasFailure(); ++k) {
      SCOPED_TRACE(fmt::format("{}, failure {}", name, k));
      if (allocations) {
        const fakes::FailingAllocation noMemory(k - 1);
        try {
          code = kThrown;
          code = action(host);
        } catch (const std::bad_alloc&) {
        }
        met = noMemory.met();
      } else {
        board::startJournal();
        board::failAtCall(k, kInjected);
        code = action(host);
        board::clearFaults();
        calls = board::takeJournal().size();
        met = calls >= k;
      }
      failures += met;
      if (met) failed(code, k);
    }
    if (HasFailure()) return code;
    SCOPED_TRACE(name);
    EXPECT_EQ(code, action(reference));
    EXPECT_TRUE(allocations || board::takeJournal().size() == calls);
    board::stopJournal();
    expectTheSame();
    return code;
  }

  /// A set or get that a failure ends, and that changes nothing then. One that is refused changes
  /// nothing either, any other one its own port at most.
  void allOrNothing(const std::string& name, unsigned port, const Action& action) {
    const Sight before = sightOf(host);
    const int code = step(name, action, [&](int code, unsigned) {
      EXPECT_EQ(code, allocations ? kThrown : kInjected);
      EXPECT_TRUE(allocations || host.lastError() == code);
      EXPECT_EQ(differences(before, sightOf(host)), kNone);
    });
    for (const auto& [place, id] : differences(before, sightOf(host)))
      // The debouncer serves all ports.
      EXPECT_TRUE(code == VELMORA_OK && (place == port || id == FG_TRIGGERIN_DEBOUNCE)) << name;
  }

  void expectTheSame() { EXPECT_EQ(differences(sightOf(host), sightOf(reference)), kNone); }

  const bool allocations = GetParam();        ///< Whether these fail, not calls.
  const ExternalDesign design{ownRecords()};  // Loads faster than the image.
  const TemporaryDirectory directory;
  const std::string file = directory / "a.mcf";
  int left = outstanding();  ///< What stays with the board in the end.
  int failures = 0;
  Applet host, reference;
};

TEST_P(Sweep, OpensOrLeavesNothing) {
  host.close();
  reference.close();
  board::observe({});
  // The board's reading of its own design would take most of the allocations.
  const ExternalDesign other(allocations ? "string Text rw channel old" : ownRecords());
  const EnvironmentVariable dra("KORV_ENABLE_DRA", "1"), dkta("KORV_ENABLE_DKTA", "1");
  EXPECT_TRUE(Applet().opened());  // Missing names are logged.
  step("open", open, [&](int code, unsigned k) {
    if (allocations)
      EXPECT_TRUE(code == VELMORA_NO_DESIGN || code == VELMORA_NO_RUNTIME) << code;
    else  // What the design lacks or refuses later ends no start.
      EXPECT_EQ(code, k == 1 ? VELMORA_NO_DESIGN : k == 2 ? kInjected : VELMORA_OK);
    EXPECT_EQ(host.opened(), code == VELMORA_OK);
    if (host.opened()) expectInitialSettings(host);
    host.close();
    EXPECT_EQ(outstanding(), left);
  });
  if (allocations) {  // The device has all of the design.
    const int id = Fg_getParameterIdByName(host.fg(), "DKTA_Text");
    char* text = nullptr;
    ASSERT_EQ(Fg_getParameterWithType(host.fg(), id, &text, 3, FG_PARAM_TYPE_STRING), VELMORA_OK);
    EXPECT_STREQ(text, "old");
    Fg_freeParameterStringWithType(host.fg(), id, text, 3, FG_PARAM_TYPE_STRING);
  }
  // It is free for another one.
  host.close();
  const ExternalDesign another("register A 8 rw");
  EXPECT_EQ(open(host), VELMORA_OK);
}

/// Those of all transcripts, on every port, as they come.
TEST_P(Sweep, SetsAndGetsAreAllOrNothing) {
  for (const auto& each : std::filesystem::directory_iterator(TEST_DATA "/transcripts"))
    for (unsigned port = 0; port < kPorts && each.path().extension() == ".txt"; ++port)
      for (const std::string& line : linesOf(forPort(contentOf(each.path()), port))) {
        if (line.empty() || line.starts_with(' ') || line.starts_with('#')) continue;
        TranscriptLine told(line, host, port);
        const auto play = [&](Applet& applet) { return told.play(applet, port); };
        if (!told.hardware())
          allOrNothing(line, port, play);
        else
          for (Applet* each : {&host, &reference}) play(*each);
      }
}

/// The applet's own and one of the runtime.
TEST_P(Sweep, ATextIsHandedOutOrNot) {
  for (const int id : {FG_HAP_FILE, FG_NR_OF_DMAS}) {
    std::map<Applet*, char*> texts{{&host, nullptr}, {&reference, nullptr}};
    const auto get = [&](Applet& applet) {
      return Fg_getParameterWithType(applet.fg(), id, &texts[&applet], 0, FG_PARAM_TYPE_STRING);
    };
    step("text", get, [&](int code, unsigned) {
      EXPECT_EQ(code, allocations ? kThrown : kInjected);
      EXPECT_EQ(texts[&host], nullptr);
    });
    for (const auto& [applet, text] : texts)
      EXPECT_EQ(Fg_freeParameterStringWithType(applet->fg(), id, text, 0, 22), VELMORA_OK);
  }
}

TEST_P(Sweep, ADocumentIsWholeOrRefused) {
  const std::string whole = document(reference, 0) + '\0', untouched(whole.size(), '#');
  std::string buffer = untouched;
  std::size_t size = whole.size();
  const auto render = [&](Applet& applet) {
    return Fg_getParameterInfoXML(applet.fg(), 0, buffer.data(), &size);
  };
  step("document", render, [&](int code, unsigned) {
    EXPECT_EQ(code, VELMORA_OUT_OF_MEMORY);
    EXPECT_EQ(host.lastError(), code);
    EXPECT_TRUE(buffer == untouched && size == whole.size());
  });
  EXPECT_EQ(buffer, whole);
}

/// Without memory the old file stays; without a value the rest is saved.
TEST_P(Sweep, ASaveReplacesTheFileOrDoesNot) {
  const auto save = [&](Applet& applet) { return Fg_saveConfig(applet.fg(), file.c_str()); };
  const auto lines = [&] { return linesOf(contentOf(file)).size(); };
  EXPECT_EQ(save(reference), VELMORA_OK);
  const std::size_t all = lines();
  step("save", save, [&](int code, unsigned) {
    EXPECT_EQ(code, allocations ? kThrown : VELMORA_OK);
    EXPECT_EQ(lines(), allocations ? all : all - 1);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory / ""), {}), 1);
    expectTheSame();
  });
  EXPECT_EQ(lines(), all);
}

/// A value that the design refuses is kept all the same. The next load finds nothing amiss.
TEST_P(Sweep, ALoadCanBeRepeated) {
  const auto reset = [&](Applet& applet) { return Fg_loadConfig(applet.fg(), file.c_str()); };
  const auto load = [](Applet& applet) {
    return Fg_loadConfig(applet.fg(), TEST_DATA "/settings.mcf");
  };
  ASSERT_EQ(Fg_saveConfig(host.fg(), file.c_str()), VELMORA_OK);
  ASSERT_EQ(load(reference), VELMORA_OK);
  const Sight loaded = sightOf(reference);
  ASSERT_EQ(reset(reference), VELMORA_OK);
  step("load", load, [&](int code, unsigned) {
    EXPECT_EQ(code, allocations ? kThrown : VELMORA_OK);
    const Sight after = sightOf(host);
    for (const auto& [port, id] : differences(after, loaded)) {
      const Parameter& p = *std::ranges::find(parameters(), id, &Parameter::id);
      const bool stored = p.writable() && p.kind != "time" && id != FG_AREATRIGGERMODE &&
                          id != FG_TRIGGERSTATE && !allocations;
      EXPECT_TRUE(!stored || after.at({port, id}).first == loaded.at({port, id}).first) << p.name;
    }
    EXPECT_EQ(load(host), VELMORA_OK);
    EXPECT_EQ(differences(sightOf(host), loaded), kNone);
    EXPECT_EQ(reset(host), VELMORA_OK);
    expectTheSame();
  });
}

/// What the board does not take back is all that stays with it.
TEST_P(Sweep, ACloseReleasesTheRest) {
  const auto close = [](Applet& applet) { return applet.close(); };
  step("close", close, [&](int code, unsigned k) {
    EXPECT_EQ(host.opened(), code == kThrown);  // Then it can be repeated.
    if (host.opened()) return expectTheSame();
    EXPECT_EQ(code, !allocations && k == 1 ? kInjected : VELMORA_OK);
    EXPECT_EQ(outstanding(), ++left + 2);  // And the other session.
    EXPECT_EQ(open(host), VELMORA_OK);
  });
}

INSTANTIATE_TEST_SUITE_P(Every, Sweep, testing::Bool(),
                         [](const auto& info) { return info.param ? "Allocation" : "Call"; });

}  // namespace
