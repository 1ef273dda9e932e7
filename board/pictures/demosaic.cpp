#include "board/pictures/demosaic.h"

#include <algorithm>

namespace board {
namespace {

/// Pixels that are computed as planes before they are interleaved: few enough for the first cache.
constexpr std::size_t kBlock = 512;
using Plane = std::array<std::uint8_t, kBlock>;

/// All ones in every other byte.
constexpr auto kAlternating = [] {
  std::array<std::uint8_t, kBlock + 1> bytes{};
  for (std::size_t i = 0; i < bytes.size(); i += 2) bytes[i] = 0xFF;
  return bytes;
}();

// Everything below works on bytes and 16-bit words without branches: compilers make vectors of it.
// It is inlined into a function for each kind of processor.
using Byte = std::uint8_t;
using Word = std::uint16_t;

[[gnu::always_inline]] inline Byte mean(Byte a, Byte b) {
  return static_cast<Byte>((a + b + 1) >> 1);
}

/// (a + b + c + d + 2) / 4 in bytes. The mean of means is too large by one if it and either
/// of them were rounded up.
[[gnu::always_inline]] inline Byte mean(Byte a, Byte b, Byte c, Byte d) {
  const Byte ab = mean(a, b);
  const Byte cd = mean(c, d);
  return static_cast<Byte>(mean(ab, cd) - (((a ^ b) | (c ^ d)) & (ab ^ cd) & 1));
}

[[gnu::always_inline]] inline Byte choose(Byte mask, Byte ones, Byte zeros) {
  return static_cast<Byte>((ones & mask) | (zeros & ~mask));
}

/// (value * gain + 512) / 1024, the division done in two steps for the sake of 16 bits.
[[gnu::always_inline]] inline Byte amplify(Byte value, Word gain) {
  const Word quadruple = static_cast<Word>((value << 8) * gain >> 16);
  return static_cast<Byte>(std::min<Word>(static_cast<Word>(quadruple + 2) >> 2, 255));
}

struct alignas(64) Planes {
  Plane own;  ///< The colour that shares the line with green.
  Plane green;
  Plane other;
};

[[gnu::always_inline]] inline void interpolate(const MosaicLines& lines, std::size_t first,
                                               std::size_t count, Planes& planes) {
  const Byte* above = lines.above + first;
  const Byte* line = lines.line + first;
  const Byte* below = lines.below + first;
  const Byte* greenHere = kAlternating.data() + (lines.startsGreen ? 0 : 1);
  const auto [blueGain, greenGain, redGain] = lines.gains;
  const Word ownGain = lines.hasBlue ? blueGain : redGain;
  const Word otherGain = lines.hasBlue ? redGain : blueGain;
  for (std::size_t i = 0; i < count; ++i) {
    const Byte beside = mean(line[i - 1], line[i + 1]);
    const Byte over = mean(above[i], below[i]);
    const Byte cross = mean(line[i - 1], line[i + 1], above[i], below[i]);
    const Byte corners = mean(above[i - 1], above[i + 1], below[i - 1], below[i + 1]);
    planes.own[i] = amplify(choose(greenHere[i], beside, line[i]), ownGain);
    planes.green[i] = amplify(choose(greenHere[i], line[i], cross), greenGain);
    planes.other[i] = amplify(choose(greenHere[i], over, corners), otherGain);
  }
}

[[gnu::always_inline]] inline void demosaic(const MosaicLines& lines, Byte* __restrict pixels) {
  Planes planes;
  const Plane& blue = lines.hasBlue ? planes.own : planes.other;
  const Plane& red = lines.hasBlue ? planes.other : planes.own;
  for (std::size_t first = 0; first < lines.width; first += kBlock) {
    const std::size_t count = std::min(kBlock, lines.width - first);
    interpolate(lines, first, count, planes);
    for (std::size_t i = 0; i < count; ++i) {
      *pixels++ = blue[i];
      *pixels++ = planes.green[i];
      *pixels++ = red[i];
    }
  }
}

void demosaicAnywhere(const MosaicLines& lines, Byte* pixels) { demosaic(lines, pixels); }

#if defined(__x86_64__)
[[gnu::target("avx2")]] void demosaicAvx2(const MosaicLines& lines, Byte* pixels) {
  demosaic(lines, pixels);
}

[[gnu::target("avx512vbmi,avx512vl")]] void demosaicAvx512(const MosaicLines& lines, Byte* pixels) {
  demosaic(lines, pixels);
}
#endif

auto bestForProcessor() {
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vl"))
    return demosaicAvx512;
  if (__builtin_cpu_supports("avx2")) return demosaicAvx2;
#endif
  return demosaicAnywhere;
}

}  // namespace

void demosaicLine(const MosaicLines& lines, std::uint8_t* pixels) {
  static const auto best = bestForProcessor();
  best(lines, pixels);
}

}  // namespace board
