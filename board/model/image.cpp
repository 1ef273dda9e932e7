#include "board/model/image.h"

#include <zlib.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace board {
namespace {

static_assert(std::endian::native == std::endian::little);

struct Trailer {
  std::array<char, 4> mark{'V', 'D', 'S', 'N'};
  std::uint32_t format = 1;
  std::uint32_t length = 0;
  std::uint32_t checksum = 0;
};
static_assert(sizeof(Trailer) == 16);
constexpr std::size_t kChecksumSize = sizeof(Trailer::checksum);

std::uint32_t checksumOf(std::string_view bytes) {
  const auto* data = reinterpret_cast<const Bytef*>(bytes.data());
  return static_cast<std::uint32_t>(crc32_z(0, data, bytes.size()));
}

}  // namespace

std::string packImage(std::string_view manifest, std::size_t size) {
  Trailer trailer;
  if (size < sizeof(trailer) || manifest.size() > size - sizeof(trailer)) {
    throw std::length_error("manifest too long for its image");
  }
  trailer.length = static_cast<std::uint32_t>(manifest.size());
  std::string image(size, '\0');
  manifest.copy(image.data(), manifest.size());
  char* end = image.data() + size - sizeof(trailer);
  std::memcpy(end, &trailer, sizeof(trailer));
  trailer.checksum = checksumOf({image.data(), size - kChecksumSize});
  std::memcpy(end, &trailer, sizeof(trailer));
  return image;
}

std::optional<std::string_view> unpackImage(std::string_view image) {
  Trailer trailer;
  if (image.size() < sizeof(trailer)) return std::nullopt;
  const std::size_t bodySize = image.size() - sizeof(trailer);
  std::memcpy(&trailer, image.data() + bodySize, sizeof(trailer));
  const bool intact = trailer.mark == Trailer{}.mark && trailer.format == Trailer{}.format &&
                      trailer.length <= bodySize &&
                      trailer.checksum == checksumOf(image.substr(0, image.size() - kChecksumSize));
  if (!intact) return std::nullopt;
  return image.substr(0, trailer.length);
}

}  // namespace board
