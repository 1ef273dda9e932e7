#include "board/pictures/chart.h"

#include <array>
#include <iterator>

#include "board/pictures/pixel_format.h"

namespace board {
namespace {

using Colour = std::array<std::uint8_t, 3>;  // Red, green, blue.

constexpr int kSize = 1024;
constexpr int kHalf = kSize / 2;
/// Noise is added to values between these without leaving a byte.
constexpr std::uint8_t kDark = 16;
constexpr std::uint8_t kBright = 239;
constexpr std::uint8_t kMiddle = 128;
constexpr Colour kDisc{kBright, kMiddle, kDark};
constexpr Colour kPaper{200, 200, 200};
constexpr Colour kInk{40, 60, 160};

constexpr int kDiscLine = 448;
constexpr int kDiscRadius = 48;
constexpr std::uint64_t kDiscStep = 8;

constexpr int kDigitWidth = 5;
constexpr int kDigitHeight = 7;
constexpr int kDigitDot = 64;
constexpr std::uint8_t kDigits[][kDigitHeight] = {
    {0b01110, 0b10001, 0b10011, 0b10101, 0b11001, 0b10001, 0b01110},
    {0b00100, 0b01100, 0b00100, 0b00100, 0b00100, 0b00100, 0b01110},
    {0b01110, 0b10001, 0b00001, 0b00010, 0b00100, 0b01000, 0b11111},
    {0b11111, 0b00010, 0b00100, 0b00010, 0b00001, 0b10001, 0b01110},
};

constexpr Colour grey(int level) {  // 0 to 255
  const auto value = static_cast<std::uint8_t>(kDark + level * (kBright - kDark) / 255);
  return {value, value, value};
}

/// White, yellow, cyan, green, magenta, red, blue, black: bright ones above dimmer ones.
Colour colourBar(int x, int y) {
  const int bar = x / (kSize / 8);
  const auto on = y < 192 ? kBright : kMiddle;
  return {bar & 2 ? kDark : on, bar & 4 ? kDark : on, bar & 1 ? kDark : on};
}

/// Rings that get finer outwards, to four pixels each.
Colour resolution(int x, int y) {
  const int phase = (x * x + y * y) / 8 % 256;
  return grey(phase < 128 ? 2 * phase : 2 * (255 - phase));
}

Colour digit(unsigned port, int x, int y) {
  const bool inside =
      x >= 0 && y >= 0 && x < kDigitWidth * kDigitDot && y < kDigitHeight * kDigitDot;
  if (!inside) return kPaper;
  const int dots = kDigits[port % std::size(kDigits)][y / kDigitDot];
  return dots >> (kDigitWidth - 1 - x / kDigitDot) & 1 ? kInk : kPaper;
}

Colour chart(unsigned port, int discColumn, int x, int y) {
  const int discX = (x - discColumn + kSize + kHalf) % kSize - kHalf;
  const int discY = y - kDiscLine;
  if (discX * discX + discY * discY < kDiscRadius * kDiscRadius) return kDisc;
  if (y < 384) return colourBar(x, y);
  if (y < kHalf) return grey(x / 4);
  if (x < kHalf) return resolution(x - kHalf / 2, y - kHalf * 3 / 2);
  return digit(port, x - kHalf - 96, y - kHalf - 32);
}

constexpr std::uint32_t scramble(std::uint32_t bits) {
  bits = (bits ^ bits >> 16) * 0x7FEB352DU;
  bits = (bits ^ bits >> 15) * 0x846CA68BU;
  return bits ^ bits >> 16;
}

}  // namespace

void exposeChart(unsigned port, std::uint64_t picture, std::uint64_t line, std::uint64_t column,
                 std::span<std::uint16_t> samples) {
  const int y = static_cast<int>(line % kSize);
  const int discColumn = static_cast<int>(picture * kDiscStep % kSize);
  const auto seed = scramble(scramble(static_cast<std::uint32_t>(picture) * 4 + port) +
                             static_cast<std::uint32_t>(line));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const auto x = static_cast<std::uint32_t>(column + i);
    // Lines of red and green alternate with lines of green and blue.
    samples[i] = chart(port, discColumn, static_cast<int>(x % kSize), y)[x % 2 + line % 2];
  }
  // Two dice of eight faces.
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const std::uint32_t random = scramble(seed + static_cast<std::uint32_t>(column + i));
    samples[i] = fullScale(static_cast<std::uint8_t>(samples[i] + random % 8 + random / 8 % 8 - 7));
  }
}

}  // namespace board
