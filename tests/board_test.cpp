// The virtual board: codes and picture rates.
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/board_session.h"
#include "tests/test_clock.h"
#include "velmora/parameters.h"

namespace {

using namespace std::chrono_literals;

constexpr const char* kLength = "Device1_Process0_Buffer_XLength";

class Board : public TestClock, public testing::Test {};

TEST_F(Board, AnswersWithItsCodes) {
  const BoardSession session;
  auto* fg = session.fg;
  const int length = session.id(kLength);
  const auto set = [&](int id, const void* value, unsigned dma, int type = 2) {
    return Fg_setParameterWithType(fg, id, value, dma, type);
  };
  const auto start = [&](unsigned dma, int n) { return Fg_AcquireEx(fg, dma, n, 0, nullptr); };
  const auto stop = [&](unsigned dma = 0) { return Fg_stopAcquireEx(fg, dma, 0, 0); };
  const auto number = [&] { return Fg_getLastPicNumberEx(fg, 0, 0); };
  const auto dmaStatus = [&](int value = -1) {
    return Fg_getParameter(fg, FG_DMASTATUS, &value, 0) == 0 ? value : -1;
  };
  const auto wait = [&](int n, int s) { return Fg_getLastPicNumberBlockingEx(fg, n, 0, s, 0); };
  const auto clock = [&] { return std::chrono::round<std::chrono::milliseconds>(time).count(); };
  const auto going = [&] { return Fg_getStatusEx(fg, VELMORA_STATUS_ACQUIRING, 0, 0, nullptr); };
  const auto error = [&] { return Fg_getLastErrorNumber(fg); };
  uint64_t bits = 0;
  const auto nothing = [](auto... answers) { return (!answers && ...); };
  board::startJournal();
  const struct {
    std::vector<int64_t> results, expected;
  } rows[] = {
      {{set(length, &length, 3), set(5, &length, 0), set(length, &length, 4)}, {0, -2080, -2081}},
      {{set(length, nullptr, 0), set(length, "", 0, 22)}, {-2082, -2083}},
      {{session.set(kLength, 1ULL << 32)}, {-2085}},
      {{session.set("Device1_Process0_Buffer_FillLevel", 1)}, {-2084}},
      {{error(), KorvRegisterWrite(session.device, 33, 0), stop(), wait(1, 1)},
       {-2084, -2090, -2111, -2111}},
      {{start(4, 9), start(0, 0), start(0, 9), error(), start(0, 9)},
       {-2081, -2087, 0, -2087, -2110}},
      // Six pictures at 30 Hz take a fifth of a second, nine are all; a tenth never comes.
      {{wait(6, 5), clock(), going(), wait(9, 5), going()}, {6, 1200, 1, 9, 0}},
      {{clock(), wait(10, 2), clock()}, {1300, -2120, 3300}},
      {{going(), dmaStatus(), stop(), number(), stop(), number()}, {0, 0, 0, 9, -2111, 9}},
      // Once more, from the first picture on; stopped before the last.
      {{start(0, 9), number(), dmaStatus(), wait(2, 5), going()}, {0, 0, 1, 2, 1}},
      {{stop(), stop(), dmaStatus(), going(), number(), stop(4)}, {0, -2111, 0, 0, 2, -2081}},
      {{wait(2, 1), wait(3, 1), start(0, -1), going(), wait(1, -1)}, {2, -2111, 0, 1, -2087}},
      {{set(FG_APC_STOP_TIMEOUT, &length, 0), set(FG_DMASTATUS, &length, 0)}, {0, -2084}},
      // The second access that is no call, the first one that writes.
      {{(board::failAt(2, -77), session.set(kLength, 8)), session.set(kLength, 8)}, {0, -77}},
      {{(board::failAtWrite(1, -77), KorvRegisterRead(session.device, 1, &bits)),
        Fg_getParameter(fg, length, &bits, 0), session.set("CamGenRoll0", 8)},
       {0, 0, -77}},
      // Without a name, a value, a device or a design.
      {{Fg_getParameterIdByName(fg, nullptr), error(), Fg_getParameter(fg, length, nullptr, 0),
        error(), Fg_freeParameterStringWithType(fg, 7, nullptr, 0, 22),
        Fg_freeParameterStringWithType(fg, 7, &bits, 0, 2), error(), Fg_getAppletId(fg, nullptr),
        error(), KorvRegisterRead(session.device, 1, nullptr),
        KorvRegisterRead(session.device, 33, &bits)},
       {-2080, -2080, -2082, -2082, -2082, -2083, -2083, 3652, -2083, -2082, -2090}},
      {{nothing(HapLoadDesignFromBuffer(nullptr, 4096, 1), HapLoadHapFileWithType(nullptr, 3652, 1),
                HapGetRegisterName(nullptr, 1), HapGetRegisterName(session.design, 33),
                HapGetRegisterByName(nullptr, kLength),
                HapGetRegisterByName(session.design, nullptr), HapGetNrOfRegister(nullptr),
                HapGetRegisterDirection(nullptr, 1), HapGetRegisterBitRange(nullptr, 1),
                HapGetEvent(nullptr, 0), Fg_getParameterInfo(nullptr, 0),
                Fg_getParameterInfo(fg, 1), Fg_InitHandle("", nullptr, session.design),
                Fg_InitHandle("", session.device, nullptr)),
        Fg_getLastErrorNumber(nullptr)},
       {1, -2051}},
      // Without a handle.
      {{(fg = nullptr, set(7, "", 0, 22)), Fg_setParameter(fg, 7, &bits, 0),
        Fg_getParameter(fg, 7, &bits, 0), Fg_getParameterWithType(fg, 7, &bits, 0, 22),
        Fg_getParameterIdByName(fg, kLength), Fg_getAppletId(fg, nullptr), start(0, 1), stop(),
        number(), wait(1, 1), going(), Fg_FreeGrabber(fg), KorvRegisterWrite(nullptr, 7, 0),
        KorvRegisterRead(nullptr, 7, &bits)},
       std::vector<int64_t>(14, -2050)},
  };
  board::stopJournal();
  for (const auto& row : rows) EXPECT_EQ(row.results, row.expected) << &row - rows;
}

TEST_F(Board, GoesByTheSteadyClockWithoutAnother) {
  board::setClock({}, {});
  const BoardSession session;
  Fg_AcquireEx(session.fg, 0, -1, 0, nullptr);
  std::this_thread::sleep_for(100ms);
  ASSERT_GE(Fg_getLastPicNumberEx(session.fg, 0, 0), 2);  // Of 30 a second.
  EXPECT_GE(Fg_getLastPicNumberBlockingEx(session.fg, 9, 0, 60, 0), 9);
  EXPECT_EQ(time, 1s);
}

}  // namespace
