#include "wrapper/wrapper_function_table.h"

#include <dlfcn.h>

#include <algorithm>

namespace velmora {
namespace {

/// Every bound symbol, in binding order.
constexpr RuntimeSymbol kRuntimeSymbols[] = {
    runtime::kGetAppletId,
    runtime::kSetParameter,
    runtime::kSetParameterWithType,
    runtime::kGetParameter,
    runtime::kGetParameterWithType,
    runtime::kFreeParameterStringWithType,
    {11, "Fg_saveConfig"},
    {12, "Fg_loadConfig"},
    {13, "Fg_Acquire"},
    {14, "Fg_stopAcquire"},
    runtime::kGetLastPicNumberBlockingEx,
    runtime::kGetLastPicNumberEx,
    runtime::kFreeGrabber,
    runtime::kGetLastErrorNumber,
    runtime::kGetStatusEx,
    runtime::kAcquireEx,
    runtime::kStopAcquireEx,
    runtime::kGetParameterInfo,
    {33, "Fg_AllocShading"},
    {34, "Fg_FreeShading"},
    {36, "Shad_SetSubValueLine"},
    {37, "Shad_SetMultValueLine"},
    {38, "Shad_SetFixedPatternNoiseLine"},
    {35, "Shad_GetMaxLine"},
    {39, "Shad_GetAccess"},
    {40, "Shad_FreeAccess"},
    {41, "Shad_WriteActLine"},
};

/// A symbol out of its place would call the wrong function.
static_assert(std::ranges::equal(kRuntimeSymbols,
                                 std::to_array<std::size_t>({4,  5,  6,  7,  8,  9,  11, 12, 13,
                                                             14, 16, 15, 19, 20, 29, 30, 31, 32,
                                                             33, 34, 36, 37, 38, 35, 39, 40, 41}),
                                 {}, &RuntimeSymbol::position));

}  // namespace

void WrapperFunctionTable::bind(void* library) {
  for (const RuntimeSymbol& symbol : kRuntimeSymbols)
    entries_[symbol.position] = dlsym(library, symbol.name);
}

}  // namespace velmora
