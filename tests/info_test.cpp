#include <malloc.h>
#include <png.h>
#include <unistd.h>

#include <climits>
#include <string_view>

#include "tests/applet_test.h"

namespace {

using namespace fixture;

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
  Applet first(kNoDefaults);
  const uint64_t design = designOf(first.device());
  EXPECT_NE(design, 0U);
  Applet second(kNoDefaults);
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
  for (const std::string& line : linesOf(contentOf(TEST_DATA "/info.txt"))) {
    if (line.starts_with('#')) continue;
    std::istringstream words(line);
    std::string property, text;
    int result = 0;
    std::getline(words >> property >> result >> std::ws, text);
    const bool written = !text.empty();
    if (text == "\"\"") text.clear();
    expectAnswer(std::stoi(property, nullptr, 0), result, kUntouched, written,
                 written ? text.c_str() : nullptr);
  }
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
  const Lines rows = linesOf(contentOf(TEST_DATA "/value_names.txt"));
  EXPECT_FALSE(rows.empty());
  for (const std::string& row : rows)
    EXPECT_EQ(
        fmt::format("{} {}", row.substr(0, row.find(' ')), valueOf(row.substr(0, row.find(' ')))),
        row);
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
