#include "tool/live_pictures.h"

#include <algorithm>
#include <utility>

namespace velmora::tool {
namespace {

constexpr int kQuality = 85;
constexpr std::uint32_t kLargest = 2048;  ///< Side of what is shown, in pixels.
constexpr std::size_t kPixelBytes = 3;
constexpr std::chrono::seconds kStillWatched{2};

}  // namespace

std::string JpegEncoder::encode(const VirtualBoardPicture& picture) {
  const std::uint32_t step = 1 + (std::max(picture.width, picture.height) - 1) / kLargest;
  const std::uint32_t width = 1 + (picture.width - 1) / step;
  const std::uint32_t height = 1 + (picture.height - 1) / step;
  const std::uint8_t* pixels = picture.pixels;
  if (step > 1) {
    reduced_.resize(std::size_t{width} * height * kPixelBytes);
    std::uint8_t* to = reduced_.data();
    for (std::uint32_t y = 0; y < height; ++y)
      for (std::uint32_t x = 0; x < width; ++x, to += kPixelBytes)
        std::copy_n(&picture.pixels[(std::size_t{y} * picture.width + x) * step * kPixelBytes],
                    kPixelBytes, to);
    pixels = reduced_.data();
  }
  unsigned char* bytes = nullptr;
  unsigned long size = 0;  // NOLINT(google-runtime-int): the library's type.
  const int failed =
      tjCompress2(handle_.get(), pixels, static_cast<int>(width), 0, static_cast<int>(height),
                  TJPF_BGR, &bytes, &size, TJSAMP_420, kQuality, 0);
  std::string jpeg;
  if (failed == 0) jpeg.assign(bytes, bytes + size);
  tjFree(bytes);
  return jpeg;
}

void LivePictures::publish(LivePicture picture) {
  {
    const std::lock_guard guard(mutex_);
    picture.serial = ++serial_;
    Shown& place = latest_.at(picture.port);
    place = std::make_shared<LivePicture>(std::move(picture));
  }
  changed_.notify_all();
}

std::vector<LivePictures::Shown> LivePictures::next(Viewer& viewer,
                                                    std::chrono::milliseconds longest) {
  std::vector<Shown> pictures;
  std::unique_lock guard(mutex_);
  const auto end = std::chrono::steady_clock::now() + longest;
  do {
    asked_ = std::chrono::steady_clock::now();
    for (unsigned port = 0; port < kPorts; ++port) {
      const Shown& latest = latest_[port];
      if (!latest || !viewer.wanted[port] || viewer.seen[port] == latest->serial) continue;
      viewer.seen[port] = latest->serial;
      pictures.push_back(latest);
    }
  } while (pictures.empty() && changed_.wait_until(guard, end) != std::cv_status::timeout);
  return pictures;
}

bool LivePictures::watched() const {
  const std::lock_guard guard(mutex_);
  return std::chrono::steady_clock::now() - asked_ < kStillWatched;
}

}  // namespace velmora::tool
