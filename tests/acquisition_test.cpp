/// Pictures in memory: what applications set with the applet shows in the pixels that they get, and
/// buffers change hands without losing or mixing up a picture.
#include <gmock/gmock.h>

#include <functional>
#include <random>
#include <thread>

#include "tests/applet_test.h"
#include "tests/fakes/allocation_hook.h"
#include "tests/picture_reference.h"
#include "tests/test_clock.h"

namespace {

using namespace fixture;
using namespace std::chrono_literals;
using board::PicturePath;
using std::chrono::nanoseconds;
using testing::Each;
using testing::ElementsAre;

constexpr std::int64_t kEndless = -1;
constexpr nanoseconds kFrame{33333334};  ///< Of the free-running camera.

class Acquisition : public TestClock, public testing::Test {
 protected:
  Acquisition() { board::stopJournal(); }
  ~Acquisition() override {
    for (unsigned port = 0; port < kPorts; ++port) stop(port);
    for (auto* memory : memories) EXPECT_EQ(VirtualBoard_destroyMemory(memory), VELMORA_OK);
    EXPECT_EQ(board::outstanding().memories, 0);
  }

  VirtualBoardMemory* memory(std::uint32_t buffers, std::size_t bytes, void* const* own = nullptr) {
    return memories.emplace_back(VirtualBoard_createMemory(buffers, bytes, own));
  }
  int start(VirtualBoardMemory* into, unsigned port = 0, std::int64_t pictures = kEndless) {
    return Fg_AcquireEx(applet.fg(), port, pictures, 0, into);
  }
  int stop(unsigned port = 0) { return Fg_stopAcquireEx(applet.fg(), port, 0, 0); }
  std::int64_t lost() {
    return Fg_getStatusEx(applet.fg(), VELMORA_STATUS_LOST_PICTURES, 0, 0, nullptr);
  }
  /// Whoever fails to get a picture gets one of number 0.
  static VirtualBoardPicture take(VirtualBoardMemory* from, double seconds = 1) {
    VirtualBoardPicture picture{};
    EXPECT_EQ(VirtualBoard_takePicture(from, seconds, &picture), VELMORA_OK);
    return picture;
  }
  static int codeOfTake(VirtualBoardMemory* from, double seconds = 0) {
    VirtualBoardPicture untouched{};
    untouched.number = 77;
    const int code = VirtualBoard_takePicture(from, seconds, &untouched);
    EXPECT_EQ(untouched.number, 77);
    return code;
  }
  static Bytes pixels(const VirtualBoardPicture& picture) {
    return {picture.pixels, picture.pixels + picture.bytes};
  }
  /// The port's next picture.
  Bytes grab(unsigned port) {
    const auto into = VirtualBoard_createMemory(2, 100000, nullptr);
    EXPECT_EQ(start(into, port), VELMORA_OK);
    const Bytes result = pixels(take(into));
    EXPECT_EQ(stop(port), VELMORA_OK);
    EXPECT_EQ(VirtualBoard_destroyMemory(into), VELMORA_OK);
    return result;
  }
  void makeSmall(unsigned port, std::uint32_t width = 8, std::uint32_t height = 2) {
    EXPECT_EQ(applet.set(FG_WIDTH, width, port) + applet.set(FG_HEIGHT, height, port), VELMORA_OK);
  }

  Applet applet;
  std::vector<VirtualBoardMemory*> memories;
};

TEST_F(Acquisition, EachSettingShowsInThePicture) {
  std::mt19937 random(3);
  Bytes raw(40 * 30 * 2);
  for (auto& byte : raw) byte = static_cast<std::uint8_t>(random());
  const board::HostPicture scene{raw.data(), 40, 30, 16};
  const VirtualBoardRawPicture given{raw.data(), 40, 30, 16};
  struct Step {
    int id;
    double value;
    std::function<void(PicturePath&)> effect;
  };
  const Step steps[] = {
      {FG_WIDTH, 16, [](auto& path) { path.width = 16; }},
      {FG_HEIGHT, 6, [](auto& path) { path.height = 6; }},
      {FG_XOFFSET, 12, [](auto& path) { path.xOffset = 12; }},
      {FG_YOFFSET, 27, [](auto& path) { path.yOffset = 27; }},
      {FG_GBE_CAMTYPE, MONO10_PACKED, [](auto& path) { path.pixelFormat = MONO10_PACKED; }},
      {FG_BAYERINIT, GreenFollowedByBlue,
       [](auto& path) { path.bayerOrder = path.whiteOrder = GreenFollowedByBlue; }},
      {FG_SCALINGFACTOR_BLUE, 0.5, [](auto& path) { path.blueGain = 0.5; }},
      {FG_SCALINGFACTOR_GREEN, 1.75, [](auto& path) { path.greenGain = 1.75; }},
      {FG_SCALINGFACTOR_RED, 3, [](auto& path) { path.redGain = 3; }},
  };
  for (unsigned port = 0; port < kPorts; ++port) {
    EXPECT_EQ(VirtualBoard_setCameraPictures(applet.device(), port, 1, &given), VELMORA_OK);
    makeSmall(port);
    PicturePath path{.width = 8, .height = 2};
    for (const auto& [id, value, effect] : steps) {
      const auto before = referencePicture(scene, path);
      effect(path);
      const bool real = applet.node(id)->kind == REGISTER_INFO_DOUBLE;
      EXPECT_EQ(real ? applet.set(id, value, port) : applet.set(id, static_cast<int>(value), port),
                VELMORA_OK);
      const auto expected = referencePicture(scene, path);
      EXPECT_EQ(grab(port), expected) << id << '@' << port;
      EXPECT_TRUE(expected != before || id == FG_GBE_CAMTYPE) << id;
    }
    // The white balance takes the order of its own.
    const std::string white = fmt::format("Device1_Process{}_White_BayerInit", port);
    board::setValue(applet.device(), white, port, RedFollowedByGreen);
    path.whiteOrder = RedFollowedByGreen;
    EXPECT_EQ(grab(port), referencePicture(scene, path)) << port;
  }
}

TEST_F(Acquisition, TheSimulatorShowsItsRegisters) {
  for (unsigned port = 0; port < kPorts; ++port) {
    makeSmall(port, 16, 8);
    const std::pair<int, std::uint32_t> settings[] = {
        {FG_GEN_ENABLE, 1}, {FG_GEN_WIDTH, 12}, {FG_GEN_HEIGHT, 6}, {FG_GEN_ROLL, 10 + port}};
    EXPECT_EQ(applet.set(FG_GEN_FREQ, 3.0, port), VELMORA_OK);
    for (const auto& [id, value] : settings) EXPECT_EQ(applet.set(id, value, port), VELMORA_OK);
    Bytes ramp(12 * 6);
    const auto rampOf = [&](unsigned number) {
      for (unsigned i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<std::uint8_t>(i % 12 + i / 12 + number * (10 + port));
      return referencePicture({ramp.data(), 12, 6}, {.width = 16, .height = 8});
    };
    const auto into = memory(3, 16 * 8 * 3);
    EXPECT_EQ(start(into, port), VELMORA_OK);
    const auto first = take(into), second = take(into);
    EXPECT_EQ(pixels(first), rampOf(1)) << port;
    EXPECT_EQ(pixels(second), rampOf(2)) << port;
    // 12 + 4 bytes a line, 6 lines, one byte in 25 cycles of 8 ns.
    EXPECT_EQ(second.time - first.time, 16 * 6 * 25 * 8);
  }
}

TEST_F(Acquisition, PicturesAreOfTheSettingsOfTheirTime) {
  makeSmall(0);
  const Bytes raw(16, 100);
  const VirtualBoardRawPicture grey{raw.data(), 8, 2, 8};
  EXPECT_EQ(VirtualBoard_setCameraPictures(applet.device(), 0, 1, &grey), VELMORA_OK);
  const auto into = memory(3, 48);
  EXPECT_EQ(start(into), VELMORA_OK);
  for (const double gain : {1.0, 0.5, 2.0}) {
    for (const int id : {FG_SCALINGFACTOR_BLUE, FG_SCALINGFACTOR_GREEN, FG_SCALINGFACTOR_RED})
      EXPECT_EQ(applet.set(id, gain), VELMORA_OK);
    time += kFrame;
  }
  for (const int grey : {100, 50, 200}) EXPECT_THAT(pixels(take(into)), Each(grey));
}

TEST_F(Acquisition, WithoutAFreeBufferPicturesAreLost) {
  makeSmall(0);
  const auto into = memory(2, 48);
  const auto buffers = [&] {
    return std::pair{applet.word(FG_FILLLEVEL).value, applet.word(FG_OVERFLOW).value};
  };
  EXPECT_EQ(start(into, 0, 10), VELMORA_OK);
  EXPECT_EQ(buffers(), (std::pair{0U, 0U}));
  time += kFrame;
  EXPECT_EQ(buffers(), (std::pair{50U, 0U}));
  time += 3 * kFrame;
  EXPECT_EQ(buffers(), (std::pair{100U, 1U}));
  EXPECT_EQ(lost(), 2);
  const auto first = take(into), second = take(into);
  EXPECT_THAT((std::vector{first.number, second.number}), ElementsAre(1, 2));
  EXPECT_NEAR(static_cast<double>(second.time - first.time), 1e9 / 30, 2);
  EXPECT_NE(first.buffer, second.buffer);
  EXPECT_EQ(codeOfTake(into, 0.04), VELMORA_BOARD_TIMEOUT);  // One more is lost meanwhile.
  EXPECT_EQ(VirtualBoard_returnBuffer(into, second.buffer), VELMORA_OK);
  EXPECT_EQ(buffers(), (std::pair{50U, 1U}));
  const auto next = take(into);
  EXPECT_EQ(next.number, 6);
  EXPECT_EQ(next.buffer, second.buffer);
  EXPECT_EQ(buffers(), (std::pair{100U, 0U}));
  time += 1h;
  EXPECT_EQ(Fg_getLastPicNumberEx(applet.fg(), 0, 0), 10);
  EXPECT_EQ(lost(), 7);
  EXPECT_EQ(codeOfTake(into), VELMORA_BOARD_NOT_STARTED);  // The channel has its ten.
  EXPECT_EQ(VirtualBoard_destroyMemory(into), VELMORA_BOARD_MEMORY_IN_USE);
  EXPECT_EQ(stop(), VELMORA_OK);
  EXPECT_EQ(applet.word(FG_OVERFLOW).value, 1U);

  // What is due at a stop can be taken after it; the next start counts anew.
  EXPECT_EQ(VirtualBoard_returnBuffer(into, first.buffer), VELMORA_OK);
  EXPECT_EQ(VirtualBoard_returnBuffer(into, next.buffer), VELMORA_OK);
  EXPECT_EQ(start(into), VELMORA_OK);
  time += 3 * kFrame;
  EXPECT_EQ(stop(), VELMORA_OK);
  EXPECT_EQ(lost(), 1);
  EXPECT_EQ(take(into).number, 1);
  EXPECT_EQ(take(into).number, 2);
  EXPECT_EQ(codeOfTake(into), VELMORA_BOARD_NOT_STARTED);
}

TEST_F(Acquisition, BuffersComeAndGoWhileAChannelRuns) {
  makeSmall(0);
  Bytes room(96);
  const auto into = memory(0, 48);
  EXPECT_EQ(start(into), VELMORA_OK);
  time += kFrame;
  for (int i = 0; i < 2; ++i) EXPECT_EQ(VirtualBoard_addBuffer(into, &room[48 * i]), i);
  EXPECT_EQ(lost(), 1);
  EXPECT_EQ(applet.word(FG_FILLLEVEL).value, 100U);
  EXPECT_EQ(VirtualBoard_returnBuffer(into, 1), VELMORA_OK);
  EXPECT_EQ(VirtualBoard_holdBuffer(into, 0), VELMORA_BOARD_BAD_ARGUMENT);
  const auto picture = take(into);
  EXPECT_EQ(picture.number, 2);
  EXPECT_EQ(picture.pixels, &room[48]);
  EXPECT_EQ(VirtualBoard_returnBuffer(into, 0), VELMORA_OK);
  EXPECT_EQ(VirtualBoard_holdBuffer(into, 0), VELMORA_OK);
  time += kFrame;
  EXPECT_EQ(lost(), 2);
  EXPECT_EQ(VirtualBoard_addBuffer(into, nullptr), VELMORA_BOARD_NULL_VALUE);
}

TEST_F(Acquisition, APictureNeverLeavesItsBuffer) {
  Bytes room(3 * 48 + 2, 0xEE);
  void* const own[] = {room.data() + 1, room.data() + 49, room.data() + 97};
  const auto into = memory(3, 48, own);
  makeSmall(0, 8, 3);
  EXPECT_EQ(start(into), VELMORA_BOARD_BUFFER_TOO_SMALL);
  EXPECT_EQ(applet.lastError(), VELMORA_BOARD_BUFFER_TOO_SMALL);
  makeSmall(0);
  EXPECT_EQ(start(into), VELMORA_OK);
  for (const auto& [height, lines] : {std::pair{2U, 2U}, {4U, 2U}}) {
    makeSmall(0, 8, height);
    const auto picture = take(into);
    EXPECT_EQ(picture.pixels, own[picture.buffer]);
    EXPECT_EQ(picture.complete, height == lines ? 1 : 0);
    EXPECT_EQ(picture.height, lines);
    EXPECT_EQ(picture.bytes, 8 * lines * 3);
  }
  EXPECT_EQ(applet.set(FG_WIDTH, 32), VELMORA_OK);
  const auto wide = take(into);
  EXPECT_EQ(wide.bytes, 0U);
  EXPECT_EQ(room.front() + room.back(), 2 * 0xEE);
}

TEST_F(Acquisition, CamerasPlayWhatTheHostGives) {
  makeSmall(0);
  const Bytes dark(16, 10), bright(16 * 2, 200);
  const VirtualBoardRawPicture both[] = {{dark.data(), 8, 2, 8}, {bright.data(), 8, 2, 16}};
  EXPECT_EQ(VirtualBoard_setCameraPictures(applet.device(), 0, 2, both), VELMORA_OK);
  const auto into = memory(8, 48);
  EXPECT_EQ(start(into), VELMORA_OK);
  for (const int grey : {10, 200, 10}) EXPECT_THAT(pixels(take(into)), Each(grey));

  const auto fill = [](void* seen, std::uint32_t port, std::int64_t number, void* out) {
    static_cast<std::vector<std::int64_t>*>(seen)->push_back(number + 1000 * port);
    std::fill_n(static_cast<std::uint8_t*>(out), 16, static_cast<std::uint8_t>(40 * number));
    return number == 5 ? 1 : 0;
  };
  std::vector<std::int64_t> seen;
  EXPECT_EQ(VirtualBoard_setCameraFunction(applet.device(), 0, fill, &seen, both), VELMORA_OK);
  EXPECT_THAT(pixels(take(into)), Each(160));
  const auto missing = take(into);
  EXPECT_EQ(missing.complete, 0);
  EXPECT_EQ(missing.bytes, 0U);
  EXPECT_EQ(missing.number, 5);
  EXPECT_THAT(seen, ElementsAre(4, 5));
  EXPECT_EQ(VirtualBoard_setCameraPictures(applet.device(), 0, 0, nullptr), VELMORA_OK);
  EXPECT_THAT(pixels(take(into)), testing::Contains(testing::Gt(200)));  // The chart.
}

TEST_F(Acquisition, RefusesWhatItCannotUse) {
  int other = 0;
  void* const holes[] = {&other, nullptr};
  EXPECT_EQ(VirtualBoard_createMemory(10, 0, nullptr), nullptr);
  EXPECT_EQ(VirtualBoard_createMemory(2, 4, holes), nullptr);
  EXPECT_EQ(VirtualBoard_createMemory(~0U, ~std::size_t{0} / 2, nullptr), nullptr);
  EXPECT_EQ(VirtualBoard_outputs(nullptr), 0U);
  for (const unsigned port : {1U, 2U}) makeSmall(port);
  VirtualBoardMemory* const no = nullptr;
  const auto none = reinterpret_cast<VirtualBoardMemory*>(&other), into = memory(1, 48);
  const auto alien = reinterpret_cast<std::intptr_t>(none);
  const auto fg = applet.fg();
  const auto device = applet.device();
  VirtualBoardEvent event{};
  const auto playing = [&](const VirtualBoardRawPicture& raw) {
    return VirtualBoard_setCameraPictures(device, 0, 1, &raw);
  };
  const VirtualBoardRawPicture good{&other, 2, 2, 8};
  const std::pair<std::int64_t, int> calls[] = {
      {codeOfTake(into), VELMORA_BOARD_NOT_STARTED},
      {start(into, 2), VELMORA_OK},
      {start(into, 1), VELMORA_BOARD_MEMORY_IN_USE},
      {start(none, 1), VELMORA_BOARD_BAD_ARGUMENT},
      {Fg_getLastPicNumberEx(fg, 2, reinterpret_cast<std::intptr_t>(into)), 0},
      {Fg_getLastPicNumberEx(fg, 2, alien), VELMORA_BOARD_BAD_ARGUMENT},
      {Fg_stopAcquireEx(fg, 2, alien, 0), VELMORA_BOARD_BAD_ARGUMENT},
      {Fg_getStatusEx(fg, VELMORA_STATUS_ACQUIRING, 0, 2, none), VELMORA_BOARD_BAD_ARGUMENT},
      {VirtualBoard_takePicture(into, 1, nullptr), VELMORA_BOARD_NULL_VALUE},
      {VirtualBoard_returnBuffer(into, 0), VELMORA_BOARD_BAD_ARGUMENT},
      {codeOfTake(none), VELMORA_BOARD_NO_HANDLE},
      {VirtualBoard_returnBuffer(no, 0), VELMORA_BOARD_NO_HANDLE},
      {VirtualBoard_destroyMemory(none), VELMORA_BOARD_NO_HANDLE},
      {VirtualBoard_setCameraPictures(device, 0, 1, nullptr), VELMORA_BOARD_NULL_VALUE},
      {VirtualBoard_setCameraPictures(device, kPorts, 1, &good), VELMORA_BOARD_BAD_DMA},
      {VirtualBoard_setCameraPictures(nullptr, 0, 1, &good), VELMORA_BOARD_NO_HANDLE},
      {VirtualBoard_setCameraFunction(device, 0, nullptr, nullptr, &good),
       VELMORA_BOARD_NULL_VALUE},
      {playing({nullptr, 1, 1, 8}), VELMORA_BOARD_BAD_ARGUMENT},
      {playing({&other, 0, 1, 8}), VELMORA_BOARD_BAD_ARGUMENT},
      {playing({&other, 8193, 1, 8}), VELMORA_BOARD_BAD_ARGUMENT},
      {playing({&other, 1, 1, 12}), VELMORA_BOARD_BAD_ARGUMENT},
      {VirtualBoard_takeEvent(nullptr, 0, &event), VELMORA_BOARD_NO_HANDLE},
      {VirtualBoard_takeEvent(device, 0, nullptr), VELMORA_BOARD_NULL_VALUE},
      {VirtualBoard_takeEvent(device, -1, &event), VELMORA_BOARD_BAD_ARGUMENT},
      {VirtualBoard_takeEvent(device, 0.5, &event), VELMORA_BOARD_TIMEOUT},
  };
  for (const auto& [code, expected] : calls) EXPECT_EQ(code, expected) << &code - &calls[0].first;
  EXPECT_EQ(time, 1500ms);
}

TEST_F(Acquisition, WithoutMemoryAPictureStaysDue) {
  makeSmall(0);
  const auto into = memory(2, 48);
  EXPECT_EQ(start(into), VELMORA_OK);
  time += 3 * kFrame;
  int failures = 0;
  for (int code = VELMORA_OUT_OF_MEMORY; code != VELMORA_OK; ++failures) {
    const fakes::FailingAllocation noMemory(failures);
    VirtualBoardPicture picture{};
    code = VirtualBoard_takePicture(into, 0, &picture);
    EXPECT_EQ(picture.number, code == VELMORA_OK ? 1 : 0);
    EXPECT_TRUE(code == VELMORA_OK || code == VELMORA_OUT_OF_MEMORY) << code;
  }
  EXPECT_GT(failures, 2);
  EXPECT_EQ(take(into).number, 2);
}

TEST(Acquiring, FourPortsAtOnceDeliverEveryPictureInOrder) {
  Applet applet;
  board::stopJournal();
  std::vector<std::jthread> threads;
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const auto& [id, value] :
         {std::pair{FG_WIDTH, 16U}, {FG_HEIGHT, 8U}, {FG_GEN_ENABLE, 1U}, {FG_GEN_HEIGHT, 1000U}})
      EXPECT_EQ(applet.set(id, value, port), VELMORA_OK);
    threads.emplace_back([&applet, port] {
      const auto into = VirtualBoard_createMemory(50, 16 * 8 * 3, nullptr);
      EXPECT_EQ(Fg_AcquireEx(applet.fg(), port, 50, 0, into), VELMORA_OK);
      for (int number = 1; number <= 50; ++number) {
        VirtualBoardPicture picture{};
        EXPECT_EQ(VirtualBoard_takePicture(into, 10, &picture), VELMORA_OK);
        EXPECT_EQ(picture.number, number);
        EXPECT_EQ(picture.port, port);
        EXPECT_EQ(picture.complete, 1);
        EXPECT_EQ(VirtualBoard_returnBuffer(into, picture.buffer), VELMORA_OK);
        EXPECT_EQ(applet.set(FG_SCALINGFACTOR_RED, number / 20.0, port), VELMORA_OK);
      }
      EXPECT_EQ(Fg_stopAcquireEx(applet.fg(), port, 0, 0), VELMORA_OK);
      EXPECT_EQ(VirtualBoard_destroyMemory(into), VELMORA_OK);
    });
  }
}

}  // namespace
