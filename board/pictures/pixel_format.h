/// What the link carries: lines of pixels in a `CameraPixelFormat`.
///
/// - `MONO8`: a byte per pixel. `MONO8_SIGNED`: in two's complement, grey 0 to 255 being -128 to
/// 127.
/// - `MONO10` to `MONO16`: two bytes per pixel, low byte first, the value in the low bits.
/// - `MONO10_PACKED`, `MONO12_PACKED`: two pixels in three bytes, of which the first and the last
///   hold the pixels' eight high bits and the middle one the low bits, the first pixel's below.
///
/// Of a format's number only the low three bits count.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace board {

/// The bytes of a line, and the whole pixels in so many bytes.
std::uint64_t linkBytes(std::uint32_t format, std::uint64_t pixels);
std::uint64_t linkPixels(std::uint32_t format, std::uint64_t bytes);

/// The sample of a grey value of eight bits.
constexpr std::uint16_t fullScale(std::uint8_t grey) {
  return static_cast<std::uint16_t>(grey * 257);
}

/// Writes the `linkBytes` of samples whose full scale is 65535. Low bits that the format has no
/// room for are lost.
void pack(std::uint32_t format, std::span<const std::uint16_t> samples, std::uint8_t* link);
/// The eight high bits of the first pixels of a line.
void unpack(std::uint32_t format, const std::uint8_t* link, std::span<std::uint8_t> grey);

}  // namespace board
