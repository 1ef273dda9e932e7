/// What ports report: constants, the DMA channel, the camera, the runtime's answers.
#include <gtest/gtest.h>

#include <climits>

#include "tests/dispatch_support.h"

namespace {

using namespace fixture;

using Word = Applet::Reading<std::uint32_t>;

/// The journal line of a read on a port; {p} in the name stands for the port.
std::string read(const char* name, unsigned port) {
  return replaced("get " + std::string(name) + "[{p}]", "{p}", std::to_string(port));
}
std::string read(const char* name, unsigned port, std::uint32_t value) {
  return read(name, port) + " -> " + std::to_string(value);
}
std::string failed(std::string line, int code) {
  return line.append(" failed: ").append(std::to_string(code));
}

/// Plays the design and the runtime.
void give(Applet& applet, const char* name, unsigned port, std::uint32_t value) {
  board::setValue(applet.device(), replaced(name, "{p}", std::to_string(port)), port, value);
}

constexpr const char* kFillLevel = "Device1_Process{p}_Buffer_FillLevel";
constexpr const char* kOverflow = "Device1_Process{p}_Buffer_Overflow";
constexpr const char* kExtended = "FG_CAMSTATUS_EXTENDED";

TEST(Status, OfTheAppletIsConstant) {
  Applet applet;
  takeAccesses();
  const std::pair<int, std::uint32_t> constants[] = {
      {FG_APPLET_VERSION, 2}, {FG_APPLET_REVISION, 1}, {FG_APPLET_ID, 0}, {FG_NR_OF_PROCESSES, 4}};
  for (unsigned port = 0; port < kPorts; ++port)
    for (const auto& [id, value] : constants) EXPECT_EQ(applet.word(id, port), (Word{0, value}));
  for (const unsigned dma : {4u, UINT_MAX})
    EXPECT_EQ(applet.word(FG_NR_OF_PROCESSES, dma), (Word{0, 4}));
  EXPECT_EQ(takeAccesses(), Lines{}) << "nobody is asked";
}

/// One read of the design or the runtime, the answer unchanged.
TEST(Status, IsPassedOn) {
  Applet applet;
  for (const std::string own :
       {"FG_DMASTATUS", "FG_FILLLEVEL", "FG_OVERFLOW", "FG_TRANSFER_LEN", "FG_NR_OF_DMAS",
        "FG_NR_OF_CAMS", "FG_DMA_PORT", "FG_CAM_PORT", "FG_APC_STOP_TIMEOUT"}) {
    const char* const name = own == "FG_FILLLEVEL"  ? kFillLevel
                             : own == "FG_OVERFLOW" ? kOverflow
                                                    : own.c_str();
    const int id = Fg_getParameterIdByName(applet.fg(), own.c_str());
    for (unsigned port = 0; port < kPorts; ++port) {
      SCOPED_TRACE(name);
      const std::uint32_t answer = 1000000 + static_cast<std::uint32_t>(id) + port;
      give(applet, name, port, answer);
      takeAccesses();
      for (const int type : {1, 2, 3}) {
        std::uint64_t wide = ~std::uint64_t{0};
        EXPECT_EQ(Fg_getParameterWithType(applet.fg(), id, &wide, port, type), VELMORA_OK);
        EXPECT_EQ(wide, (type == 3 ? 0 : 0xFFFFFFFF00000000) | answer) << type;
        EXPECT_EQ(takeAccesses(), Lines{read(name, port, answer)});
      }
      board::failAt(1, kInjected);
      EXPECT_EQ(applet.word(id, port).code, kInjected);
      EXPECT_EQ(takeAccesses(), Lines{failed(read(name, port), kInjected)});
    }
  }
}

TEST(Status, OfTheCameraIsPutTogether) {
  Applet applet;
  // Fill level, overflow, the runtime's, the outcome.
  constexpr std::uint32_t kRows[][4] = {{24, 0, 0xFFFFFFFF, 0xFFFFFF1F},
                                        {25, 0, 0, 0x40},
                                        {49, 1, 0, 0x60},
                                        {50, 0, 0, 0x80},
                                        {74, 0, 0x20, 0x80},
                                        {75, 0, 0, 0xC0},
                                        {4000000000, 1, 0xFFFFFFFE, 0xFFFFFFFE}};
  for (unsigned port = 0; port < kPorts; ++port)
    for (const int id : {FG_CAMSTATUS_EXTENDED, FG_CAMSTATUS}) {
      Lines reads;
      for (const auto& [fill, overflow, runtime, extended] : kRows) {
        give(applet, kFillLevel, port, fill);
        give(applet, kOverflow, port, overflow);
        give(applet, kExtended, port, runtime);
        takeAccesses();
        EXPECT_EQ(applet.word(id, port), (Word{0, id == FG_CAMSTATUS ? runtime & 1 : extended}));
        reads = {read(kFillLevel, port, fill), read(kOverflow, port, overflow),
                 read(kExtended, port, runtime)};
        EXPECT_EQ(takeAccesses(), reads);
      }
      for (unsigned k = 1; k <= 3; ++k) {  // The first read that fails ends it.
        board::failAt(k, kInjected);
        EXPECT_EQ(applet.word(id, port), (Word{kInjected, 0xDEADBEEF}));
        Lines until(reads.begin(), reads.begin() + k);
        until.back() = failed(until.back().substr(0, until.back().find(" -> ")), kInjected);
        EXPECT_EQ(takeAccesses(), until);
      }
    }
}

}  // namespace
