// The virtual board: access rules, acquisition, journal and faults.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <stdlib.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "board/virtual_board.h"
#include "board_session.h"
#include "platform/logging_dispatcher.h"
#include "velmora/parameters.h"

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr const char* kTrigger = "Device1_Process4_Trigger_TriggerCam";

std::string trigger(int camera, const std::string& leaf) {
  return kTrigger + std::to_string(camera) + "_" + leaf;
}

/// Time that goes on only when it is told to, or while somebody sleeps.
class ManualClock {
 public:
  ManualClock() {
    board::setClock([this] { return time_; }, [this](auto pause) { time_ += pause; });
  }
  ~ManualClock() { board::setClock({}, {}); }
  void advance(std::chrono::nanoseconds time) { time_ += time; }
  std::chrono::nanoseconds time() const { return time_; }

 private:
  std::chrono::nanoseconds time_{1s};
};

/// Ends what a test set up for the whole process.
struct WatchGuard {
  ~WatchGuard() {
    board::clearFaults();
    board::observe({});
    board::stopJournal();
  }
};

TEST(Board, RefusesWrongAccesses) {
  const BoardSession session;
  const int length = session.id("Device1_Process0_Buffer_XLength");
  const int level = session.id("Device1_Process0_Buffer_FillLevel");
  int32_t value = 8;
  const struct {
    int id;
    const void* value;
    unsigned dma;
    int type;
    int expected;
  } cases[] = {{length, &value, 3, 2, 0},          {5, &value, 0, 2, -2080},
               {-2080, &value, 0, 2, -2080},       {length + 1000, &value, 0, 2, -2080},
               {length, &value, 4, 2, -2081},      {length, nullptr, 0, 2, -2082},
               {length, &value, 0, 22, -2083},     {length, &value, 0, 99, -2083},
               {level, &value, 0, 2, -2084},       {FG_NR_OF_DMAS, &value, 0, 2, -2084},
               {FG_TIMEOUT, &value, 1, 2, 0},      {FG_TIMEOUT, &value, ~0U, 2, -2081},
               {FG_APPLET_ID, &value, 0, 2, -2080}};
  for (const auto& row : cases) {
    SCOPED_TRACE(testing::Message() << row.id << " dma " << row.dma << " type " << row.type);
    EXPECT_EQ(Fg_setParameterWithType(session.fg, row.id, row.value, row.dma, row.type),
              row.expected);
    if (row.expected != 0) {
      EXPECT_EQ(Fg_getLastErrorNumber(session.fg), row.expected);
    }
  }
  EXPECT_EQ(Fg_setParameter(nullptr, length, &value, 0), -2050);
  EXPECT_EQ(KorvRegisterWrite(nullptr, 1, 0), -2050);
  EXPECT_EQ(KorvRegisterWrite(session.device, 33, 0), -2090);
  EXPECT_EQ(KorvRegisterRead(session.device, 1, nullptr), -2082);
  EXPECT_EQ(Fg_FreeGrabber(nullptr), -2050);
  EXPECT_THROW(board::value(session.device, "Nothing", 0), std::out_of_range);
  EXPECT_STREQ(board::errorText(-2080), "no such design or runtime parameter");
  EXPECT_STREQ(board::errorText(-1), "");
}

TEST(Board, KeepsChannelValuesApartAndSharesTheTriggerBlock) {
  const BoardSession session;
  const std::string period = trigger(1, "Generators_Generator_MinimumPeriod_Number");
  for (unsigned dma = 0; dma < 4; ++dma) {
    session.set("Device1_Process2_Buffer_XLength", 100 + static_cast<int>(dma), dma);
    session.set(period, 200 + static_cast<int>(dma), dma);
  }
  for (unsigned dma = 0; dma < 4; ++dma) {
    EXPECT_EQ(board::value(session.device, "Device1_Process2_Buffer_XLength", dma), 100 + dma);
    EXPECT_EQ(board::value(session.device, period, dma), 203);
  }
  EXPECT_EQ(board::value(session.device, "Device1_Process1_Buffer_XLength", 0), 0);
  const double gain = 3.9990234375;
  EXPECT_EQ(Fg_setParameterWithType(session.fg, session.id("Device1_Process0_White_RedCoefficient"),
                                    &gain, 0, 5),
            0);
  EXPECT_EQ(board::value(session.device, "Device1_Process0_White_RedCoefficient", 0), gain);
}

TEST(Board, OpensOnlyWhatFits) {
  EXPECT_EQ(Fg_InitHandle("Velmora.hap", nullptr, nullptr), nullptr);
  EXPECT_EQ(Fg_getLastErrorNumber(nullptr), -2051);
  {
    const BoardSession session;
    session.set("Device1_Process0_Buffer_XLength", 640);
    // A second handle on the same design sees the same values, also past the first one's design.
    auto* design = HapLoadDesignFromBuffer(velmora_design_image, velmora::kDesignImageSize, 1);
    auto* second = Fg_InitHandle("Velmora.hap", session.device, design);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(board::outstanding().handles, 2);
    EXPECT_EQ(board::outstanding().designs, 2);
    HapUnloadHapFile(design);
    int32_t value = 0;
    const int id = Fg_getParameterIdByName(second, "Device1_Process0_Buffer_XLength");
    EXPECT_EQ(Fg_getParameter(second, id, &value, 0), 0);
    EXPECT_EQ(value, 640);
    EXPECT_EQ(Fg_FreeGrabber(second), 0);
  }
  EXPECT_TRUE(nothingOutstanding());
}

TEST(Board, AnswersTheRuntimesOwnParameters) {
  const BoardSession session;
  session.set("Device1_Process2_Buffer_XLength", 1024, 2);
  session.set("Device1_Process2_Buffer_YLength", 1000, 2);
  const auto get = [&](int id) {
    uint64_t value = 0;
    EXPECT_EQ(Fg_getParameterWithType(session.fg, id, &value, 2, 4), 0) << id;
    return value;
  };
  EXPECT_EQ(get(FG_TRANSFER_LEN), 1024U * 1000U * 3U);
  EXPECT_EQ(get(FG_NR_OF_DMAS), 4U);
  EXPECT_EQ(get(FG_NR_OF_CAMS), 4U);
  EXPECT_EQ(get(FG_NR_OF_PROCESSES), 4U);
  EXPECT_EQ(get(FG_DMA_PORT), 2U);
  EXPECT_EQ(get(FG_CAM_PORT), 2U);
  EXPECT_EQ(get(FG_DMASTATUS), 0U);
  EXPECT_EQ(get(FG_CAMSTATUS_EXTENDED), 7U);
  session.set(trigger(2, "Generators_ClearQueuePulse_Mode"), 1);
  session.set(trigger(2, "PulseFormGenerators_Enable_Select"), 1);
  EXPECT_EQ(get(FG_CAMSTATUS_EXTENDED), 1U);
  board::setValue(session.device, "FG_TRANSFER_LEN", 2, 5e9);
  EXPECT_EQ(get(FG_TRANSFER_LEN), 5000000000U);
  EXPECT_EQ(session.set("Device1_Process2_Buffer_XLength", 8, 2), 0);
  EXPECT_EQ(get(FG_TRANSFER_LEN), 5000000000U);
}

struct RateCase {
  const char* what;
  std::vector<std::pair<std::string, uint64_t>> writes;
  std::vector<int64_t> pictures;  ///< On the ports 0 to 3 after ten seconds.
};

std::vector<RateCase> rateCases() {
  // 1000 units a line, 1000 lines, 8 of 25 cycles: 40 pictures a second.
  const std::vector<std::pair<std::string, uint64_t>> simulator{
      {"CamGenEnable1", 1},   {"CamGenStart1", 1},  {"CamGenLineWidth1", 1000},
      {"CamGenHeight1", 999}, {"CamGenActive1", 7}, {"CamGenPassive1", 16}};
  const auto with = [](auto writes, std::pair<std::string, uint64_t> last) {
    writes.push_back(std::move(last));
    return writes;
  };
  const std::string enable = "PulseFormGenerators_Enable_Select";
  const std::string period = "Generators_Generator_MinimumPeriod_Number";
  const std::vector<std::pair<std::string, uint64_t>> generator{{trigger(0, period), 991},
                                                                {trigger(0, enable), 1}};
  return {
      {"free running", {}, {300, 300, 300, 300}},
      {"simulator", simulator, {300, 400, 300, 300}},
      {"simulator without passive cycles",
       with(simulator, {"CamGenPassive1", ~0ULL}),
       {300, 1250, 300, 300}},
      {"simulator without lines",
       with(simulator, {"CamGenHeight1", 4294967295}),
       {300, 0, 300, 300}},
      {"simulator halted", with(simulator, {"CamGenStart1", 0}), {300, 0, 300, 300}},
      {"simulator off", with(simulator, {"CamGenEnable1", 0}), {300, 300, 300, 300}},
      {"generator", generator, {625000, 300, 300, 300}},
      {"generator held",
       with(generator, {trigger(0, "Generators_ClearQueuePulse_Mode"), 1}),
       {0, 300, 300, 300}},
      {"external",
       with(generator, {trigger(0, "TriggerMode_SelectExternal_Select"), 1}),
       {0, 300, 300, 300}},
      {"queued",
       with(generator, {trigger(0, "Generators_EnableQueue_Select"), 1}),
       {0, 300, 300, 300}},
      {"slave",
       with(with(generator, {trigger(3, "Synchronize_SlaveMode_Select"), 1}),
            {trigger(3, enable), 1}),
       {625000, 300, 300, 625000}},
  };
}

TEST(Board, CountsPicturesAtTheRateOfTheDesign) {
  for (const auto& [what, writes, pictures] : rateCases()) {
    SCOPED_TRACE(what);
    ManualClock clock;
    const BoardSession session;
    for (const auto& [name, value] : writes) {
      const bool isRegister = name.starts_with("CamGen");
      EXPECT_EQ(
          isRegister ? session.write(name, value) : session.set(name, static_cast<int32_t>(value)),
          0)
          << name;
    }
    for (unsigned dma = 0; dma < 4; ++dma)
      EXPECT_EQ(Fg_AcquireEx(session.fg, dma, -1, 0, nullptr), 0);
    clock.advance(10s);
    for (unsigned dma = 0; dma < 4; ++dma) {
      EXPECT_EQ(Fg_getLastPicNumberEx(session.fg, dma, 0), pictures[dma]) << dma;
    }
  }
}

TEST(Board, CarriesPartsOfAPictureOverRateChanges) {
  ManualClock clock;
  const BoardSession session;
  const std::string period = trigger(0, "Generators_Generator_MinimumPeriod_Number");
  const std::string pulses = trigger(0, "OutputStatistics_ReadPulses_Status");
  session.set(period, 62500000 - 9);  // 1 Hz
  session.set(trigger(0, "PulseFormGenerators_Enable_Select"), 1);
  Fg_AcquireEx(session.fg, 0, -1, 0, nullptr);
  const struct {
    std::chrono::milliseconds time;
    int32_t ticks;
    int64_t pictures;
  } steps[] = {{500ms, 31250000, 0}, {250ms, 62500000, 1}, {750ms, 31250000, 1}, {1125ms, 1, 4}};
  for (const auto& [time, ticks, pictures] : steps) {
    clock.advance(time);
    EXPECT_EQ(Fg_getLastPicNumberEx(session.fg, 0, 0), pictures);
    EXPECT_EQ(board::value(session.device, pulses, 0), static_cast<double>(pictures));
    session.set(period, ticks - 9);
  }
  session.set(trigger(0, "OutputStatistics_ClearPulses_Mode"), 2);
  EXPECT_EQ(board::value(session.device, pulses, 0), 0);
}

TEST(Board, SoftwarePulsesMakePictures) {
  ManualClock clock;
  const BoardSession session;
  const std::string pulse = trigger(0, "TriggerMode_SoftwareTrigger_Mode");
  session.set(trigger(0, "Generators_EnableQueue_Select"), 1);
  session.set(trigger(0, "PulseFormGenerators_Enable_Select"), 1);
  session.set(trigger(1, "Synchronize_SlaveMode_Select"), 1);
  session.set(trigger(1, "PulseFormGenerators_Enable_Select"), 1);
  Fg_AcquireEx(session.fg, 0, -1, 0, nullptr);
  Fg_AcquireEx(session.fg, 1, -1, 0, nullptr);
  for (int i = 0; i < 3; ++i) session.set(pulse, 2);
  session.set(trigger(0, "Generators_ClearQueuePulse_Mode"), 1);
  session.set(pulse, 2);
  clock.advance(10s);
  EXPECT_EQ(Fg_getLastPicNumberEx(session.fg, 0, 0), 3);
  EXPECT_EQ(Fg_getLastPicNumberEx(session.fg, 1, 0), 3);
}

TEST(Board, CommandsClearWhatTheyName) {
  const BoardSession session;
  const std::string status = "Device1_Process4_Trigger_Monitoring_ReadQueueStatus_Status";
  board::setValue(session.device, status, 0, 4095);
  session.set("Device1_Process4_Trigger_Monitoring_ClearOverrideCam1_Mode", 2, 1);
  session.set("Device1_Process4_Trigger_Monitoring_ClearMissingFrame_Cam2_Mode", 2, 2);
  EXPECT_EQ(board::value(session.device, status, 0), 4095 - (1 << 3) - (1 << 8));
  for (const char* name : {"ReadPulses", "ReadMin", "ReadMax"}) {
    const auto counter = trigger(3, std::string("InputStatistics_") + name + "_Status");
    board::setValue(session.device, counter, 0, 77);
    session.set(trigger(3, "InputStatistics_ClearPulses_Mode"), 2);
    session.set(trigger(3, "InputStatistics_ClearMinMax_Value"), 1);
    EXPECT_EQ(board::value(session.device, counter, 0), 0) << name;
  }
  EXPECT_EQ(
      board::value(session.device, trigger(0, "Generators_Generator_MaximumReached_Status"), 0), 1);
}

TEST(Board, WaitsForPicturesAndStops) {
  ManualClock clock;
  const BoardSession session;
  auto* fg = session.fg;
  EXPECT_EQ(Fg_getLastPicNumberEx(fg, 0, 0), -2111);
  EXPECT_EQ(Fg_getLastPicNumberBlockingEx(fg, 1, 0, 1, 0), -2111);
  EXPECT_EQ(Fg_stopAcquireEx(fg, 0, 0, 0), -2111);
  EXPECT_EQ(Fg_AcquireEx(fg, 4, 10, 0, nullptr), -2081);
  EXPECT_EQ(Fg_AcquireEx(fg, 0, 0, 0, nullptr), -2087);
  EXPECT_EQ(Fg_AcquireEx(fg, 0, 10, 0, nullptr), 0);
  EXPECT_EQ(Fg_AcquireEx(fg, 0, 10, 0, nullptr), -2110);
  EXPECT_EQ(Fg_getLastErrorNumber(fg), -2110);
  EXPECT_EQ(Fg_getLastPicNumberEx(fg, 0, 0), 0);

  const auto start = clock.time();
  EXPECT_EQ(Fg_getLastPicNumberBlockingEx(fg, 6, 0, 5, 0), 6);
  EXPECT_GE(clock.time() - start, 199ms);  // Six pictures at 30 Hz.
  EXPECT_EQ(Fg_getStatusEx(fg, board::kAcquiring, 0, 0, nullptr), 1);
  EXPECT_EQ(Fg_getLastPicNumberBlockingEx(fg, 11, 0, 2, 0), -2120);
  EXPECT_GE(clock.time() - start, 2s);
  EXPECT_EQ(Fg_getLastPicNumberBlockingEx(fg, 3, 0, 0, 0), 10);
  EXPECT_EQ(Fg_getStatusEx(fg, board::kGrabbedPictures, 0, 0, nullptr), 10);
  EXPECT_EQ(Fg_getStatusEx(fg, board::kLostPictures, 0, 0, nullptr), 0);
  EXPECT_EQ(Fg_getStatusEx(fg, board::kAcquiring, 0, 0, nullptr), 0);
  EXPECT_EQ(Fg_getStatusEx(fg, 99, 0, 0, nullptr), -2087);
  EXPECT_EQ(Fg_getStatusEx(fg, board::kAcquiring, 0, -1, nullptr), -2081);

  EXPECT_EQ(Fg_stopAcquireEx(fg, 0, 0, 0), 0);
  clock.advance(10s);
  EXPECT_EQ(Fg_getLastPicNumberEx(fg, 0, 0), 10);
  EXPECT_EQ(Fg_getLastPicNumberBlockingEx(fg, 11, 0, 1, 0), -2111);
  EXPECT_EQ(Fg_AcquireEx(fg, 0, -1, 0, nullptr), 0);
  EXPECT_EQ(Fg_getLastPicNumberEx(fg, 0, 0), 0);
}

TEST(Board, JournalTellsEveryAccessInOrder) {
  ManualClock clock;
  const BoardSession session;
  const WatchGuard guard;
  int32_t value = 1000;
  uint64_t wide = 0;
  const double gain = 1.5;
  char* text = nullptr;
  auto* fg = session.fg;
  const int length = session.id("Device1_Process1_Buffer_XLength");
  const int red = session.id("Device1_Process1_White_RedCoefficient");
  board::startJournal();
  Fg_setParameterWithType(fg, length, &value, 1, 2);
  Fg_getParameterWithType(fg, length, &value, 1, 2);
  Fg_setParameterWithType(fg, red, &gain, 1, 5);
  Fg_setParameterWithType(fg, red, &gain, 1, 2);
  Fg_setParameterWithType(fg, 5, &value, 0, 2);
  Fg_getParameterWithType(fg, FG_NR_OF_DMAS, &text, 0, 22);
  Fg_freeParameterStringWithType(fg, FG_NR_OF_DMAS, text, 0, 22);
  KorvRegisterWrite(session.device, 1, ~0ULL);
  KorvRegisterRead(session.device, 1, &wide);
  KorvRegisterRead(session.device, 77, &wide);
  Fg_getParameterIdByName(fg, "Nothing");
  HapGetRegisterByName(session.design, "CamGenEnable3");
  HapGetEvent(session.design, 44);
  Fg_AcquireEx(fg, 0, 10, 0, nullptr);
  Fg_getLastErrorNumber(fg);
  std::vector<std::string> lines;
  for (const auto& access : board::takeJournal()) lines.push_back(board::describe(access));
  EXPECT_THAT(lines,
              ElementsAre("set Device1_Process1_Buffer_XLength[1] = 1000",
                          "get Device1_Process1_Buffer_XLength[1] -> 1000",
                          "set Device1_Process1_White_RedCoefficient[1] = 1.5",
                          "set Device1_Process1_White_RedCoefficient[1] = ? failed: -2083",
                          "set #5[0] = 1000 failed: -2080", "get FG_NR_OF_DMAS[0] -> 4",
                          "call Fg_freeParameterStringWithType(id 3050, type 22)",
                          "write CamGenEnable0 = 18446744073709551615",
                          "read CamGenEnable0 -> 18446744073709551615", "read #77 failed: -2090",
                          "call Fg_getParameterIdByName(Nothing) failed: -2080",
                          "call HapGetRegisterByName(CamGenEnable3) -> 4",
                          "call HapGetEvent(44) -> null", "call Fg_AcquireEx(dma 0, 10 pictures)",
                          "call Fg_getLastErrorNumber() -> -2080"));
  EXPECT_TRUE(board::takeJournal().empty());
  board::stopJournal();
  session.set("Device1_Process1_Buffer_XLength", 8, 1);
  EXPECT_TRUE(board::takeJournal().empty());
}

TEST(Board, ObserverSeesAccessesAndMayUseTheBoard) {
  const BoardSession session;
  const WatchGuard guard;
  std::vector<double> seen;
  board::observe([&](const board::Access& access) {
    if (access.kind != board::AccessKind::kSet) return;
    seen.push_back(board::value(session.device, access.name, 0));
  });
  session.set("Device1_Process0_Buffer_XLength", 12);
  session.set("Device1_Process0_Buffer_XLength", 16);
  board::observe({});
  session.set("Device1_Process0_Buffer_XLength", 20);
  EXPECT_THAT(seen, ElementsAre(12, 16));
}

TEST(Board, FaultsStandInTheWay) {
  const BoardSession session;
  const WatchGuard guard;
  const std::string length = "Device1_Process0_Buffer_XLength";
  int32_t value = 0;
  const int id = session.id(length);
  const auto get = [&] { return Fg_getParameter(session.fg, id, &value, 0); };

  board::failNamed(length, -77, 2);
  EXPECT_EQ(session.set(length, 8), -77);
  EXPECT_EQ(Fg_getLastErrorNumber(session.fg), -77);
  EXPECT_EQ(get(), -77);
  EXPECT_EQ(session.set(length, 16), 0);
  EXPECT_EQ(board::value(session.device, length, 0), 16);

  board::failAt(2, -78);
  board::failAtWrite(2, -79);
  EXPECT_EQ(get(), 0);                      // first access
  EXPECT_EQ(session.set(length, 24), -78);  // second access, first write
  EXPECT_EQ(get(), 0);
  EXPECT_EQ(session.write("CamGenWidth0", 9), -79);  // second write
  EXPECT_EQ(session.write("CamGenWidth0", 10), 0);
  EXPECT_EQ(board::value(session.device, "CamGenWidth0", 0), 10);
  EXPECT_EQ(board::value(session.device, length, 0), 16);

  board::failNamed("Fg_getParameterIdByName", -80);
  board::failNamed("HapLoadDesignFromBuffer", -81);
  board::failNamed("Fg_InitHandle", -82);
  EXPECT_EQ(session.id(length), -80);
  EXPECT_EQ(session.id("Device1_Process0_Buffer_YLength"), -80);
  EXPECT_EQ(HapLoadDesignFromBuffer(velmora_design_image, velmora::kDesignImageSize, 1), nullptr);
  EXPECT_EQ(Fg_InitHandle("Velmora.hap", session.device, session.design), nullptr);
  EXPECT_EQ(Fg_getLastErrorNumber(nullptr), -82);
  board::clearFaults();
  EXPECT_EQ(session.id(length), id);
}

TEST(Dispatcher, WritesToStandardErrorFromTheLevelOfTheEnvironment) {
  void* library = dlopen(DISPATCHER_LIBRARY, RTLD_NOW);
  ASSERT_NE(library, nullptr) << dlerror();
  const auto* descriptor =
      static_cast<LoggingDispatcherDescriptor*>(dlsym(library, "logging_dispatcher_descriptor"));
  ASSERT_NE(descriptor, nullptr);
  GetLogger getLogger = nullptr;
  Log log = nullptr;
  descriptor->registerLogging(nullptr, nullptr, nullptr, &getLogger, &log);

  uint64_t handle = 0;
  int32_t level = -1;
  const struct {
    const char* text;
    int32_t expected;
  } cases[] = {{nullptr, 7}, {"4", 4}, {"0", 0}, {"8", 7}, {"-1", 7}, {"4x", 7}, {"", 7}};
  for (const auto& [text, expected] : cases) {
    if (text != nullptr) setenv("KORV_LOG_LEVEL", text, 1);
    getLogger("board.test", &handle, &level);
    EXPECT_EQ(level, expected) << (text != nullptr ? text : "unset");
  }
  unsetenv("KORV_LOG_LEVEL");
  uint64_t other = 0;
  uint64_t again = 0;
  getLogger("board.other", &other, &level);
  getLogger("board.test", &again, &level);
  EXPECT_NE(other, handle);
  EXPECT_EQ(again, handle);

  testing::internal::CaptureStderr();
  log(handle, 4, "100% {} of it", 0, 0);
  log(other, 6, "trouble", 0, 0);
  log(12345, 6, "nobody's", 0, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "board.test info: 100% {} of it\nboard.other error: trouble\n");
  descriptor->unregisterLogging(nullptr);
}

TEST(Board, MayBeUsedByManyThreads) {
  const BoardSession shared;
  std::vector<std::thread> threads;
  for (unsigned dma = 0; dma < 4; ++dma) {
    threads.emplace_back([&shared, dma] {
      const BoardSession own;
      for (int i = 0; i < 200; ++i) {
        own.set("Device1_Process0_Buffer_XLength", i);
        shared.set("Device1_Process0_Buffer_XLength", i, dma);
        shared.write("CamGenActive0", static_cast<uint64_t>(i));
        Fg_getLastPicNumberEx(shared.fg, dma, 0);
      }
      EXPECT_EQ(board::value(own.device, "Device1_Process0_Buffer_XLength", 0), 199);
    });
  }
  board::startJournal();
  board::stopJournal();
  for (auto& thread : threads) thread.join();
  for (unsigned dma = 0; dma < 4; ++dma) {
    EXPECT_EQ(board::value(shared.device, "Device1_Process0_Buffer_XLength", dma), 199);
  }
}

}  // namespace
