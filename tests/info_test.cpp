#include <gtest/gtest.h>
#include <malloc.h>
#include <png.h>
#include <unistd.h>

#include <climits>
#include <sstream>
#include <string_view>
#include <vector>

#include "tests/applet_fixture.h"

namespace {

using fixture::Applet;

constexpr uint64_t kUntouched = 0xABCDABCDABCDABCD;
char marker;

/// What a query returns and what it leaves in the places to write to.
struct Answer {
  explicit Answer(int property, int index = 0, int sub = 0)
      : result(Info(property, index, sub, &out, &pointer)) {}
  uint64_t out = kUntouched;
  void* pointer = &marker;
  int result;
};

int valueOf(std::string name) { return Info(0x1100, 0, 0, name.data(), nullptr); }

// First, because the holders keep their handles from the first start-up on.
TEST(Info, HandlesAreThoseOfTheLatestStartUp) {
  const auto designOf = [](KTdevice* device) {
    for (const int property : {0x1030, 0x1040}) {
      EXPECT_EQ(Answer(property).result, 0);
      EXPECT_EQ(Answer(property).pointer, &marker);
      EXPECT_EQ(Info(property, 0, 0, nullptr, nullptr), 0);
    }
    EXPECT_EQ(Answer(0x1030).out, reinterpret_cast<uintptr_t>(device));
    return Answer(0x1040).out;
  };
  board::failNamed("Fg_InitHandleSlaveAware", -2052, 1);
  EXPECT_FALSE(Applet().opened());
  EXPECT_EQ(designOf(nullptr), 0U);
  Applet first(fixture::kNoDefaults);
  const uint64_t design = designOf(first.device());
  EXPECT_NE(design, 0U);
  Applet second(fixture::kNoDefaults);
  EXPECT_NE(designOf(second.device()), design);
}

/// Whether a property answers so whatever places there are to write to. Some blocks are no texts.
void expectAnswer(int property, int result, uint64_t out = kUntouched, bool written = false,
                  const char* text = nullptr) {
  SCOPED_TRACE(property);
  const Answer answer(property, 4, -1);  // For the mapping queries only.
  EXPECT_EQ(answer.result, result);
  EXPECT_EQ(answer.out, out);
  ASSERT_EQ(answer.pointer != &marker, written);
  EXPECT_STREQ(text ? static_cast<char*>(answer.pointer) : nullptr, text);
  uint64_t number = kUntouched;
  void* pointer = &marker;
  EXPECT_EQ(Info(property, 0, 0, &number, nullptr), result);
  EXPECT_EQ(number, out);
  EXPECT_EQ(Info(property, 0, 0, nullptr, &pointer), result);
  EXPECT_EQ(pointer, answer.pointer);
}

TEST(Info, PropertiesAnswerWithOrWithoutPlacesToWrite) {
  const std::pair<int, std::vector<int>> numbers[] = {
      {0, {0x350, 0x410, 0x415, 0x870, 0x890, 0xa00, 0xc00, 0xd00}},
      {4, {0x700, 0x750, 0x760, 0x1200}},
      {1, {0xb00}},
      {131073, {0x800}},
      {3652, {0x880}},
      // Beside and between the known ones.
      {-2130, {0, -1, INT_MIN, INT_MAX, 0x34f, 0x351, 0x416, 0x1080, 0x1101, 0x1270}}};
  for (const auto& [result, properties] : numbers)
    for (const int property : properties) expectAnswer(property, result);
  const std::pair<int, const char*> texts[] = {
      {0x413, "ea8d16eb-c9c3-20a3-8f42-bc3daf387855"},
      {0x414, ""},
      {0x1000,
       "Acquisition Applet with 8 bit image processing (per color component) and white balancing "
       "for four GigE Vision Bayer area scan cameras."},
      {0x1010, "Imagelets:Area"},
      {0x1020,
       "class=standard,family=legacy,type=quad,sensortype=area,color=bayer,interface=gige,lag=1"},
      {0x1050, "Velmora"},
      {0x1060, "2.1.2.3"},
      {0x1070, "2.1.2.3.20190221.013019"}};
  for (const auto& [property, text] : texts) expectAnswer(property, 0, kUntouched, true, text);
  expectAnswer(0x411, 0, 1872, true);
  expectAnswer(0x412, 0, 2662941, true);
  expectAnswer(0x900, 0, kUntouched & 0xFFFFFFFF00000000);  // The lower half alone.
}

TEST(Info, MappingQueriesKnowFourPorts) {
  for (const int index : {0, 1, 2, 3, 4, 256, INT_MAX, -1, INT_MIN})
    for (const int sub : {0, 1, 3, -1}) {
      SCOPED_TRACE(testing::Message() << index << ' ' << sub);
      const bool port = index >= 0 && index <= 3;
      for (const int property : {0x1210, 0x1220, 0x1250})
        EXPECT_EQ(Answer(property, index, sub).result, port ? 1 : -2070);
      EXPECT_EQ(Answer(0x1260, index, sub).result, port ? 8 : -2070);
      for (const int property : {0x1230, 0x1240}) {
        EXPECT_EQ(Answer(property, index, sub).result, port && sub == 0 ? index : -2070);
        EXPECT_EQ(Answer(property, index, sub).out, kUntouched);
      }
    }
}

TEST(Info, ValueNamesHaveTheirNumbers) {
  std::istringstream rows(
      "MONO8 0 MONO8_SIGNED 1 MONO10 2 MONO10_PACKED 3 MONO12 4 MONO12_PACKED 5 MONO14 7 MONO16 6 "
      "FG_COL24 2 FG_LEFT_ALIGNED 1 FG_RIGHT_ALIGNED 0 FG_CAMPORT 0 FG_GENERATOR 1 FG_ON 1 "
      "FG_OFF 0 FG_YES 1 FG_NO 0 FG_APPLY 1 GreenFollowedByRed 3 GreenFollowedByBlue 0 "
      "RedFollowedByGreen 2 BlueFollowedByGreen 1 ATM_GENERATOR 1 ATM_EXTERNAL 2 ATM_SOFTWARE 4 "
      "ATM_SYNCHRONIZED 3 TS_ACTIVE 0 TS_ASYNC_STOP 1 TS_SYNC_STOP 2 TRGINSRC_0 0 TRGINSRC_1 1 "
      "TRGINSRC_2 2 TRGINSRC_3 3 TRGINSRC_4 4 TRGINSRC_5 5 TRGINSRC_6 6 TRGINSRC_7 7 "
      "LOW_ACTIVE 1 HIGH_ACTIVE 0 IS_BUSY 1 IS_NOT_BUSY 0 PULSEGEN0 0 PULSEGEN1 1 GND 4 VCC 5 "
      "NOT_PULSEGEN0 6 NOT_PULSEGEN1 7 INPUT_BYPASS 10 NOT_INPUT_BYPASS 11");
  int count = 0;
  std::string name;
  for (int value = 0; rows >> name >> value; ++count) EXPECT_EQ(valueOf(name), value) << name;
  EXPECT_EQ(count, 49);
  for (const char* unknown : {"", "mono14", "MONO", "MONO8 ", " MONO8", "FG_ONE", "TRGINSRC_8"})
    EXPECT_EQ(valueOf(unknown), -2070) << unknown;
  EXPECT_EQ(Info(0x1100, 0, 0, nullptr, nullptr), -2070);
}

/// To a handler that runs after the destructors of all that the first question may have made.
TEST(Info, AnswersUntilTheProcessEnds) {
  const auto end = [] {
    mallopt(M_PERTURB, 0xA5);  // What is released does not stay readable.
    std::atexit([] { _exit(valueOf("INPUT_BYPASS")); });
    valueOf("MONO8");
    std::exit(0);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(INPUT_BYPASS), "");
}

TEST(Info, IconIsAPictureOfItsSize) {
  const Answer icon(0x411);
  const std::string_view bytes(static_cast<const char*>(icon.pointer), icon.out);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  ASSERT_TRUE(png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()));
  EXPECT_TRUE(image.width == 32 && image.height == 32);
  EXPECT_EQ(bytes.substr(24, 2), "\x08\x06");  // Eight bits of each of RGBA.
  EXPECT_TRUE(bytes.ends_with("IEND\xAE\x42\x60\x82"));
  image.format = PNG_FORMAT_RGBA;
  std::vector<png_byte> pixels(PNG_IMAGE_SIZE(image));
  EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
  EXPECT_EQ(image.warning_or_error, 0U) << image.message;
}

TEST(Info, DesignImageIsWritable) {
  const Answer design(0x412);
  // The process dies here when the image is constant or shorter.
  volatile char* const image = static_cast<volatile char*>(design.pointer);
  for (const uint64_t i : {uint64_t{0}, design.out - 1}) image[i] = image[i];
}

}  // namespace
