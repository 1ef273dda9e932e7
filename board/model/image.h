/// Packed form of a design manifest.
///
/// The text, padded with zeros, and a trailer of 16 bytes, all numbers little endian: the mark
/// "VDSN", the format number 1, the length of the text and the CRC-32 of everything before it.
/// Any damage and any truncation is detected.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace board {

/// An image of exactly `size` bytes; throws `std::length_error` when the manifest does not fit.
std::string packImage(std::string_view manifest, std::size_t size);

/// The manifest in an image; `nullopt` when it is damaged or not an image.
std::optional<std::string_view> unpackImage(std::string_view image);

}  // namespace board
