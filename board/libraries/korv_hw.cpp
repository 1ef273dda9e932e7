/// Register access library `libkorv_hw.so` of the virtual board.
#include "external/korv_hw.h"

#include <fmt/format.h>

#include "board/model/board_error.h"
#include "board/model/model.h"
#include "board/model/watch.h"

namespace {

board::Access registerAccess(board::AccessKind kind, const KTdevice* device, int id) {
  return {kind, device ? device->registerName(id) : fmt::format("#{}", id), -1, {}};
}

}  // namespace

int KorvRegisterWrite(KTdevice* device, int registerId, std::uint64_t value) {
  return board::watched(
      [=] {
        auto access = registerAccess(board::AccessKind::kRegisterWrite, device, registerId);
        access.value = fmt::format("{}", value);
        return access;
      },
      [=]() -> int {
        return device ? device->writeRegister(registerId, value) : board::kNoHandle;
      });
}

int KorvRegisterRead(KTdevice* device, int registerId, std::uint64_t* value) {
  return board::watched(
      [=] { return registerAccess(board::AccessKind::kRegisterRead, device, registerId); },
      [=]() -> int { return device ? device->readRegister(registerId, value) : board::kNoHandle; },
      [=](board::Access& access) { access.value = fmt::format("{}", *value); });
}
