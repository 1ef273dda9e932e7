/// The folder applet/ is the library's C interface. These exports call the applet instance or
/// forward to the runtime.
#include <cstdint>
#include <cstring>

#include "velmora/errors.h"
#include "velmora/values.h"
#include "velmora/velmora.h"
#include "wrapper/fg_kt_wrapper.h"
#include "wrapper/temporary_file.h"

using namespace velmora;

namespace {

/// The applet instance, which is the first word of the outer handle.
FgKtWrapper* instanceOf(Fg_Struct* fg) {
  return fg ? *reinterpret_cast<FgKtWrapper**>(fg) : nullptr;
}

/// Forwards a call to the runtime with the inner handle and records the outcome.
template <class Result, class... Arguments>
Result callRuntime(Fg_Struct* fg, RuntimeEntry<Result(Fg_Struct*, Arguments...)> entry,
                   Arguments... arguments) {
  FgKtWrapper* applet = instanceOf(fg);
  if (!applet) return VELMORA_NO_INSTANCE;
  auto* function = applet->wrapperFg()[entry];
  if (!function || !applet->vornFg()) return applet->fgError().setErr(VELMORA_NOT_AVAILABLE);
  const Result result = function(applet->vornFg(), arguments...);
  applet->setError(result < 0 ? applet->Fg_getLastErrorNumberKt() : VELMORA_OK);
  return result;
}

/// Calls an operation of the instance; returns `missing` when there is no instance.
template <class Result, class... Parameters, class... Arguments>
Result callApplet(Fg_Struct* fg, Result missing, Result (FgKtWrapper::*operation)(Parameters...),
                  Arguments... arguments) {
  FgKtWrapper* applet = instanceOf(fg);
  return applet ? (applet->*operation)(arguments...) : missing;
}

/// Calls a shading operation and records its result.
template <class... Parameters, class... Arguments>
int callShading(Fg_Struct* fg, int (FgKtWrapper::*operation)(Parameters...),
                Arguments... arguments) {
  FgKtWrapper* applet = instanceOf(fg);
  if (!applet) return VELMORA_NO_INSTANCE;
  return applet->fgError().setErr((applet->*operation)(arguments...));
}

constexpr int kNoInstance = VELMORA_NO_INSTANCE;

}  // namespace

int Fg_getAppletId(Fg_Struct* fg, void* argument) {
  return callRuntime(fg, runtime::kGetAppletId, argument);
}

int Fg_AcquireEx(Fg_Struct* fg, std::uint32_t dma, std::int64_t pictures, std::int32_t flags,
                 void* memory) {
  return callRuntime(fg, runtime::kAcquireEx, dma, pictures, flags, memory);
}

int Fg_stopAcquireEx(Fg_Struct* fg, std::uint32_t dma, std::int64_t memory, std::int32_t flags) {
  return callRuntime(fg, runtime::kStopAcquireEx, dma, memory, flags);
}

std::int64_t Fg_getLastPicNumberEx(Fg_Struct* fg, std::uint32_t dma, std::int64_t memory) {
  return callRuntime(fg, runtime::kGetLastPicNumberEx, dma, memory);
}

std::int64_t Fg_getLastPicNumberBlockingEx(Fg_Struct* fg, std::int64_t picture, std::uint32_t dma,
                                           std::int32_t timeout, std::int64_t memory) {
  return callRuntime(fg, runtime::kGetLastPicNumberBlockingEx, picture, dma, timeout, memory);
}

std::int64_t Fg_getStatusEx(Fg_Struct* fg, std::uint32_t param, std::int64_t data, std::int32_t dma,
                            void* memory) {
  return callRuntime(fg, runtime::kGetStatusEx, param, data, dma, memory);
}

int Fg_setParameterWithType(Fg_Struct* fg, int id, const void* value, unsigned dma, int type) {
  return callApplet(fg, kNoInstance, &FgKtWrapper::Fg_setParameterWithType, id, value, dma, type);
}

int Fg_getParameterWithType(Fg_Struct* fg, int id, void* value, unsigned dma, int type) {
  // The caller reads 64 bits, of which most parameters write only 32.
  const bool wide = type == FG_PARAM_TYPE_INT64 || type == FG_PARAM_TYPE_UINT64;
  if (wide && value && instanceOf(fg)) std::memset(value, 0, sizeof(std::uint64_t));
  return callApplet(fg, kNoInstance, &FgKtWrapper::Fg_getParameterWithType, id, value, dma, type);
}

int Fg_freeParameterStringWithType(Fg_Struct* fg, int id, void* value, unsigned dma, int type) {
  if (instanceOf(fg) && type != FG_PARAM_TYPE_STRING) return VELMORA_NOT_A_STRING_TYPE;
  return callApplet(fg, kNoInstance, &FgKtWrapper::Fg_freeParameterStringWithType, id, value, dma,
                    type);
}

int Fg_getNrOfParameter(Fg_Struct* fg) {
  return callApplet(fg, kNoInstance, &FgKtWrapper::Fg_getNrOfParameter);
}

const char* Fg_getParameterName(Fg_Struct* fg, int index) {
  return callApplet<const char*>(fg, nullptr, &FgKtWrapper::Fg_getParameterName, index);
}

int Fg_getParameterId(Fg_Struct* fg, int index) {
  return callApplet(fg, kNoInstance, &FgKtWrapper::Fg_getParameterId, index);
}

int Fg_getParameterIdByName(Fg_Struct* fg, const char* name) {
  return callApplet(fg, kNoInstance, &FgKtWrapper::Fg_getParameterIdByName, name);
}

int Fg_saveConfig(Fg_Struct* fg, const char* file) {
  FgKtWrapper* applet = instanceOf(fg);
  return applet ? applet->Fg_saveConfig(applet->vornFg(), file) : kNoInstance;
}

int Fg_loadConfig(Fg_Struct* fg, const char* file) {
  FgKtWrapper* applet = instanceOf(fg);
  return applet ? applet->Fg_loadConfig(applet->vornFg(), file) : kNoInstance;
}

int Fg_getParameterInfoXML(Fg_Struct* fg, int port, char* buffer, size_t* size) {
  return callApplet(fg, kNoInstance, &FgKtWrapper::Fg_getParameterInfoXML, fg, port, buffer, size);
}

RegisterInfo* Fg_getParameterInfo(Fg_Struct* fg, int port) {
  FgKtWrapper* applet = instanceOf(fg);
  // Tools see descriptions only if the runtime offers them too.
  if (!applet || !applet->wrapperFg()[runtime::kGetParameterInfo] || !applet->vornFg())
    return nullptr;
  return applet->Fg_getParameterInfo(port);
}

std::uint64_t Fg_getEventMask(Fg_Struct* fg, const char* name) {
  return callApplet<std::uint64_t>(fg, 0, &FgKtWrapper::Fg_getEventMask, name);
}

const char* Fg_getEventName(Fg_Struct* fg, std::uint64_t mask) {
  return callApplet<const char*>(fg, nullptr, &FgKtWrapper::Fg_getEventName, mask);
}

int Fg_getLastErrorNumber(Fg_Struct* fg) {
  const FgKtWrapper* applet = instanceOf(fg);
  return applet ? applet->Fg_getLastErrorNumber() : kNoInstance;
}

ShadingMaster* Fg_AllocShading(Fg_Struct* fg, int a, int b) {
  FgKtWrapper* applet = instanceOf(fg);
  if (!applet) return nullptr;
  ShadingMaster* shading = applet->Fg_AllocShading(a, b);
  applet->setError(shading ? VELMORA_OK : VELMORA_NOTHING_FOUND);
  return shading;
}

int Fg_FreeShading(Fg_Struct* fg, ShadingMaster* shading) {
  return callShading(fg, &FgKtWrapper::Fg_FreeShading, shading);
}

int Shad_SetSubValueLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, float value) {
  return callShading(fg, &FgKtWrapper::Shad_SetSubValueLine, shading, x, channel, value);
}

int Shad_SetMultValueLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, float value) {
  return callShading(fg, &FgKtWrapper::Shad_SetMultValueLine, shading, x, channel, value);
}

int Shad_SetFixedPatternNoiseLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel,
                                  int enable) {
  return callShading(fg, &FgKtWrapper::Shad_SetFixedPatternNoiseLine, shading, x, channel, enable);
}

int Shad_GetMaxLine(Fg_Struct* fg, ShadingMaster* shading) {
  return callShading(fg, &FgKtWrapper::Shad_GetMaxLine, shading);
}

int Shad_GetAccess(Fg_Struct* fg, ShadingMaster* shading) {
  return callShading(fg, &FgKtWrapper::Shad_GetAccess, shading);
}

int Shad_FreeAccess(Fg_Struct* fg, ShadingMaster* shading) {
  return callShading(fg, &FgKtWrapper::Shad_FreeAccess, shading);
}

int Shad_WriteActLine(Fg_Struct* fg, ShadingMaster* shading, int line) {
  return callShading(fg, &FgKtWrapper::Shad_WriteActLine, shading, line);
}

int mkstemps(char* nameTemplate, int suffixLength) {
  return makeUniqueFile(nameTemplate, suffixLength);
}
