/// Lookups, sets, gets and string releases through the exports: what is found, what is refused with
/// which code and which line in the log, and how calls of several threads and calls within calls
/// go.
#include <atomic>
#include <climits>
#include <functional>
#include <set>
#include <stdexcept>
#include <thread>

#include "tests/applet_test.h"

namespace {

using namespace fixture;

/// The level of refusals.
const EnvironmentVariable kThreshold("KORV_LOG_LEVEL", "4");

/// Asks for a string; `name` is what the buffer holds before.
char* text(Applet& applet, int id, unsigned port = 0, std::string name = "") {
  name.resize(512);
  EXPECT_EQ(Fg_getParameterWithType(applet.fg(), id, name.data(), port, 22), VELMORA_OK);
  char* string = nullptr;
  std::memcpy(&string, name.data(), sizeof string);
  return string;
}

int release(Applet& applet, int id, void* string, unsigned port = 0) {
  return Fg_freeParameterStringWithType(applet.fg(), id, string, port, FG_PARAM_TYPE_STRING);
}

TEST(Lookups, FindEveryParameterAndNothingElse) {
  Applet applet;
  Fg_Struct* const fg = applet.fg();
  const auto recorded = [&](int code, const auto& call) {
    applet.set(FG_WIDTH, code == VELMORA_OK ? 0 : 1024);  // Records another code.
    const auto result = call();
    EXPECT_EQ(applet.lastError(), code);
    return result;
  };
  const int count = static_cast<int>(parameters().size());
  EXPECT_EQ(Fg_getNrOfParameter(fg), count);
  std::set<int> ids = {FG_PARAM_DESCR};  // Served without being listed.
  for (int i = 0; i < count; ++i) {
    const Parameter& p = parameters()[static_cast<std::size_t>(i)];
    EXPECT_EQ(recorded(0, [&] { return Fg_getParameterName(fg, i); }), p.name);
    EXPECT_EQ(recorded(0, [&] { return Fg_getParameterId(fg, i); }), p.id);
    EXPECT_EQ(recorded(0, [&] { return Fg_getParameterIdByName(fg, p.name.c_str()); }), p.id);
    ids.insert(p.id);
  }
  for (const int i : {-1, count, INT_MAX, INT_MIN}) {
    EXPECT_EQ(recorded(-2070, [&] { return Fg_getParameterName(fg, i); }), nullptr);
    EXPECT_EQ(recorded(-2070, [&] { return Fg_getParameterId(fg, i); }), -2070);
  }
  for (const char* name : {static_cast<const char*>(nullptr), "", "fg_width", "FG_PARAM_DESCR"})
    EXPECT_EQ(recorded(-2070, [&] { return Fg_getParameterIdByName(fg, name); }), -2070);
  // Ids around those that exist, and some of all others.
  board::stopJournal();
  testing::internal::CaptureStderr();
  for (std::int64_t id = INT_MIN; id < 1000000; id += id < -100 || id > 310000 ? 655211 : 1) {
    char value[512] = {};
    const int code = Fg_getParameterWithType(fg, static_cast<int>(id), value, 1, 2);
    ASSERT_EQ(code, ids.contains(static_cast<int>(id)) ? 0 : -2070) << id;
  }
  testing::internal::GetCapturedStderr();
}

TEST(Refusals, NameReadOnlyParameters) {
  Applet applet;
  takeAccesses();
  auto rows = parameters();
  std::erase_if(rows, [](const Parameter& p) { return p.writable(); });
  rows.push_back({"FG_PARAM_DESCR", FG_PARAM_DESCR, "text", "ro", ""});
  for (unsigned port = 0; port < kPorts; ++port)
    for (const Parameter& p : rows) {
      EXPECT_EQ(logged([&] { EXPECT_EQ(applet.set(p.id, 1u, port), -12) << p.name; }),
                Lines{"Velmora|trying to set read-only SDK parameter '" + p.name + "' on process " +
                      std::to_string(port) + "!"});
      EXPECT_EQ(applet.lastError(), -12);
    }
  EXPECT_EQ(takeAccesses(), Lines{});
}

TEST(Refusals, NameUnknownIdsAndProcesses) {
  Applet applet;
  for (const unsigned dma : {4u, UINT_MAX})
    EXPECT_EQ(applet.word(FG_NR_OF_PROCESSES, dma), (Applet::Word{0, kPorts}));
  takeAccesses();
  const std::set<int> known = {FG_WIDTH, FG_CAMSTATUS, FG_NR_OF_DMAS};
  for (const unsigned dma : {0u, 3u, 4u, 5u, 0x80000000u, UINT_MAX})
    for (const int id : {0, -1, INT_MIN, 99, 24115, 1000000, 1000001, 2000000, int{FG_WIDTH},
                         int{FG_CAMSTATUS}, int{FG_NR_OF_DMAS}}) {
      if (known.contains(id) && dma < kPorts) continue;
      const std::string what =
          fmt::format("{}SDK parameter '{}' on {}process {}!", dma < kPorts ? "unknown " : "", id,
                      dma < kPorts ? "" : "unknown ", dma);
      EXPECT_EQ(logged([&] { EXPECT_EQ(applet.set(id, 8u, dma), -2070); }),
                Lines{"Velmora|trying to set " + what});
      EXPECT_EQ(applet.lastError(), -2070);
      Fg_getParameterId(applet.fg(), 0);
      EXPECT_EQ(logged([&] {
                  EXPECT_EQ(applet.word(id, dma), (Applet::Word{-2070, 0xDEADBEEF}));
                }),
                Lines{"Velmora|trying to get " + what});
      EXPECT_EQ(applet.lastError(), -2070);
      if (dma < kPorts) continue;
      EXPECT_EQ(logged([&] { EXPECT_EQ(release(applet, id, &applet, dma), -2070); }),
                Lines{"Velmora|trying to free " + what});
    }
  EXPECT_EQ(takeAccesses(), Lines{});
  expectInitialSettings(applet);
}

TEST(Failures, ReturnAndRecordTheirCode) {
  Applet applet;
  Fg_Struct* const fg = applet.fg();
  takeAccesses();
  const std::pair<int, std::function<int()>> refusals[] = {
      {-2070, [&] { return Fg_setParameterWithType(fg, FG_WIDTH, nullptr, 0, 2); }},
      {-2070, [&] { return Fg_getParameterWithType(fg, FG_WIDTH, nullptr, 0, 3); }},
      {-2070, [&] { return Fg_getParameterWithType(fg, 2000001, nullptr, 0, 2); }},
  };
  for (const auto& [code, call] : refusals) {
    Fg_getParameterId(fg, 0);
    EXPECT_EQ(call(), code);
    EXPECT_EQ(applet.lastError(), code);
  }
  EXPECT_EQ(takeAccesses(), Lines{});
  // Any code of the board comes through as it is, a positive one too.
  board::failNamed("CamGenRoll2", 7, 1);
  EXPECT_EQ(applet.set(FG_GEN_ROLL, 64, 2), 7);
  EXPECT_EQ(applet.lastError(), 7);
  EXPECT_EQ(applet.word(FG_GEN_ROLL, 2), (Applet::Word{0, 0}));
}

/// Of the types only the 64-bit integer makes a difference; the runtime answers in those it knows.
TEST(Gets, WriteTheWidthOfTheValue) {
  Applet applet;
  for (const Parameter& p : parameters())
    for (const int type : {2, 1, 3, 5, 0, 99}) {
      if (p.kind == "forwarded" && (type < 1 || type > 3)) continue;
      SCOPED_TRACE(p.name + " with type " + std::to_string(type));
      const std::size_t size = p.kind == "text"        ? sizeof "Velmora.hap"
                               : p.real() || type == 3 ? 8
                                                       : 4;
      std::string buffer(32, '\xA5');
      EXPECT_EQ(Fg_getParameterWithType(applet.fg(), p.id, buffer.data(), 3, type), 0);
      EXPECT_EQ(buffer.find_last_not_of('\xA5'), size - 1);
    }
}

/// Those of all others are in the table of the documents.
TEST(Descriptions, AnswerNamesThatThereAreNot) {
  Applet applet;
  for (const char* name : {"", "-", "FG_PARAM_DESCR", "DRA_CamGenEnable0", "fg_width", "FG_WIDT"})
    EXPECT_STREQ(text(applet, FG_PARAM_DESCR, 2, name), "-") << name;
}

TEST(Strings, GoBackWhereTheyCameFrom) {
  Applet applet;
  const auto releases = [&](int id, void* string, unsigned dma, int code) {
    EXPECT_EQ(release(applet, id, string, dma), code) << "id " << id;
    if (code == -2070) {
      EXPECT_EQ(applet.lastError(), code);
    }
  };
  char* const own = text(applet, FG_HAP_FILE, 1);
  EXPECT_STREQ(own, "Velmora.hap");
  for (const int type : {0, 2, 3, 21, 23})
    EXPECT_EQ(Fg_freeParameterStringWithType(applet.fg(), FG_HAP_FILE, own, 1, type), -2078);
  std::string foreign = own;
  for (char* string : {foreign.data(), own + 1, static_cast<char*>(nullptr)})
    releases(FG_HAP_FILE, string, 0, -2070);
  // Only the string counts, not for what, for which port and on which thread it is released.
  std::thread([&] { releases(FG_WIDTH, own, 3, VELMORA_OK); }).join();
  releases(FG_HAP_FILE, own, 1, -2070);

  char* const runtimes = text(applet, FG_NR_OF_DMAS, 2);
  releases(FG_HAP_FILE, runtimes, 2, -2070);
  EXPECT_EQ(logged([&] { releases(FG_NR_OF_PROCESSES, runtimes, 4, -2070); }),
            Lines{"Velmora|trying to free SDK parameter '3070' on unknown process 4!"});
  releases(FG_NR_OF_PROCESSES, nullptr, 2, -2082);
  EXPECT_EQ(board::outstanding().strings, 1);
  releases(FG_NR_OF_DMAS, runtimes, 2, VELMORA_OK);
  releases(FG_NR_OF_DMAS, runtimes, 2, kNoSuchString);
  // Direct access does not look at the channel.
  char* const direct = text(applet, 2000000 + FG_TIMEOUT);
  releases(2000000 + FG_TIMEOUT, direct, 9, VELMORA_OK);
  releases(2000000 + FG_TIMEOUT, direct, 9, kNoSuchString);
  EXPECT_EQ(board::outstanding().strings, 0);
}

TEST(Threads, TakeTurns) {
  Applet applet;
  std::atomic<int> inside{0}, overlaps{0};
  board::stopJournal();
  board::observe([&](const board::Access&) {
    if (inside++ != 0) ++overlaps;
    std::this_thread::yield();
    --inside;
  });
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < 2 * kPorts; ++t)
    threads.emplace_back([&applet, t] {
      for (int round = 0; round < 100; ++round) {
        EXPECT_EQ(applet.set(FG_WIDTH, 512 + 4 * t, t % kPorts), VELMORA_OK);
        const std::uint32_t width = applet.word(FG_WIDTH, t % kPorts).value;
        EXPECT_TRUE(width < 544 && width / 4 % kPorts == t % kPorts) << width;
        EXPECT_EQ(release(applet, FG_HAP_FILE, text(applet, FG_HAP_FILE)), VELMORA_OK);
      }
    });
  for (std::thread& thread : threads) thread.join();
  board::observe({});
  EXPECT_EQ(overlaps, 0);
}

TEST(Threads, MayNotEnterACallWithinACall) {
  Applet applet;
  char* const string = text(applet, FG_HAP_FILE);
  Lines errors;
  board::observe([&](const board::Access& access) {
    // Lookups and string releases do not wait for calls.
    EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "FG_WIDTH"), FG_WIDTH);
    EXPECT_EQ(release(applet, FG_HAP_FILE, string), errors.empty() ? VELMORA_OK : -2070);
    try {
      ADD_FAILURE() << access.name << " returned " << applet.set(FG_HEIGHT, 640, 3);
    } catch (const std::logic_error& error) {
      errors.push_back(error.what());
    }
  });
  EXPECT_EQ(applet.set(FG_WIDTH, 1000, 1), VELMORA_OK);
  EXPECT_EQ(applet.word(FG_FILLLEVEL, 1), (Applet::Word{0, 0}));
  board::observe({});
  EXPECT_EQ(errors, Lines(2, "GenericLock object got lock but is already marked as locked"));
  EXPECT_EQ(applet.word(FG_HEIGHT, 3).value, 1024u);
}

}  // namespace
