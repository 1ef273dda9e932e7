#include "board/pictures/pixel_format.h"

#include <algorithm>
#include <iterator>

namespace board {
namespace {

enum class Layout { kBytes, kSignedBytes, kWords, kPairs };

struct Format {
  unsigned depth;
  Layout layout;
};

/// By `CameraPixelFormat`.
constexpr Format kFormats[] = {
    {8, Layout::kBytes},  {8, Layout::kSignedBytes}, {10, Layout::kWords}, {10, Layout::kPairs},
    {12, Layout::kWords}, {12, Layout::kPairs},      {16, Layout::kWords}, {14, Layout::kWords}};

constexpr Format formatOf(std::uint32_t number) { return kFormats[number % std::size(kFormats)]; }

constexpr unsigned linkBits(Layout layout) {
  if (layout == Layout::kWords) return 16;
  return layout == Layout::kPairs ? 12 : 8;
}

constexpr std::uint8_t kSignBit = 0x80;

constexpr unsigned fullScale(std::uint8_t sample) { return sample * 257U; }
constexpr unsigned fullScale(std::uint16_t sample) { return sample; }
constexpr std::uint8_t high(std::uint8_t sample) { return sample; }
constexpr std::uint8_t high(std::uint16_t sample) { return static_cast<std::uint8_t>(sample >> 8); }

template <class Sample>
void packWords(unsigned depth, std::span<const Sample> samples, std::uint8_t* link) {
  for (const Sample sample : samples) {
    const unsigned value = fullScale(sample) >> (16 - depth);
    *link++ = static_cast<std::uint8_t>(value);
    *link++ = static_cast<std::uint8_t>(value >> 8);
  }
}

template <class Sample>
void packPairs(unsigned depth, std::span<const Sample> samples, std::uint8_t* link) {
  const auto low = [&](Sample sample) {
    return fullScale(sample) >> (16 - depth) & ((1U << (depth - 8)) - 1);
  };
  std::size_t i = 0;
  for (; i + 1 < samples.size(); i += 2) {
    *link++ = high(samples[i]);
    *link++ = static_cast<std::uint8_t>(low(samples[i]) | low(samples[i + 1]) << 4);
    *link++ = high(samples[i + 1]);
  }
  if (i == samples.size()) return;
  *link++ = high(samples[i]);
  *link = static_cast<std::uint8_t>(low(samples[i]));
}

template <class Sample>
void packSamples(Format format, std::span<const Sample> samples, std::uint8_t* link) {
  switch (format.layout) {
    case Layout::kBytes:
      std::ranges::transform(samples, link, [](Sample sample) { return high(sample); });
      return;
    case Layout::kSignedBytes:
      std::ranges::transform(samples, link, [](Sample sample) {
        return static_cast<std::uint8_t>(high(sample) ^ kSignBit);
      });
      return;
    case Layout::kWords:
      return packWords(format.depth, samples, link);
    case Layout::kPairs:
      return packPairs(format.depth, samples, link);
  }
}

}  // namespace

std::uint64_t linkBytes(std::uint32_t format, std::uint64_t pixels) {
  return (pixels * linkBits(formatOf(format).layout) + 7) / 8;
}

std::uint64_t linkPixels(std::uint32_t format, std::uint64_t bytes) {
  return bytes * 8 / linkBits(formatOf(format).layout);
}

void pack(std::uint32_t format, std::span<const std::uint8_t> samples, std::uint8_t* link) {
  packSamples(formatOf(format), samples, link);
}

void pack(std::uint32_t format, std::span<const std::uint16_t> samples, std::uint8_t* link) {
  packSamples(formatOf(format), samples, link);
}

void unpack(std::uint32_t format, const std::uint8_t* link, std::span<std::uint8_t> grey) {
  const auto [depth, layout] = formatOf(format);
  switch (layout) {
    case Layout::kBytes:
      std::copy_n(link, grey.size(), grey.begin());
      return;
    case Layout::kSignedBytes:
      std::transform(link, link + grey.size(), grey.begin(),
                     [](std::uint8_t byte) { return static_cast<std::uint8_t>(byte ^ kSignBit); });
      return;
    case Layout::kWords:
      for (auto& pixel : grey) {
        pixel = static_cast<std::uint8_t>((link[0] | link[1] << 8) >> (depth - 8));
        link += 2;
      }
      return;
    case Layout::kPairs:
      for (std::size_t i = 0; i < grey.size(); ++i) grey[i] = link[i / 2 * 3 + i % 2 * 2];
      return;
  }
}

}  // namespace board
