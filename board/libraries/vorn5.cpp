/// Acquisition runtime `libvorn5.so` of the virtual board.
#include "external/vorn5.h"

#include <fmt/format.h>

#include <memory>
#include <type_traits>
#include <utility>

#include "board/libraries/call.h"
#include "board/model/board_error.h"
#include "board/model/ledger.h"
#include "board/model/model.h"
#include "board/model/picture_memory.h"
#include "board/model/scalar.h"
#include "board/model/watch.h"
#include "velmora/values.h"
#include "velmora/velmora.h"

namespace {

using board::Access;
using board::AccessKind;
using board::call;
using board::callOn;
using board::orNull;

/// Runs a function of the runtime under watch; a failure becomes the handle's last error.
template <class... Steps>
auto run(Fg_Struct* fg, Steps... steps) {
  const auto result = board::watched(std::move(steps)...);
  if (result < 0 && fg) fg->lastError = static_cast<int>(result);
  return result;
}

/// Of a set or get, where everything but 0 is an error code.
int recordFailure(Fg_Struct* fg, int code) {
  if (code != board::kOk && fg) fg->lastError = code;
  return code;
}

/// Runs `action` on the device of a handle.
template <class Action>
auto onDevice(Fg_Struct* fg, Action action) {
  return [fg, action] {
    using Result = decltype(action(*fg->device));
    return fg ? action(*fg->device) : static_cast<Result>(board::kNoHandle);
  };
}

/// The same for a call on a channel, which names its picture memory or none.
template <class Action>
auto onChannel(Fg_Struct* fg, std::uint32_t dma, std::int64_t memory, Action action) {
  return onDevice(fg, [=](auto& device) {
    using Result = decltype(action(device));
    return device.usesMemory(dma, memory) ? action(device)
                                          : static_cast<Result>(board::kBadArgument);
  });
}

int start(KTdevice& device, std::uint32_t dma, std::int64_t pictures, void* memory) {
  if (memory && !board::isHandedOut(board::HandedOut::kMemory, memory)) return board::kBadArgument;
  return device.start(dma, pictures, static_cast<VirtualBoardMemory*>(memory));
}

/// The kind to show the value of an unknown parameter as, going by the type in the call.
RegisterInfoKind kindOfType(int type) {
  switch (type) {
    case FG_PARAM_TYPE_DOUBLE:
      return REGISTER_INFO_DOUBLE;
    case FG_PARAM_TYPE_INT64:
      return REGISTER_INFO_INT64;
    case FG_PARAM_TYPE_UINT64:
      return REGISTER_INFO_UINT64;
    default:
      return REGISTER_INFO_INT;
  }
}

std::string valueText(Fg_Struct* fg, int id, const void* value, int type) {
  if (!value) return "null";
  auto kind = fg ? fg->device->parameterKind(id) : REGISTER_INFO_GROUP;
  if (kind == REGISTER_INFO_GROUP) kind = kindOfType(type);
  std::uint64_t bits = 0;
  const bool known = board::loadScalar(kind, type, value, bits) == board::kOk;
  return known ? board::scalarText(kind, bits) : "?";
}

Access parameterAccess(AccessKind kind, Fg_Struct* fg, int id, unsigned dma) {
  auto name = fg ? fg->device->parameterName(id) : fmt::format("#{}", id);
  return {kind, std::move(name), static_cast<int>(dma), {}};
}

bool isText(Fg_Struct* fg, int id, int type) {
  return type == FG_PARAM_TYPE_STRING || (type == board::kNaturalType && fg &&
                                          fg->device->parameterKind(id) == REGISTER_INFO_STRING);
}

int set(Fg_Struct* fg, int id, const void* value, unsigned dma, int type) {
  const int code = board::watched(
      [=] {
        auto access = parameterAccess(AccessKind::kSet, fg, id, dma);
        access.value = value && isText(fg, id, type) ? static_cast<const char*>(value)
                                                     : valueText(fg, id, value, type);
        return access;
      },
      onDevice(fg, [=](auto& device) { return device.setParameter(id, value, dma, type); }));
  return recordFailure(fg, code);
}

int get(Fg_Struct* fg, int id, void* value, unsigned dma, int type) {
  const int code = board::watched(
      [=] { return parameterAccess(AccessKind::kGet, fg, id, dma); },
      onDevice(fg, [=](auto& device) { return device.getParameter(id, value, dma, type); }),
      [=](Access& access) {
        access.value =
            isText(fg, id, type) ? *static_cast<char**>(value) : valueText(fg, id, value, type);
      });
  return recordFailure(fg, code);
}

struct Release {
  void operator()(Fg_Struct* fg) const {
    fg->device->detach();
    delete fg;
  }
};

Fg_Struct* open(KTdevice* device, fpga_design* design) {
  if (!device || !design) {
    board::errorWithoutHandle = board::kNoDesign;
    return nullptr;
  }
  std::unique_ptr<Fg_Struct> unattached(new Fg_Struct{device, design->content});
  if (const int error = device->attach(design->content)) {
    board::errorWithoutHandle = error;
    return nullptr;
  }
  std::unique_ptr<Fg_Struct, Release> fg(unattached.release());
  board::handOut(board::HandedOut::kHandle, fg.get());
  return fg.release();
}

int freeGrabber(Fg_Struct* fg) {
  if (!board::giveBack(board::HandedOut::kHandle, fg)) return board::kNoHandle;
  Release()(fg);
  return board::kOk;
}

int idByName(const Fg_Struct* fg, const char* name) {
  if (!fg) return board::kNoHandle;
  const int id = name ? fg->design->parameterId(name) : 0;
  return id != 0 ? id : board::kUnknownParameter;
}

int freeString(const void* value, int type) {
  if (!value) return board::kNullValue;
  if (type != FG_PARAM_TYPE_STRING) return board::kWrongType;
  return board::giveBackString(static_cast<const char*>(value)) ? board::kOk
                                                                : board::kUnknownString;
}

}  // namespace

extern "C" {

Fg_Struct* Fg_InitHandleSlaveAware(const char* hapName, KTdevice* device, fpga_design* design,
                                   int flags) {
  return board::watched(call("Fg_InitHandleSlaveAware", "{}, flags {}", orNull(hapName), flags),
                        [=] { return open(device, design); });
}

Fg_Struct* Fg_InitHandle(const char* hapName, KTdevice* device, fpga_design* design) {
  return board::watched(call("Fg_InitHandle", "{}", orNull(hapName)),
                        [=] { return open(device, design); });
}

int Fg_FreeGrabber(Fg_Struct* fg) {
  return board::watched(call("Fg_FreeGrabber", ""), [=] { return freeGrabber(fg); });
}

int Fg_getLastErrorNumber(Fg_Struct* fg) {
  return board::watched(call("Fg_getLastErrorNumber", ""),
                        [=]() -> int { return fg ? fg->lastError : board::errorWithoutHandle; });
}

int Fg_getParameterIdByName(Fg_Struct* fg, const char* name) {
  return run(fg, call("Fg_getParameterIdByName", "{}", orNull(name)),
             [=] { return idByName(fg, name); });
}

int Fg_setParameterWithType(Fg_Struct* fg, int id, const void* value, unsigned dma, int type) {
  return set(fg, id, value, dma, type);
}

int Fg_getParameterWithType(Fg_Struct* fg, int id, void* value, unsigned dma, int type) {
  return get(fg, id, value, dma, type);
}

int Fg_setParameter(Fg_Struct* fg, int id, const void* value, unsigned dma) {
  return set(fg, id, value, dma, board::kNaturalType);
}

int Fg_getParameter(Fg_Struct* fg, int id, void* value, unsigned dma) {
  return get(fg, id, value, dma, board::kNaturalType);
}

int Fg_freeParameterStringWithType(Fg_Struct* fg, int id, void* value, unsigned dma, int type) {
  return run(fg, callOn(dma, "Fg_freeParameterStringWithType", "id {}, type {}", id, type),
             [=] { return freeString(value, type); });
}

RegisterInfo* Fg_getParameterInfo(Fg_Struct* fg, int port) {
  return board::watched(call("Fg_getParameterInfo", "port {}", port), [=]() -> RegisterInfo* {
    return fg && port == 0 ? fg->design->description() : nullptr;
  });
}

int Fg_getAppletId(Fg_Struct* fg, void*) {
  return run(fg, call("Fg_getAppletId", ""),
             [=]() -> int { return fg ? board::kBoardType : board::kNoHandle; });
}

int Fg_AcquireEx(Fg_Struct* fg, std::uint32_t dma, std::int64_t pictures, std::int32_t,
                 void* memory) {
  return run(fg, callOn(dma, "Fg_AcquireEx", "dma {}, {} pictures", dma, pictures),
             onDevice(fg, [=](auto& device) { return start(device, dma, pictures, memory); }));
}

int Fg_stopAcquireEx(Fg_Struct* fg, std::uint32_t dma, std::int64_t memory, std::int32_t) {
  return run(fg, callOn(dma, "Fg_stopAcquireEx", "dma {}", dma),
             onChannel(fg, dma, memory, [=](auto& device) { return device.stop(dma); }));
}

std::int64_t Fg_getLastPicNumberEx(Fg_Struct* fg, std::uint32_t dma, std::int64_t memory) {
  return run(fg, callOn(dma, "Fg_getLastPicNumberEx", "dma {}", dma),
             onChannel(fg, dma, memory, [=](auto& device) { return device.lastPicture(dma); }));
}

std::int64_t Fg_getLastPicNumberBlockingEx(Fg_Struct* fg, std::int64_t picture, std::uint32_t dma,
                                           std::int32_t timeout, std::int64_t memory) {
  return run(fg,
             callOn(dma, "Fg_getLastPicNumberBlockingEx", "picture {}, dma {}, {} s", picture, dma,
                    timeout),
             onChannel(fg, dma, memory,
                       [=](auto& device) { return device.waitForPicture(picture, dma, timeout); }));
}

std::int64_t Fg_getStatusEx(Fg_Struct* fg, std::uint32_t param, std::int64_t, std::int32_t dma,
                            void* memory) {
  const auto channel = static_cast<unsigned>(dma);
  return run(fg, callOn(channel, "Fg_getStatusEx", "status {}, dma {}", param, dma),
             onChannel(fg, channel, reinterpret_cast<std::intptr_t>(memory),
                       [=](auto& device) { return device.channelStatus(param, channel); }));
}

// Functions that applets look up but do not call, since they have their own.

int Fg_saveConfig(Fg_Struct*, const char*) { return board::kNotOffered; }
int Fg_loadConfig(Fg_Struct*, const char*) { return board::kNotOffered; }
int Fg_Acquire(Fg_Struct*, std::uint32_t, std::int64_t) { return board::kNotOffered; }
int Fg_stopAcquire(Fg_Struct*, std::uint32_t) { return board::kNotOffered; }
ShadingMaster* Fg_AllocShading(Fg_Struct*, int, int) { return nullptr; }
int Fg_FreeShading(Fg_Struct*, ShadingMaster*) { return board::kNotOffered; }
int Shad_GetMaxLine(Fg_Struct*, ShadingMaster*) { return board::kNotOffered; }
int Shad_SetSubValueLine(Fg_Struct*, ShadingMaster*, int, int, float) { return board::kNotOffered; }
int Shad_SetMultValueLine(Fg_Struct*, ShadingMaster*, int, int, float) {
  return board::kNotOffered;
}
int Shad_SetFixedPatternNoiseLine(Fg_Struct*, ShadingMaster*, int, int, int) {
  return board::kNotOffered;
}
int Shad_GetAccess(Fg_Struct*, ShadingMaster*) { return board::kNotOffered; }
int Shad_FreeAccess(Fg_Struct*, ShadingMaster*) { return board::kNotOffered; }
int Shad_WriteActLine(Fg_Struct*, ShadingMaster*, int) { return board::kNotOffered; }

}  // extern "C"

// Applets look the names up and call the functions through these types.
static_assert(std::is_same_v<VornInitHandleSlaveAware, decltype(Fg_InitHandleSlaveAware)>);
static_assert(std::is_same_v<VornInitHandle, decltype(Fg_InitHandle)>);
static_assert(std::is_same_v<VornFreeGrabber, decltype(Fg_FreeGrabber)>);
static_assert(std::is_same_v<VornGetLastErrorNumber, decltype(Fg_getLastErrorNumber)>);
static_assert(std::is_same_v<VornGetParameterIdByName, decltype(Fg_getParameterIdByName)>);
static_assert(std::is_same_v<VornSetParameter, decltype(Fg_setParameter)>);
static_assert(std::is_same_v<VornGetParameter, decltype(Fg_getParameter)>);
static_assert(std::is_same_v<VornSetParameterWithType, decltype(Fg_setParameterWithType)>);
static_assert(std::is_same_v<VornGetParameterWithType, decltype(Fg_getParameterWithType)>);
static_assert(
    std::is_same_v<VornFreeParameterStringWithType, decltype(Fg_freeParameterStringWithType)>);
static_assert(std::is_same_v<VornGetParameterInfo, decltype(Fg_getParameterInfo)>);
static_assert(std::is_same_v<VornGetAppletId, decltype(Fg_getAppletId)>);
static_assert(std::is_same_v<VornAcquireEx, decltype(Fg_AcquireEx)>);
static_assert(std::is_same_v<VornStopAcquireEx, decltype(Fg_stopAcquireEx)>);
static_assert(std::is_same_v<VornGetLastPicNumberEx, decltype(Fg_getLastPicNumberEx)>);
static_assert(
    std::is_same_v<VornGetLastPicNumberBlockingEx, decltype(Fg_getLastPicNumberBlockingEx)>);
static_assert(std::is_same_v<VornGetStatusEx, decltype(Fg_getStatusEx)>);
