/// Where raw pictures come from. All of them reach the picture path as what the link carries.
#pragma once

#include <cstdint>
#include <span>
#include <variant>
#include <vector>

namespace board {

/// The virtual camera: a test chart with the number of the port and a disc that moves with each
/// picture, seen through a colour mosaic whose first line is red followed by green, with noise. The
/// sensor is as large as the largest region; the chart repeats every 1024 columns and lines.
struct Camera {
  unsigned port = 0;
};

/// The camera simulator by the values of its registers: a grey ramp over columns and lines that
/// moves by the roll value each picture.
struct Simulator {
  std::uint32_t width = 0;   ///< Bytes on the link, as many pixels as the format makes of them.
  std::uint32_t height = 0;  ///< Lines - 1.
  std::uint32_t roll = 0;
};

/// A picture of the host, which keeps it. Samples of 16 bits are in the byte order of the machine
/// and need no alignment.
struct HostPicture {
  const std::uint8_t* pixels = nullptr;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  unsigned bits = 8;  ///< Per sample: 8 or 16.
};

using PictureSource = std::variant<Camera, Simulator, HostPicture>;

/// Takes lines of one picture off the link.
class LinkReader {
 public:
  LinkReader(const PictureSource& source, std::int64_t picture, std::uint32_t format);

  /// The eight high bits of a line from a column on; black outside the picture.
  void read(std::uint64_t column, std::uint64_t line, std::span<std::uint8_t> grey);

 private:
  /// Fills `samples_` with a piece of a line.
  void expose(const Camera& camera, std::uint64_t column, std::uint64_t line);
  void expose(const Simulator& simulator, std::uint64_t column, std::uint64_t line);
  void expose(const HostPicture& picture, std::uint64_t column, std::uint64_t line);

  const PictureSource& source_;
  std::uint64_t picture_;
  std::uint32_t format_;
  std::uint64_t width_ = 0;
  std::uint64_t height_ = 0;
  std::vector<std::uint16_t> samples_;
  std::vector<std::uint8_t> link_;
};

}  // namespace board
