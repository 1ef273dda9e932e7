/// A host's pictures in place of a camera's.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "board/pictures/picture.h"
#include "velmora/virtual_board.h"

namespace board {

/// Either pictures that are played in a loop, or a function that fills in the next one. Immutable,
/// so that pictures which are due can share it.
struct HostCamera {
  std::vector<std::vector<std::uint8_t>> pixels;
  std::vector<HostPicture> pictures;
  VirtualBoardFillPicture fill = nullptr;
  void* context = nullptr;
  HostPicture format{};  ///< Of the pictures that `fill` makes.

  HostPicture picture(std::int64_t number) const {
    return pictures[static_cast<std::size_t>(number - 1) % pictures.size()];
  }
};

/// A picture that a camera has taken, with all that its pixels depend on.
struct Exposure {
  unsigned port = 0;
  std::int64_t number = 0;
  std::int64_t time = 0;  ///< ns
  PicturePath path{};
  PictureSource source{};
  std::shared_ptr<const HostCamera> camera{};  ///< In place of the source.
};

}  // namespace board
