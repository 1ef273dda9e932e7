/// What ports report: constants, the DMA channel, the camera, the runtime's answers. The threshold
/// of the log lies above the level of refusals here.
#include <gtest/gtest.h>

#include <climits>

#include "tests/dispatch_support.h"

namespace {

using namespace fixture;

const EnvironmentVariable kThreshold("KORV_LOG_LEVEL", "5");

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
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const auto& [id, value] : constants) EXPECT_EQ(applet.word(id, port), (Word{0, value}));
    for (const int type : {0, 2, 5}) {
      std::string buffer(20, '#');
      EXPECT_EQ(Fg_getParameterWithType(applet.fg(), FG_HAP_FILE, buffer.data(), port, type), 0);
      EXPECT_EQ(buffer, std::string("Velmora.hap\0########", 20));
    }
  }
  for (const unsigned dma : {4u, 77u, UINT_MAX})
    for (const int type : {0, 2, 5, 22}) {
      Word reading{0, 0};
      reading.code =
          Fg_getParameterWithType(applet.fg(), FG_NR_OF_PROCESSES, &reading.value, dma, type);
      EXPECT_EQ(reading, (Word{0, 4})) << dma;
      EXPECT_EQ(applet.lastError(), VELMORA_OK);
    }
  EXPECT_EQ(takeAccesses(), Lines{}) << "nobody is asked";
}

/// One read of the design or the runtime, the answer unchanged.
TEST(Status, IsPassedOn) {
  Applet applet;
  const struct {
    int id;
    const char* name;
    bool forwarded = true;  // With the caller's type.
  } rows[] = {{FG_DMASTATUS, "FG_DMASTATUS", false},
              {FG_FILLLEVEL, kFillLevel, false},
              {FG_OVERFLOW, kOverflow, false},
              {FG_TRANSFER_LEN, "FG_TRANSFER_LEN"},
              {FG_NR_OF_DMAS, "FG_NR_OF_DMAS"},
              {FG_NR_OF_CAMS, "FG_NR_OF_CAMS"},
              {FG_DMA_PORT, "FG_DMA_PORT"},
              {FG_CAM_PORT, "FG_CAM_PORT"},
              {FG_APC_STOP_TIMEOUT, "FG_APC_STOP_TIMEOUT"}};
  for (const auto& row : rows)
    for (unsigned port = 0; port < kPorts; ++port) {
      SCOPED_TRACE(row.name);
      const std::uint32_t value = 1000000 + static_cast<std::uint32_t>(row.id) + port;
      give(applet, row.name, port, value);
      takeAccesses();
      for (const int type : {1, 2, 3, 5}) {
        const bool refused = row.forwarded && type == 5;
        const std::uint64_t upper = type == 3 ? 0 : 0xFFFFFFFF00000000;
        std::uint64_t wide = ~std::uint64_t{0};
        EXPECT_EQ(Fg_getParameterWithType(applet.fg(), row.id, &wide, port, type),
                  refused ? kWrongType : VELMORA_OK);
        EXPECT_EQ(applet.lastError(), refused ? kWrongType : VELMORA_OK);
        EXPECT_EQ(wide, refused ? ~std::uint64_t{0} : upper | value) << type;
        EXPECT_EQ(takeAccesses(), Lines{refused ? failed(read(row.name, port), kWrongType)
                                                : read(row.name, port, value)});
      }
      board::failAt(1, kInjected);
      EXPECT_EQ(applet.word(row.id, port).code, kInjected);
      EXPECT_EQ(applet.lastError(), kInjected);
      EXPECT_EQ(takeAccesses(), Lines{failed(read(row.name, port), kInjected)});
    }
}

TEST(Status, OfTheCameraIsPutTogether) {
  Applet applet;
  const struct {
    std::uint32_t fill, overflow, runtime, extended;
  } rows[] = {{0, 0, 0, 0},
              {24, 0, 0, 0x00},
              {25, 0, 0, 0x40},
              {49, 0, 0, 0x40},
              {50, 0, 0, 0x80},
              {74, 0, 0, 0x80},
              {75, 0, 0, 0xC0},
              {4000000000, 0, 0, 0xC0},
              {0, 1, 0, 0x20},
              {0, 1, 0x20, 0x20},
              {0, 0, 0x20, 0x00},
              {0, 0, 0xFFFFFFFF, 0xFFFFFF1F},
              {80, 1, 0xFFFFFFFE, 0xFFFFFFFE},
              {30, 1, 0xA5A5A5E1, 0xA5A5A561}};
  for (unsigned port = 0; port < kPorts; ++port)
    for (const int id : {FG_CAMSTATUS_EXTENDED, FG_CAMSTATUS}) {
      Lines reads;
      for (const auto& row : rows) {
        give(applet, kFillLevel, port, row.fill);
        give(applet, kOverflow, port, row.overflow);
        give(applet, kExtended, port, row.runtime);
        takeAccesses();
        EXPECT_EQ(applet.word(id, port),
                  (Word{0, id == FG_CAMSTATUS ? row.runtime & 1 : row.extended}));
        reads = {read(kFillLevel, port, row.fill), read(kOverflow, port, row.overflow),
                 read(kExtended, port, row.runtime)};
        EXPECT_EQ(takeAccesses(), reads);
      }
      for (unsigned k = 1; k <= 3; ++k) {  // The first read that fails ends it.
        board::failAt(k, kInjected);
        EXPECT_EQ(applet.word(id, port), (Word{kInjected, 0xDEADBEEF}));
        EXPECT_EQ(applet.lastError(), kInjected);
        Lines until(reads.begin(), reads.begin() + k);
        until.back() = failed(until.back().substr(0, until.back().find(" -> ")), kInjected);
        EXPECT_EQ(takeAccesses(), until);
      }
    }
}

TEST(Status, CannotBeSetAndIsSilentBelowTheThreshold) {
  Applet applet;
  takeAccesses();
  EXPECT_EQ(logged([&] {
              for (const Parameter& p : parameters()) {
                if (p.writable()) continue;
                EXPECT_EQ(applet.set(p.id, 1u, 3), VELMORA_NOT_AVAILABLE) << p.name;
              }
              EXPECT_EQ(applet.set(99, 1), VELMORA_INVALID_ARGUMENT);
              EXPECT_EQ(applet.word(FG_WIDTH, 4).code, VELMORA_INVALID_ARGUMENT);
              const ExternalDesign lacking("");
              EXPECT_TRUE(Applet().opened());
            }),
            Lines{});
}

}  // namespace
