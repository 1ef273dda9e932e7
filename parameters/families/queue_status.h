#pragma once

#include <cstdint>

namespace velmora {

/// The status word that the four cameras share, three bits per camera.
class QueueStatus {
 public:
  explicit constexpr QueueStatus(std::uint32_t word) : word_(word) {}

  constexpr bool periodExceeded(unsigned camera) const { return bit(camera, 0); }
  constexpr bool queueFull(unsigned camera) const { return bit(camera, 1); }
  constexpr bool frameMissing(unsigned camera) const { return bit(camera, 2); }

 private:
  constexpr bool bit(unsigned camera, unsigned flag) const {
    return ((word_ >> (3 * camera + flag)) & 1u) != 0;
  }

  std::uint32_t word_;
};

}  // namespace velmora
