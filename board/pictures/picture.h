/// The pixels of the pictures that the board delivers, computed from what its design was told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "board/pictures/source.h"
#include "velmora/values.h"

namespace board {

inline constexpr std::size_t kBytesPerPixel = 3;  ///< Blue, green, red.

/// A port's picture path: the values of its design parameters. Any values will do: of the
/// enumerations count the low bits, gains are taken to the nearest step in their range, and
/// not-a-number as 0.
struct PicturePath {
  std::uint32_t pixelFormat = MONO8;  ///< `CameraPixelFormat`.
  std::uint32_t xOffset = 0;
  std::uint32_t yOffset = 0;
  std::uint32_t width = 1024;
  std::uint32_t height = 1024;
  std::uint32_t bayerOrder = RedFollowedByGreen;  ///< `BayerOrder` of the region, for the filter.
  std::uint32_t whiteOrder = RedFollowedByGreen;  ///< The same for the white balance.
  double blueGain = 1;
  double greenGain = 1;
  double redGain = 1;
};

/// Writes the region's lines of three bytes per pixel (blue, green, red), as many whole ones as fit
/// into `pixels`, and returns their number. Pictures are numbered from 1.
///
/// On the way the data of the link are unpacked, cut to the region (black where the source's
/// picture does not reach), taken to eight bits, demosaiced with lines and columns mirrored at the
/// region's borders, and balanced.
std::size_t renderPicture(const PictureSource& source, std::int64_t number, const PicturePath& path,
                          std::span<std::uint8_t> pixels);

}  // namespace board
