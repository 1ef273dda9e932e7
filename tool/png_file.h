/// PNG files: pictures that are written, and those that a camera plays.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velmora/virtual_board.h"

namespace velmora::tool {

/// Writes a picture beside the file and renames, so that there is never half of one; `Failure` when
/// that does not work.
void writePng(const std::string& file, const VirtualBoardPicture& picture);

/// What a camera with a Bayer mosaic sees of a picture.
struct RawPicture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  unsigned bits = 8;  ///< Per pixel: 8 or 16, in the byte order of the machine.
  std::vector<std::uint8_t> pixels;
};

/// A grey picture is taken for what comes out of the mosaic. Of a coloured one each pixel keeps one
/// component: red, green in even lines and green, blue in odd ones. `Failure` for a file that is no
/// PNG or whose picture is larger than the board's largest.
RawPicture readRawPng(const std::string& file);

}  // namespace velmora::tool
