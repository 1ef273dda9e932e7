// The control side in C: codes, and what its functions are told.
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/board_session.h"
#include "velmora/virtual_board.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kLength = "Device1_Process0_Buffer_XLength";
constexpr const char* kRoll = "CamGenRoll0";

/// Adds the line of an access to the list that is the context.
void describeTo(void* lines, const VirtualBoardAccess* access) {
  char text[99] = "";
  size_t size = sizeof text;
  EXPECT_EQ(VirtualBoard_describe(access, text, &size), 0);
  EXPECT_EQ(size, std::strlen(text) + 1);
  static_cast<Lines*>(lines)->push_back(text);
}
void release(void* lines) { static_cast<Lines*>(lines)->push_back("released"); }

class Control : public testing::Test {
 protected:
  ~Control() override { VirtualBoard_clearFaults(); }

  int write() { return KorvRegisterWrite(session.device, roll, 3); }
  int read() { return KorvRegisterRead(session.device, 1, &bits); }
  int setLength(unsigned dma) {
    const uint32_t value = 8;
    return Fg_setParameterWithType(session.fg, length, &value, dma, 2);
  }

  const BoardSession session;
  const int length = session.id(kLength);
  const int roll = HapGetRegisterByName(session.design, kRoll);
  uint64_t bits = 0;
};

TEST_F(Control, AnswersWithItsCodes) {
  KTdevice *device = session.device, *fresh = VirtualBoard_createDevice();
  double value = 7;
  const auto set = [](KTdevice* on, const char* name, uint32_t dma = 0, double number = 5.9) {
    return VirtualBoard_setValue(on, name, dma, number);
  };
  const auto get = [&](KTdevice* on, const char* name, uint32_t dma = 0) {
    return VirtualBoard_getValue(on, name, dma, &value);
  };
  const auto got = [&] { return static_cast<int64_t>(value); };
  const auto known = [](int code) -> int64_t { return *VirtualBoard_errorText(code) != '\0'; };
  const auto failAt = VirtualBoard_failAt;
  const auto failNamed = VirtualBoard_failNamed;
  size_t size = 5;
  const auto stored = [&] { return static_cast<int64_t>(size); };
  char text[5] = "";
  const VirtualBoardAccess call{VELMORA_ACCESS_CALL, -1, "F", "", 0, 0};
  const VirtualBoardAccess strange{5, 0, "F", "", 0, 0}, nameless{0, 0, nullptr, "", 0, 0};
  const auto describe = [&](const VirtualBoardAccess* access, char* place = nullptr) {
    return VirtualBoard_describe(access, place, &size);
  };
  const struct {
    std::vector<int64_t> results, expected;
  } rows[] = {
      {{set(nullptr, kLength), set(device, nullptr), set(device, "Nothing"), set(fresh, kLength)},
       {-2050, -2082, -2080, -2080}},
      {{get(nullptr, kLength), get(device, nullptr), get(device, "Nothing"), get(fresh, kLength)},
       {-2050, -2082, -2080, -2080}},
      {{set(device, kLength, 4), get(device, kLength, 4),
        VirtualBoard_getValue(device, kLength, 0, nullptr), got()},
       {-2081, -2081, -2082, 7}},
      {{set(device, kLength, 2), get(device, kLength, 2), got()}, {0, 0, 5}},
      {{set(device, kLength, 1, -1), get(device, kLength, 1), got()}, {0, 0, 0}},
      {{set(device, kRoll, 3), get(device, kRoll), got()}, {0, 0, 5}},
      {{set(device, "FG_TIMEOUT", 1), get(device, "FG_TIMEOUT", 1), got()}, {0, 0, 5}},
      {{known(-2050), known(-2120), known(-2130), known(0), known(-1)}, {1, 1, 1, 0, 0}},
      {{describe(nullptr), describe(&nameless), describe(&strange), describe(&call, text),
        VirtualBoard_describe(&call, text, nullptr), stored(), describe(&call), stored()},
       {-2082, -2082, -2087, -500, -500, 5, 0, 9}},
      // What is counted, and which of several faults prevails.
      {{failAt(3, 1, -7), failAt(-1, 1, -7), failAt(VELMORA_COUNT_ALL, 0, -7),
        failNamed(nullptr, -7, 1), read()},
       {-2087, -2087, -2087, -2082, 0}},
      {{failAt(VELMORA_COUNT_WRITES, 2, -7), read(), write(), read(), write(), write()},
       {0, 0, 0, 0, -7, 0}},
      {{failAt(VELMORA_COUNT_VALUES, 2, -7), session.id(kLength), read(), write(), read()},
       {0, length, 0, -7, 0}},
      {{failAt(VELMORA_COUNT_ALL, 2, -7), read(), session.id(kLength), read()}, {0, 0, -7, 0}},
      {{failNamed(kRoll, 9, 5), failNamed(kRoll, 8, 2), write(), setLength(0), write(), write()},
       {0, 0, 8, 0, 8, 0}},
      {{failNamed(kRoll, 8, 0), failAt(VELMORA_COUNT_ALL, 1, -7), write(), write()}, {0, 0, 8, 8}},
      {{(VirtualBoard_clearFaults(), write())}, {0}},
  };
  for (const auto& row : rows) EXPECT_EQ(row.results, row.expected) << &row - rows;
  VirtualBoard_destroyDevice(fresh);
}

TEST_F(Control, TellsEveryAccess) {
  const Lines lines{"write CamGenRoll0 = 3", "set Device1_Process0_Buffer_XLength[1] = 8",
                    "set Device1_Process0_Buffer_XLength[4] = 8 failed: -2081",
                    "read CamGenEnable0 -> 0"};
  const auto access = [&] {
    EXPECT_EQ((std::vector{write(), setLength(1), setLength(4), read()}),
              (std::vector{0, 0, -2081, 0}));
  };
  std::string text;
  for (const auto& line : lines) text += line + "\n";

  Lines seen, others, taken;
  EXPECT_EQ(VirtualBoard_observe(describeTo, &seen, release), 0);
  VirtualBoard_startJournal();
  access();
  EXPECT_EQ(VirtualBoard_observe(nullptr, &others, release), 0);  // Both are released.
  EXPECT_EQ(others, Lines{"released"});
  seen.pop_back();
  EXPECT_EQ(seen, lines);

  size_t size = 0;
  EXPECT_EQ(VirtualBoard_takeJournalText(nullptr, &size), 0);
  ASSERT_EQ(size, text.size() + 1);
  std::vector<char> place(size, '?');
  EXPECT_EQ(VirtualBoard_takeJournalText(place.data(), nullptr), -500);
  EXPECT_EQ(VirtualBoard_takeJournalText(place.data(), &--size), -500);
  EXPECT_EQ(size, text.size());
  EXPECT_EQ(VirtualBoard_takeJournalText(place.data(), &++size), 0);
  EXPECT_EQ(place.data(), text);

  access();
  EXPECT_EQ(VirtualBoard_takeJournal(nullptr, nullptr), -2082);
  EXPECT_EQ(VirtualBoard_takeJournal(describeTo, &taken), 0);
  EXPECT_EQ(taken, lines);
  VirtualBoard_stopJournal();
  access();
  EXPECT_EQ(VirtualBoard_takeJournalText(place.data(), &size), 0);
  EXPECT_EQ(size, 1u);
  VirtualBoard_startJournal();
  access();
  const VirtualBoardObserver thrower = [](void*, const auto*) { throw std::runtime_error(""); };
  EXPECT_EQ(VirtualBoard_takeJournal(thrower, nullptr), -501);
  VirtualBoard_stopJournal();
}

TEST_F(Control, LetsAnObserverGoWhenItHasReturned) {
  Lines lines;
  const VirtualBoardObserver once = [](void* context, const VirtualBoardAccess* access) {
    VirtualBoard_observe(nullptr, nullptr, nullptr);
    describeTo(context, access);
  };
  EXPECT_EQ(VirtualBoard_observe(once, &lines, release), 0);
  EXPECT_EQ(read() + read(), 0);
  EXPECT_EQ(lines, (Lines{"read CamGenEnable0 -> 0", "released"}));
}

/// Its functions have one context, and each can do without the other.
TEST_F(Control, ReplacesTheClock) {
  int64_t time = 1000;
  Lines released;
  const VirtualBoardNow now = [](void* context) { return *static_cast<int64_t*>(context); };
  const VirtualBoardSleep sleep = [](void* context, int64_t pause) {
    *static_cast<int64_t*>(context) += pause;
  };
  VirtualBoardEvent event{};
  EXPECT_EQ(VirtualBoard_setClock(now, sleep, &time, nullptr), 0);
  EXPECT_EQ(VirtualBoard_takeEvent(session.device, 2, &event), -2120);
  EXPECT_EQ(time, 2'000'001'000);
  const VirtualBoardSleep none = [](void* lines, int64_t) {
    static_cast<Lines*>(lines)->push_back("sleep");
  };
  EXPECT_EQ(VirtualBoard_setClock(nullptr, none, &released, release), 0);
  EXPECT_EQ(VirtualBoard_takeEvent(session.device, 1e-3, &event), -2120);
  EXPECT_EQ(released.front(), "sleep");
  EXPECT_EQ(VirtualBoard_setClock(nullptr, nullptr, &released, release), 0);  // Both are released.
  released.erase(released.begin(), released.end() - 2);
  EXPECT_EQ(released, (Lines{"released", "released"}));
  EXPECT_EQ(time, 2'000'001'000);
}

}  // namespace
