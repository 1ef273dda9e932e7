#include "board/pictures/source.h"

#include <algorithm>
#include <cstring>

#include "board/pictures/chart.h"
#include "board/pictures/pixel_format.h"

namespace board {
namespace {

constexpr std::uint64_t kSensorWidth = 8192;
constexpr std::uint64_t kSensorHeight = 65535;

struct Size {
  std::uint64_t width;
  std::uint64_t height;
};

Size sizeOf(const Camera&, std::uint32_t) { return {kSensorWidth, kSensorHeight}; }
Size sizeOf(const Simulator& simulator, std::uint32_t format) {
  // The height is a 32-bit count: 4294967295 means no lines.
  return {linkPixels(format, simulator.width), static_cast<std::uint32_t>(simulator.height + 1)};
}
Size sizeOf(const HostPicture& picture, std::uint32_t) { return {picture.width, picture.height}; }

}  // namespace

LinkReader::LinkReader(const PictureSource& source, std::int64_t picture, std::uint32_t format)
    : source_(source), picture_(static_cast<std::uint64_t>(picture)), format_(format) {
  const auto size = std::visit([&](const auto& kind) { return sizeOf(kind, format); }, source);
  width_ = size.width;
  height_ = size.height;
}

void LinkReader::read(std::uint64_t column, std::uint64_t line, std::span<std::uint8_t> grey) {
  const auto inside = line < height_ && column < width_ ? width_ - column : 0;
  const auto pixels = grey.first(std::min<std::uint64_t>(grey.size(), inside));
  std::ranges::fill(grey.subspan(pixels.size()), std::uint8_t{0});
  if (pixels.empty()) return;
  samples_.resize(pixels.size());
  std::visit([&](const auto& source) { expose(source, column, line); }, source_);
  link_.resize(linkBytes(format_, samples_.size()));
  pack(format_, samples_, link_.data());
  unpack(format_, link_.data(), pixels);
}

void LinkReader::expose(const Camera& camera, std::uint64_t column, std::uint64_t line) {
  exposeChart(camera.port, picture_, line, column, samples_);
}

void LinkReader::expose(const Simulator& simulator, std::uint64_t column, std::uint64_t line) {
  auto level = static_cast<std::uint8_t>(column + line + simulator.roll * picture_);
  for (auto& sample : samples_) sample = fullScale(level++);
}

void LinkReader::expose(const HostPicture& picture, std::uint64_t column, std::uint64_t line) {
  const std::uint64_t pixel = line * picture.width + column;
  if (picture.bits == 8) {
    std::transform(picture.pixels + pixel, picture.pixels + pixel + samples_.size(),
                   samples_.begin(), fullScale);
  } else {
    std::memcpy(samples_.data(), picture.pixels + 2 * pixel, 2 * samples_.size());
  }
}

}  // namespace board
