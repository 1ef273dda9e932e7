/// Lookups, sets, gets and string releases through the exports: what is found, what is refused with
/// which code and which line in the log, and how calls of several threads and calls within calls
/// go.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <thread>

#include "tests/dispatch_support.h"

namespace {

using namespace fixture;

/// The level of refusals.
const EnvironmentVariable kThreshold("KORV_LOG_LEVEL", "4");

using Word = Applet::Reading<std::uint32_t>;

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
  /// Makes the call with another code recorded before.
  const auto recorded = [&](int code, const auto& call) {
    Fg_getParameterId(fg, code == VELMORA_OK ? -1 : 0);
    const auto result = call();
    EXPECT_EQ(applet.lastError(), code);
    return result;
  };
  ASSERT_EQ(parameters().size(), 85u);
  for (int i = 0; i < 85; ++i) {
    const Parameter& p = parameters()[static_cast<std::size_t>(i)];
    EXPECT_EQ(recorded(0, [&] { return Fg_getParameterName(fg, i); }), p.name);
    EXPECT_EQ(recorded(0, [&] { return Fg_getParameterId(fg, i); }), p.id);
    EXPECT_EQ(recorded(0, [&] { return Fg_getParameterIdByName(fg, p.name.c_str()); }), p.id);
  }
  for (const int i : {-1, 85, INT_MAX, INT_MIN}) {
    EXPECT_EQ(recorded(-2070, [&] { return Fg_getParameterName(fg, i); }), nullptr);
    EXPECT_EQ(recorded(-2070, [&] { return Fg_getParameterId(fg, i); }), -2070);
  }
  for (const char* name : std::initializer_list<const char*>{nullptr, "", "fg_width", "FG_WIDTH ",
                                                             "FG_PARAM_DESCR", "DRA_CamGenEnable0"})
    EXPECT_EQ(recorded(-2070, [&] { return Fg_getParameterIdByName(fg, name); }), -2070);
  Fg_getParameterId(fg, -1);
  EXPECT_EQ(Fg_getNrOfParameter(fg), 85);
  EXPECT_EQ(applet.lastError(), -2070) << "counting records nothing";
}

TEST(Refusals, NameReadOnlyParameters) {
  Applet applet;
  takeAccesses();
  auto rows = parameters();
  rows.push_back({"FG_PARAM_DESCR", FG_PARAM_DESCR, "text", "ro", ""});
  EXPECT_EQ(std::erase_if(rows, [](const Parameter& p) { return p.writable(); }), 53u);
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
  Fg_Struct* const fg = applet.fg();
  takeAccesses();
  /// The line is made of the call, the id and the DMA index.
  const auto refuses = [&](int id, unsigned dma, const std::string& line) {
    SCOPED_TRACE("id " + std::to_string(id) + " on " + std::to_string(dma));
    const auto expected = [&](const char* call) {
      return Lines{replaced(replaced(replaced(line, "{call}", call), "{id}", std::to_string(id)),
                            "{dma}", std::to_string(dma))};
    };
    EXPECT_EQ(logged([&] { EXPECT_EQ(applet.set(id, 8u, dma), -2070); }), expected("set"));
    EXPECT_EQ(applet.lastError(), -2070);
    Fg_getParameterId(fg, 0);
    EXPECT_EQ(logged([&] {
                EXPECT_EQ(applet.word(id, dma), (Word{-2070, 0xDEADBEEF}));
              }),
              expected("get"));
    EXPECT_EQ(applet.lastError(), -2070);
  };
  for (const int id : {0, -1, INT_MIN, 99, 101, 24115, 1000000, 1000001, 2000000})
    refuses(id, 2, "Velmora|trying to {call} unknown SDK parameter '{id}' on process {dma}!");
  for (const unsigned dma : {4u, 5u, 0x80000000u, UINT_MAX})
    for (const int id : {int{FG_WIDTH}, int{FG_CAMSTATUS}, int{FG_NR_OF_DMAS}, -1}) {
      refuses(id, dma, "Velmora|trying to {call} SDK parameter '{id}' on unknown process {dma}!");
      Fg_getParameterId(fg, 0);
      const Lines lines = logged([&] { EXPECT_EQ(release(applet, id, &applet, dma), -2070); });
      ASSERT_EQ(lines.size(), 1u);
      EXPECT_TRUE(lines[0].ends_with(" on unknown process " + std::to_string(dma) + "!"));
      EXPECT_EQ(applet.lastError(), -2070);
    }
  EXPECT_EQ(takeAccesses(), Lines{});
  expectInitialSettings(applet);
}

/// Loads the applet's own configuration, saved and edited.
void loadEdited(Applet& applet, const std::string& from, const std::string& to) {
  const TemporaryDirectory directory;
  const std::string file = directory / "edited.mcf";
  ASSERT_EQ(Fg_saveConfig(applet.fg(), file.c_str()), VELMORA_OK);
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  ASSERT_NE(text.str().find(from), std::string::npos);
  std::ofstream(file) << replaced(text.str(), from, to);
  ASSERT_EQ(Fg_loadConfig(applet.fg(), file.c_str()), VELMORA_OK);
}

TEST(Failures, ReturnAndRecordTheirCode) {
  Applet applet;
  Fg_Struct* const fg = applet.fg();
  loadEdited(applet, "FG_GEN_FREQ=40", "FG_GEN_FREQ=200");  // More than any set accepts.
  takeAccesses();
  const std::pair<int, std::function<int()>> refusals[] = {
      {-2070, [&] { return Fg_setParameterWithType(fg, FG_WIDTH, nullptr, 0, 2); }},
      {-2070, [&] { return Fg_getParameterWithType(fg, FG_WIDTH, nullptr, 0, 3); }},
      {-2070, [&] { return Fg_setParameterWithType(fg, FG_WIDTH, nullptr, 4, 2); }},
      {-2070, [&] { return Fg_setParameterWithType(fg, 2000001, nullptr, 0, 2); }},
      {-2070, [&] { return Fg_getParameterWithType(fg, 2000001, nullptr, 0, 2); }},
      {-6000, [&] { return applet.set(FG_WIDTH, 4, 1); }},
      {-6000, [&] { return applet.set(FG_GBE_CAMTYPE, 8, 2); }},
      {-7080, [&] { return applet.set(FG_WIDTH, 1026, 3); }},
      {-2075, [&] { return applet.set(FG_GEN_ACCURACY, 25, 0); }},
  };
  for (const auto& [code, call] : refusals) {
    Fg_getParameterId(fg, 0);
    EXPECT_EQ(call(), code);
    EXPECT_EQ(applet.lastError(), code);
  }
  EXPECT_EQ(takeAccesses(), Lines{});

  // Any code of the board comes through as it is; the setting stays.
  const std::pair<int, const char*> accesses[] = {
      {FG_TIMEOUT, "FG_TIMEOUT"},
      {FG_WIDTH, "Device1_Process2_Buffer_XLength"},
      {FG_GEN_ROLL, "CamGenRoll2"},
      {FG_FILLLEVEL, "Device1_Process2_Buffer_FillLevel"},
      {FG_NR_OF_CAMS, "FG_NR_OF_CAMS"}};
  for (const auto& [id, name] : accesses)
    for (const int code : {kInjected, 7}) {
      const Word before = applet.word(id, 2);
      board::failNamed(name, code, 1);
      const bool read = id == FG_FILLLEVEL || id == FG_NR_OF_CAMS;
      EXPECT_EQ(read ? applet.word(id, 2).code : applet.set(id, 64, 2), code) << name;
      EXPECT_EQ(applet.lastError(), code) << name;
      EXPECT_EQ(applet.word(id, 2), before) << name;
      EXPECT_EQ(applet.lastError(), VELMORA_OK);
    }
}

TEST(Gets, WriteTheWidthOfTheValueWhateverTheType) {
  Applet applet;
  for (const Parameter& p : parameters())
    for (const int type : {2, 1, 5, 0, 99}) {
      if (p.kind == "forwarded" && type != 2) continue;
      SCOPED_TRACE(p.name + " with type " + std::to_string(type));
      const std::size_t size = p.real() ? 8 : p.kind == "text" ? sizeof "Velmora.hap" : 4;
      std::string one(32, '\xA5'), other(32, '\x5A');
      for (std::string* buffer : {&one, &other})
        EXPECT_EQ(Fg_getParameterWithType(applet.fg(), p.id, buffer->data(), 3, type), 0);
      EXPECT_EQ(one.substr(0, size), other.substr(0, size));
      EXPECT_EQ(one.substr(size), std::string(32 - size, '\xA5'));
    }
}

TEST(Gets, ClearWideIntegersBeforehand) {
  Applet applet;
  for (const int type : {0, 1, 2, 3, 4, 5, 22}) {
    SCOPED_TRACE(type);
    const std::uint64_t upper = type == 3 || type == 4 ? 0 : 0xFFFFFFFF00000000;
    const auto get = [&](int id, unsigned dma) {
      std::uint64_t value = ~std::uint64_t{0};
      const int code = Fg_getParameterWithType(applet.fg(), id, &value, dma, type);
      return std::pair(code, value);
    };
    EXPECT_EQ(get(FG_WIDTH, 1), std::pair(0, upper | 1024));
    EXPECT_EQ(get(99, 1), std::pair(-2070, upper | upper >> 32));
    EXPECT_EQ(get(FG_WIDTH, 4), std::pair(-2070, upper | upper >> 32));
  }
}

TEST(Descriptions, AnswerEveryName) {
  Applet applet;
  auto rows = parameters();
  for (const char* name : {"", "-", "FG_PARAM_DESCR", "DRA_CamGenEnable0", "fg_width", "FG_WIDT"})
    rows.push_back({name, 0, "", "", "-"});
  for (unsigned port = 0; port < kPorts; ++port)
    for (const Parameter& p : rows) {
      SCOPED_TRACE(p.name);
      std::string buffer(512, '#');
      buffer.replace(0, p.name.size() + 1, p.name.c_str(), p.name.size() + 1);
      std::string expected = buffer;
      expected.replace(0, p.text.size() + 1, p.text.c_str(), p.text.size() + 1);
      EXPECT_EQ(Fg_getParameterWithType(applet.fg(), FG_PARAM_DESCR, buffer.data(), port, 2), 0);
      EXPECT_EQ(buffer, expected);
      char* const string = text(applet, FG_PARAM_DESCR, port, p.name);
      EXPECT_EQ(string, p.text);
      EXPECT_EQ(release(applet, FG_PARAM_DESCR, string, port), VELMORA_OK);
      EXPECT_EQ(release(applet, FG_PARAM_DESCR, string, port), -2070);
    }
}

TEST(Strings, GoBackWhereTheyCameFrom) {
  Applet applet;
  /// Releases with another code recorded before, which stays when nothing is recorded.
  const auto releases = [&](int id, void* string, unsigned dma, int code, bool recorded) {
    const int before = code == -2070 ? VELMORA_OK : -2070;
    Fg_getParameterId(applet.fg(), before == VELMORA_OK ? 0 : -1);
    EXPECT_EQ(release(applet, id, string, dma), code) << "id " << id;
    EXPECT_EQ(applet.lastError(), recorded ? code : before) << "id " << id;
  };
  char* const own = text(applet, FG_HAP_FILE, 1);
  EXPECT_STREQ(own, "Velmora.hap");
  Fg_getParameterId(applet.fg(), 0);
  for (const int type : {0, 2, 3, 21, 23})
    EXPECT_EQ(Fg_freeParameterStringWithType(applet.fg(), FG_HAP_FILE, own, 1, type), -2078);
  EXPECT_EQ(applet.lastError(), VELMORA_OK);
  std::string foreign = own;
  for (void* string : {static_cast<void*>(foreign.data()), static_cast<void*>(own + 1),
                       static_cast<void*>(nullptr)})
    releases(FG_HAP_FILE, string, 0, -2070, true);
  releases(FG_NR_OF_DMAS, own, 0, kNoSuchString, false);
  // Only the string counts, not for what, for which port and on which thread it is released.
  std::thread([&] { releases(FG_WIDTH, own, 3, VELMORA_OK, false); }).join();
  releases(FG_HAP_FILE, own, 1, -2070, true);

  for (const int id : {FG_APC_STOP_TIMEOUT, FG_NR_OF_DMAS, FG_NR_OF_CAMS, FG_DMA_PORT, FG_CAM_PORT,
                       FG_TRANSFER_LEN}) {
    char* const runtimes = text(applet, id, 2);
    EXPECT_EQ(board::outstanding().strings, 1);
    releases(FG_HAP_FILE, runtimes, 2, -2070, true);
    releases(id, runtimes, 2, VELMORA_OK, false);
    EXPECT_EQ(board::outstanding().strings, 0);
  }
  // Neither of these looks at the channel.
  char* const runtimes = text(applet, 2000000 + FG_TIMEOUT);
  releases(2000000 + FG_TIMEOUT, runtimes, 9, VELMORA_OK, true);
  releases(2000000 + FG_TIMEOUT, runtimes, 9, kNoSuchString, true);
  board::takeJournal();
  releases(FG_NR_OF_PROCESSES, foreign.data(), 77, kNoSuchString, false);
  const auto journal = board::takeJournal();
  ASSERT_EQ(journal.size(), 1u);
  EXPECT_EQ(journal[0].value, "id 3070, type 22");
  EXPECT_EQ(journal[0].dma, 77);

  EXPECT_NE(text(applet, FG_HAP_FILE), nullptr);  // Goes with the applet.
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
      const unsigned port = t % kPorts;
      for (int round = 0; round < 100; ++round) {
        EXPECT_EQ(applet.set(FG_WIDTH, 512 + 4 * t, port), VELMORA_OK);
        const auto [code, width] = applet.word(FG_WIDTH, port);
        EXPECT_EQ(code, VELMORA_OK);
        EXPECT_TRUE(width == 512 + 4 * port || width == 512 + 4 * (port + kPorts)) << width;
        EXPECT_EQ(applet.word(FG_FILLLEVEL, port).code, VELMORA_OK);
        EXPECT_EQ(release(applet, FG_HAP_FILE, text(applet, FG_HAP_FILE, port)), VELMORA_OK);
      }
    });
  for (std::thread& thread : threads) thread.join();
  board::observe({});
  EXPECT_EQ(overlaps, 0);
  for (unsigned port = 0; port < kPorts; ++port)
    EXPECT_EQ(
        applet.word(FG_WIDTH, port).value,
        board::value(applet.device(),
                     replaced("Device1_Process{p}_Buffer_XLength", "{p}", std::to_string(port)),
                     port));
}

TEST(Threads, MayNotEnterACallWithinACall) {
  Applet applet;
  char* const string = text(applet, FG_HAP_FILE);
  Lines errors;
  board::observe([&](const board::Access& access) {
    // Lookups and string releases do not wait for calls.
    EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "FG_WIDTH"), FG_WIDTH);
    EXPECT_EQ(release(applet, FG_HAP_FILE, string), errors.empty() ? VELMORA_OK : -2070);
    for (const bool sets : {true, false}) try {
        ADD_FAILURE() << access.name << " returned "
                      << (sets ? applet.set(FG_HEIGHT, 640, 3) : applet.word(FG_HEIGHT, 3).code);
      } catch (const std::logic_error& error) {
        errors.push_back(error.what());
      }
  });
  EXPECT_EQ(applet.set(FG_WIDTH, 1000, 1), VELMORA_OK);
  EXPECT_EQ(applet.word(FG_FILLLEVEL, 1), (Word{0, 0}));
  board::observe({});
  EXPECT_EQ(errors, Lines(4, "GenericLock object got lock but is already marked as locked"));
  EXPECT_EQ(applet.word(FG_WIDTH, 1).value, 1000u);
  EXPECT_EQ(applet.word(FG_HEIGHT, 3).value, 1024u);

  // An exception that is no code passes through, and the lock is free again.
  board::observe([](const board::Access&) { throw std::runtime_error("observer"); });
  EXPECT_THROW(applet.set(FG_WIDTH, 1008, 1), std::runtime_error);
  EXPECT_THROW(applet.word(FG_FILLLEVEL, 1), std::runtime_error);
  board::observe({});
  std::thread([&] { EXPECT_EQ(applet.set(FG_WIDTH, 1012, 1), VELMORA_OK); }).join();
  EXPECT_EQ(applet.word(FG_WIDTH, 1).value, 1012u);
}

}  // namespace
