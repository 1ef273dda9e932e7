// The pixels of the virtual board's pictures, without the board.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "board/pictures/pixel_format.h"
#include "tests/picture_reference.h"

namespace {

using board::PicturePath;
using testing::Contains;
using testing::Each;
using testing::Gt;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Bytes render(const board::PictureSource& source, const PicturePath& path, std::int64_t number = 1) {
  Bytes pixels(std::size_t{3} * path.width * path.height, 0xEE);
  EXPECT_EQ(board::renderPicture(source, number, path, pixels), path.height);
  return pixels;
}

/// Blue, green and red of a pixel.
Bytes at(const Bytes& pixels, std::uint32_t width, std::size_t x, std::size_t y) {
  const auto* pixel = &pixels[3 * (y * width + x)];
  return {pixel, pixel + 3};
}

TEST(Pictures, MatchTheReference) {
  std::mt19937 random(1);
  const auto upTo = [&](std::uint32_t most) {
    return static_cast<std::uint32_t>(random() % (most + 1));
  };
  for (int round = 0; round < 400; ++round) {
    const bool wide = round % 20 == 0;  // Wider than a block of the demosaicing.
    const PicturePath path{.pixelFormat = upTo(7),
                           .xOffset = upTo(5),
                           .yOffset = upTo(5),
                           .width = wide ? 1000 + upTo(100) : 1 + upTo(round < 100 ? 3 : 70),
                           .height = 1 + upTo(round < 100 ? 3 : 12),
                           .bayerOrder = upTo(3),
                           .whiteOrder = upTo(3),
                           .blueGain = upTo(4095) / 1024.0,
                           .greenGain = upTo(1024) / 1024.0,
                           .redGain = upTo(2048) / 1024.0};
    const std::uint32_t width = path.width + upTo(8);
    const std::uint32_t height = path.height + upTo(8);
    const unsigned bits = round % 2 == 0 ? 8 : 16;
    Bytes raw(std::size_t{width} * height * bits / 8);
    for (auto& byte : raw) byte = static_cast<std::uint8_t>(random());
    const board::HostPicture picture{raw.data(), width, height, bits};

    ASSERT_EQ(render(picture, path), referencePicture(picture, path))
        << path.width << " x " << path.height << ", round " << round;
  }
}

TEST(Pictures, TheLinkCarriesEachFormat) {
  const std::uint16_t samples[] = {0xABCD, 0x1234, 0xFEDC};
  const struct {
    std::uint32_t format;
    Bytes link;
  } cases[] = {
      {MONO8, {0xAB, 0x12, 0xFE}},
      {MONO8_SIGNED, {0x2B, 0x92, 0x7E}},
      {MONO10, {0xAF, 0x02, 0x48, 0x00, 0xFB, 0x03}},
      {MONO10_PACKED, {0xAB, 0x03, 0x12, 0xFE, 0x03}},
      {MONO12, {0xBC, 0x0A, 0x23, 0x01, 0xED, 0x0F}},
      {MONO12_PACKED, {0xAB, 0x3C, 0x12, 0xFE, 0x0D}},
      {MONO14, {0xF3, 0x2A, 0x8D, 0x04, 0xB7, 0x3F}},
      {MONO16, {0xCD, 0xAB, 0x34, 0x12, 0xDC, 0xFE}},
  };
  for (const auto& [format, link] : cases) {
    ASSERT_EQ(board::linkBytes(format, 3), link.size()) << format;
    EXPECT_EQ(board::linkPixels(format, link.size()), 3) << format;
    EXPECT_EQ(board::linkPixels(format, link.size() - 1), 2) << format;
    Bytes packed(link.size());
    board::pack(format, samples, packed.data());
    EXPECT_EQ(packed, link) << format;
    Bytes grey(3);
    board::unpack(format, packed.data(), grey);
    EXPECT_EQ(grey, Bytes({0xAB, 0x12, 0xFE})) << format;
  }
}

TEST(Pictures, GainsAreTakenToTheNearestStepAndRounded) {
  const double gains[] = {1026.49 / 1024, 1026.51 / 1024, 0.5,  0.5, 1.5,   1.5,          0,     4,
                          kInfinity,      -kInfinity,     kNan, -1,  1e300, 3.9990234375, 1e-300};
  const std::uint8_t greys[] = {200, 200, 1, 3, 170, 171, 255, 50, 60, 60, 60, 60, 255, 1, 255};
  const std::uint8_t results[] = {200, 201, 1, 2, 255, 255, 0, 200, 240, 0, 0, 0, 255, 4, 0};
  for (std::size_t i = 0; i < std::size(gains); ++i) {
    const Bytes raw(16, greys[i]);
    const PicturePath path{
        .width = 4, .height = 4, .blueGain = gains[i], .greenGain = gains[i], .redGain = gains[i]};
    EXPECT_THAT(render(board::HostPicture{raw.data(), 4, 4}, path), Each(results[i])) << gains[i];
  }
}

TEST(Pictures, SimulatorShowsAMovingRampOfItsSize) {
  for (const auto& [format, columns] : {std::pair{MONO8, 12}, {MONO12_PACKED, 8}, {MONO14, 6}}) {
    const PicturePath path{
        .pixelFormat = static_cast<std::uint32_t>(format), .width = 16, .height = 8};
    const auto pixels = render(board::Simulator{12, 5, 7}, path, 40);
    EXPECT_THAT(at(pixels, 16, 2, 3), Each(2 + 3 + 7 * 40 - 256));
    const auto last = static_cast<std::size_t>(columns - 1);
    EXPECT_THAT(at(pixels, 16, last, 1), Contains(Gt(0)));
    EXPECT_THAT(at(pixels, 16, last + 2, 1), Each(0));  // Means reach a column further.
    EXPECT_THAT(at(pixels, 16, 2, 5), Contains(Gt(0)));
    EXPECT_THAT(at(pixels, 16, 2, 7), Each(0));
    EXPECT_THAT(render(board::Simulator{12, 0xFFFFFFFF, 7}, path), Each(0));
  }
}

TEST(Pictures, CameraShowsAChartWithThePortAndAMovingDisc) {
  const PicturePath whole;
  const auto colour = [&](unsigned port, std::int64_t number, std::size_t x, std::size_t y) {
    const auto pixel = at(render(board::Camera{port}, whole, number), 1024, x, y);
    std::string name;
    for (const auto component : pixel) name += component > 180 ? 'X' : component > 90 ? 'x' : '.';
    return name;  // Blue, green, red.
  };
  EXPECT_EQ(colour(0, 1, 700, 100), "..X");
  EXPECT_EQ(colour(0, 1, 450, 100), ".X.");
  EXPECT_EQ(colour(0, 1, 830, 100), "X..");
  EXPECT_EQ(colour(0, 30, 1000, 448), "XXX");
  EXPECT_EQ(colour(0, 1, 640, 640), "x..");  // 0 has a dot where 1 has none.
  EXPECT_EQ(colour(1, 1, 640, 640), "XXX");
  EXPECT_EQ(colour(0, 10, 80, 448), ".xX");
  EXPECT_EQ(colour(0, 40, 80, 448), "...");

  // A white part shows the noise, which belongs to the port and the picture.
  const PicturePath white{.width = 32, .height = 32};
  const auto noise = render(board::Camera{2}, white, 5);
  EXPECT_THAT(noise, Each(testing::AllOf(testing::Ge(239 - 7), testing::Le(239 + 7))));
  EXPECT_EQ(render(board::Camera{2}, white, 5), noise);
  EXPECT_NE(render(board::Camera{2}, white, 6), noise);
  EXPECT_NE(render(board::Camera{1}, white, 5), noise);

  const auto picture = render(board::Camera{2}, whole, 5);
  // A region that starts at an odd column starts with another colour and shows the same.
  PicturePath inner{.xOffset = 3, .yOffset = 4, .width = 64, .height = 9};
  inner.bayerOrder = inner.whiteOrder = GreenFollowedByRed;
  const auto part = render(board::Camera{2}, inner, 5);
  for (std::size_t x = 1; x < 63; ++x)
    EXPECT_EQ(at(part, 64, x, 5), at(picture, 1024, x + 3, 9)) << x;

  // The sensor ends where the largest region does.
  const auto corner =
      render(board::Camera{2}, {.xOffset = 8184, .yOffset = 65527, .width = 16, .height = 16});
  EXPECT_THAT(at(corner, 16, 7, 7), Contains(Gt(0)));
  EXPECT_THAT(at(corner, 16, 9, 7), Each(0));
  EXPECT_THAT(at(corner, 16, 7, 9), Each(0));
}

TEST(Pictures, OnlyWholeLinesThatFitAreWritten) {
  const Bytes raw(64, 100);
  const board::HostPicture source{raw.data(), 8, 8};
  Bytes pixels(2 * 24 + 23, 0xEE);
  EXPECT_EQ(board::renderPicture(source, 1, {.width = 8, .height = 8}, pixels), 2);
  EXPECT_THAT(std::span(pixels).first(48), Each(100));
  EXPECT_THAT(std::span(pixels).subspan(48), Each(0xEE));
  constexpr auto kMost = std::numeric_limits<std::uint32_t>::max();
  for (const auto& [width, height] : {std::pair{0U, 8U}, {8U, 0U}, {kMost, kMost}})
    EXPECT_EQ(board::renderPicture(source, 1, {.width = width, .height = height}, pixels), 0);
  const PicturePath far{.xOffset = kMost, .yOffset = kMost, .width = 8, .height = kMost};
  EXPECT_EQ(board::renderPicture(source, 1, far, pixels), 2);
  EXPECT_THAT(std::span(pixels).first(48), Each(0));
  // Of numbers that are no value of an enumeration, the low bits count.
  const PicturePath odd{
      .pixelFormat = kMost - 6, .width = 8, .height = 8, .bayerOrder = kMost, .whiteOrder = kMost};
  EXPECT_THAT(render(source, odd), Each(100));
}

}  // namespace
