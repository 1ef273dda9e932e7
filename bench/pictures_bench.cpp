/// Pictures of the virtual board: pixels per second on one core, beside a plain copy of as many
/// output bytes, which is the floor, and, where it is installed, OpenCV's bilinear demosaicing of
/// the same raw picture, which has no gains.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "board/pictures/picture.h"

#ifdef VELMORA_OPENCV
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

constexpr std::uint32_t kWidth = 1024;
constexpr std::uint32_t kHeight = 1024;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

std::vector<std::uint8_t> randomBytes(std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  std::uint32_t state = 1;
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>((state = state * 1664525 + 1) >> 24);
  return bytes;
}

void countPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kPixels));
}

void render(benchmark::State& state, const board::PictureSource& source, std::uint32_t format) {
  const board::PicturePath path{
      .pixelFormat = format, .blueGain = 1.5, .greenGain = 1.0, .redGain = 1.75};
  std::vector<std::uint8_t> pixels(3 * kPixels);
  std::int64_t number = 0;
  for (auto _ : state) {
    board::renderPicture(source, ++number, path, pixels);
    benchmark::ClobberMemory();
  }
  countPixels(state);
}

void copyOfTheOutput(benchmark::State& state) {
  const auto from = randomBytes(3 * kPixels);
  std::vector<std::uint8_t> to(from.size());
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), to.size());
    benchmark::ClobberMemory();
  }
  countPixels(state);
}
BENCHMARK(copyOfTheOutput)->Unit(benchmark::kMicrosecond);

void hostPicture(benchmark::State& state, std::uint32_t format, unsigned bits) {
  const auto raw = randomBytes(kPixels * bits / 8);
  render(state, board::HostPicture{raw.data(), kWidth, kHeight, bits}, format);
}
BENCHMARK_CAPTURE(hostPicture, mono8, MONO8, 8U)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(hostPicture, mono12, MONO12, 16U)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(hostPicture, mono12Packed, MONO12_PACKED, 16U)->Unit(benchmark::kMicrosecond);

void camera(benchmark::State& state) { render(state, board::Camera{0}, MONO8); }
BENCHMARK(camera)->Unit(benchmark::kMicrosecond);

void simulator(benchmark::State& state) {
  render(state, board::Simulator{kWidth, kHeight - 1, 1}, MONO8);
}
BENCHMARK(simulator)->Unit(benchmark::kMicrosecond);

#ifdef VELMORA_OPENCV
void openCv(benchmark::State& state) {
  cv::setNumThreads(1);
  auto raw = randomBytes(kPixels);
  const cv::Mat from(kHeight, kWidth, CV_8UC1, raw.data());
  cv::Mat to;
  for (auto _ : state) {
    cv::demosaicing(from, to, cv::COLOR_BayerBG2BGR);  // Red is followed by green.
    benchmark::ClobberMemory();
  }
  countPixels(state);
}
BENCHMARK(openCv)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
