#pragma once

#include <cstdint>

namespace velmora {

/// The status word that the four ports share, three bits per port.
class QueueStatus {
 public:
  explicit constexpr QueueStatus(std::uint32_t word) : word_(word) {}

  constexpr bool periodExceeded(unsigned port) const { return bit(port, 0); }
  constexpr bool queueFull(unsigned port) const { return bit(port, 1); }
  constexpr bool frameMissing(unsigned port) const { return bit(port, 2); }

 private:
  constexpr bool bit(unsigned port, unsigned flag) const {
    return ((word_ >> (3 * port + flag)) & 1u) != 0;
  }

  std::uint32_t word_;
};

}  // namespace velmora
