#include "board/pictures/picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

#include "board/pictures/demosaic.h"

namespace board {
namespace {

enum Component { kBlue, kGreen, kRed };
/// The first two components in a Bayer order's first line, then the third.
constexpr Component kSequences[][3] = {
    {kGreen, kBlue, kRed}, {kBlue, kGreen, kRed}, {kRed, kGreen, kBlue}, {kGreen, kRed, kBlue}};

const auto& sequence(std::uint32_t bayerOrder) {
  return kSequences[bayerOrder % std::size(kSequences)];
}

std::uint16_t steps(double gain) {
  if (!(gain > 0)) return 0;  // Not a number, too.
  return static_cast<std::uint16_t>(std::lround(std::min(gain * kGainSteps, kMaximumGain)));
}

/// The filter hands its components on in the sequence of its own order, and the white balance takes
/// them for the sequence of its order: if the two differ, gains go to wrong colours.
std::array<std::uint16_t, 3> gainsOf(const PicturePath& path) {
  const double gains[] = {path.blueGain, path.greenGain, path.redGain};
  std::array<std::uint16_t, 3> result{};
  for (std::size_t i = 0; i < result.size(); ++i)
    result[sequence(path.bayerOrder)[i]] = steps(gains[sequence(path.whiteOrder)[i]]);
  return result;
}

/// Lines of the region with the columns beside it; three of them at a time.
class RegionLines {
 public:
  RegionLines(LinkReader reader, const PicturePath& path)
      : reader_(std::move(reader)), path_(path) {
    for (auto& line : lines_) line.resize(path.width + std::size_t{2});
  }

  void load(std::uint64_t index) {
    auto& line = lines_[index % lines_.size()];
    const std::size_t width = path_.width;
    reader_.read(path_.xOffset, path_.yOffset + index, std::span(line).subspan(1, width));
    line[0] = line[std::min<std::size_t>(2, width)];
    line[width + 1] = line[std::max<std::size_t>(width, 2) - 1];
  }

  const std::uint8_t* operator[](std::uint64_t index) const {
    return lines_[index % lines_.size()].data() + 1;
  }

 private:
  LinkReader reader_;
  const PicturePath& path_;
  std::array<std::vector<std::uint8_t>, 3> lines_;
};

}  // namespace

std::size_t renderPicture(const PictureSource& source, std::int64_t number, const PicturePath& path,
                          std::span<std::uint8_t> pixels) {
  const std::size_t width = path.width;
  if (width == 0) return 0;
  const std::size_t pitch = width * kBytesPerPixel;
  const std::size_t count = std::min<std::size_t>(path.height, pixels.size() / pitch);
  if (count == 0) return 0;

  RegionLines lines(LinkReader(source, number, path.pixelFormat), path);
  const auto* first = sequence(path.bayerOrder);
  MosaicLines mosaic{.width = width,
                     .startsGreen = first[0] == kGreen,
                     .hasBlue = first[2] != kBlue,
                     .gains = gainsOf(path)};
  const std::size_t last = path.height - std::size_t{1};
  lines.load(0);
  for (std::size_t i = 0; i < count; ++i) {
    if (i < last) lines.load(i + 1);
    // The line beyond a border is the one inside it; a line alone is its own neighbour.
    const std::size_t previous = i > 0 ? i - 1 : std::min<std::size_t>(1, last);
    const std::size_t next = i < last ? i + 1 : previous;
    mosaic.above = lines[previous];
    mosaic.line = lines[i];
    mosaic.below = lines[next];
    demosaicLine(mosaic, pixels.data() + i * pitch);
    mosaic.startsGreen = !mosaic.startsGreen;
    mosaic.hasBlue = !mosaic.hasBlue;
  }
  return count;
}

}  // namespace board
