/// Buffers for the pictures of a port.
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <memory>

#include "tool/session.h"
#include "velmora/parameters.h"
#include "velmora/values.h"

namespace velmora::tool {

struct DestroyMemory {
  void operator()(VirtualBoardMemory* memory) const { VirtualBoard_destroyMemory(memory); }
};
using PictureMemory = std::unique_ptr<VirtualBoardMemory, DestroyMemory>;

/// Bytes of a picture.
inline std::uint64_t transferLength(Session& session, unsigned port) {
  std::uint64_t bytes = 0;
  session.library().getParameter(session.grabber(), FG_TRANSFER_LEN, &bytes, port,
                                 FG_PARAM_TYPE_UINT64);
  return bytes;
}

inline PictureMemory createMemory(unsigned port, std::uint32_t buffers, std::uint64_t bytes) {
  PictureMemory memory(VirtualBoard_createMemory(buffers, bytes, nullptr));
  if (!memory) throw Failure(fmt::format("port {}: no memory for its pictures", port));
  return memory;
}

}  // namespace velmora::tool
