/// Design runtime `libdervin.so` of the virtual board.
#include "external/dervin.h"

#include <memory>
#include <string_view>
#include <utility>

#include "board/libraries/call.h"
#include "board/model/ledger.h"
#include "board/model/model.h"
#include "board/model/watch.h"

namespace {

using board::call;
using board::Design;
using board::orNull;

fpga_design* handOut(std::shared_ptr<const Design> content) {
  if (!content) return nullptr;
  std::unique_ptr<fpga_design> design(new fpga_design{std::move(content)});
  board::handOut(board::HandedOut::kDesign, design.get());
  return design.release();
}

/// The register of a design; null for an unknown id or a null design.
const board::RegisterRecord* find(const fpga_design* design, int id) {
  return design ? design->content->registerWithId(id) : nullptr;
}

}  // namespace

fpga_design* HapLoadDesignFromBuffer(const void* image, unsigned size, int) {
  return board::watched(call("HapLoadDesignFromBuffer", "{} bytes", size), [=] {
    const std::string_view bytes(static_cast<const char*>(image), image ? size : 0);
    return handOut(Design::fromImage(bytes));
  });
}

fpga_design* HapLoadHapFileWithType(const char* file, int boardType, int) {
  return board::watched(
      call("HapLoadHapFileWithType", "{}, board type {}", orNull(file), boardType), [=] {
        const bool possible = file && boardType == board::kBoardType;
        return handOut(possible ? Design::fromFile(file) : nullptr);
      });
}

void HapUnloadHapFile(fpga_design* design) {
  board::watched(call("HapUnloadHapFile", ""), [=] {
    if (board::giveBack(board::HandedOut::kDesign, design)) delete design;
    return 0;
  });
}

int HapGetRegisterByName(fpga_design* design, const char* name) {
  return board::watched(call("HapGetRegisterByName", "{}", orNull(name)),
                        [=] { return design && name ? design->content->registerId(name) : 0; });
}

int HapGetNrOfRegister(fpga_design* design) {
  return board::watched(call("HapGetNrOfRegister", ""), [=] {
    return design ? static_cast<int>(design->content->manifest().registers.size()) : 0;
  });
}

const char* HapGetRegisterName(fpga_design* design, int index) {
  return board::watched(call("HapGetRegisterName", "{}", index), [=] {
    const auto* reg = find(design, index);  // Indices are ids: both count from 1.
    return reg ? reg->name.c_str() : nullptr;
  });
}

int HapGetRegisterBitRange(fpga_design* design, int registerId) {
  return board::watched(call("HapGetRegisterBitRange", "{}", registerId), [=] {
    const auto* reg = find(design, registerId);
    return reg ? reg->bits : 0;
  });
}

int HapGetRegisterDirection(fpga_design* design, int registerId) {
  return board::watched(call("HapGetRegisterDirection", "{}", registerId), [=] {
    const auto* reg = find(design, registerId);
    return reg && reg->writable ? 1 : 0;
  });
}

const HapEvent* HapGetEvent(fpga_design* design, int index) {
  return board::watched(call("HapGetEvent", "{}", index),
                        [=] { return design ? design->content->event(index) : nullptr; });
}
