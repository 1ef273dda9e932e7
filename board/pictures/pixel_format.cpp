#include "board/pictures/pixel_format.h"

#include <iterator>

namespace board {
namespace {

enum class Layout { kBytes, kWords, kPairs };

struct Format {
  unsigned depth;
  Layout layout;
  std::uint8_t flip = 0;  ///< Bits of a byte that are sent the other way round.
};

/// By `CameraPixelFormat`.
constexpr Format kFormats[] = {
    {8, Layout::kBytes},  {8, Layout::kBytes, 0x80}, {10, Layout::kWords}, {10, Layout::kPairs},
    {12, Layout::kWords}, {12, Layout::kPairs},      {16, Layout::kWords}, {14, Layout::kWords}};

constexpr Format formatOf(std::uint32_t number) { return kFormats[number % std::size(kFormats)]; }

constexpr unsigned linkBits(std::uint32_t format) {
  const Layout layout = formatOf(format).layout;
  if (layout == Layout::kWords) return 16;
  return layout == Layout::kPairs ? 12 : 8;
}

constexpr std::uint8_t high(unsigned sample) { return static_cast<std::uint8_t>(sample >> 8); }

}  // namespace

std::uint64_t linkBytes(std::uint32_t format, std::uint64_t pixels) {
  return (pixels * linkBits(format) + 7) / 8;
}

std::uint64_t linkPixels(std::uint32_t format, std::uint64_t bytes) {
  return bytes * 8 / linkBits(format);
}

void pack(std::uint32_t format, std::span<const std::uint16_t> samples, std::uint8_t* link) {
  const auto [depth, layout, flip] = formatOf(format);
  const unsigned unused = 16 - depth;
  switch (layout) {
    case Layout::kBytes:
      for (const unsigned sample : samples) *link++ = high(sample) ^ flip;
      return;
    case Layout::kWords:
      for (const unsigned sample : samples) {
        *link++ = static_cast<std::uint8_t>(sample >> unused);
        *link++ = high(sample >> unused);
      }
      return;
    case Layout::kPairs:
      for (std::size_t i = 0; i < samples.size(); i += 2, link += 3) {
        const bool whole = i + 1 < samples.size();
        const unsigned next = whole ? samples[i + 1] : 0;
        link[0] = high(samples[i]);
        link[1] =
            static_cast<std::uint8_t>((samples[i] & 0xFF) >> unused | (next & 0xFF) >> unused << 4);
        if (whole) link[2] = high(next);
      }
      return;
  }
}

void unpack(std::uint32_t format, const std::uint8_t* link, std::span<std::uint8_t> grey) {
  const auto [depth, layout, flip] = formatOf(format);
  switch (layout) {
    case Layout::kBytes:
      for (auto& pixel : grey) pixel = *link++ ^ flip;
      return;
    case Layout::kWords:
      for (auto& pixel : grey) {
        pixel = static_cast<std::uint8_t>((link[0] | link[1] << 8) >> (depth - 8));
        link += 2;
      }
      return;
    case Layout::kPairs:
      for (std::size_t i = 0; i < grey.size(); i += 2) grey[i] = link[i / 2 * 3];
      for (std::size_t i = 1; i < grey.size(); i += 2) grey[i] = link[i / 2 * 3 + 2];
      return;
  }
}

}  // namespace board
