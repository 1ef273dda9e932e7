/// The picture path computed pixel by pixel, as a test expects it.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "board/pictures/picture.h"

using Bytes = std::vector<std::uint8_t>;

/// A component of a pixel in closed form, of a picture of the host.
inline std::uint8_t referenceComponent(const board::HostPicture& picture,
                                       const board::PicturePath& path, char colour, int x, int y) {
  const auto colourAt = [&](int column, int line) {
    const char* mosaics[] = {"GBRG", "BGGR", "RGGB", "GRBG"};
    return mosaics[path.bayerOrder][(line & 1) * 2 + (column & 1)];
  };
  const auto mirrored = [](int index, std::uint32_t size) {
    const int last = static_cast<int>(size) - 1;
    return last == 0 ? 0U : static_cast<std::uint32_t>(last - std::abs(last - std::abs(index)));
  };
  const auto grey = [&](int column, int line) -> int {
    const std::size_t u = path.xOffset + mirrored(column, path.width);
    const std::size_t v = path.yOffset + mirrored(line, path.height);
    if (u >= picture.width || v >= picture.height) return 0;
    const std::size_t bytes = picture.bits / 8;
    return picture.pixels[(v * picture.width + u + 1) * bytes - 1];  // The high byte is the last.
  };
  int sum = 0;
  int count = 0;
  const int reach = colourAt(x, y) == colour ? 0 : 1;
  for (int line = y - reach; line <= y + reach; ++line)
    for (int column = x - reach; column <= x + reach; ++column)
      if (colourAt(column, line) == colour) {
        sum += grey(column, line);
        ++count;
      }
  const std::string sequences[] = {"GBR", "BGR", "RGB", "GRB"};
  const char taken = sequences[path.whiteOrder][sequences[path.bayerOrder].find(colour)];
  const double gain = taken == 'B' ? path.blueGain : taken == 'G' ? path.greenGain : path.redGain;
  const int mean = (sum + count / 2) / count;
  return static_cast<std::uint8_t>(std::min(255.0, std::floor(mean * gain + 0.5)));
}

/// All pixels of a picture of the host: blue, green, red.
inline Bytes referencePicture(const board::HostPicture& picture, const board::PicturePath& path) {
  Bytes pixels;
  for (int y = 0; y < static_cast<int>(path.height); ++y)
    for (int x = 0; x < static_cast<int>(path.width); ++x)
      for (const char colour : {'B', 'G', 'R'})
        pixels.push_back(referenceComponent(picture, path, colour, x, y));
  return pixels;
}
