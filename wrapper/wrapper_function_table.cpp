#include "wrapper/wrapper_function_table.h"

#include <dlfcn.h>

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

/// Every position is used once or listed as empty: a mistake would call the wrong function.
consteval bool eachPositionOnce() {
  constexpr std::size_t kEmpty[] = {0, 1, 2, 3, 10, 17, 18, 21, 22, 23, 24, 25, 26, 27, 28};
  std::array<int, WrapperFunctionTable::kPositions> uses{};
  for (const RuntimeSymbol& symbol : kRuntimeSymbols) ++uses[symbol.position];
  for (const std::size_t position : kEmpty) ++uses[position];
  for (const int count : uses)
    if (count != 1) return false;
  return true;
}
static_assert(eachPositionOnce());

}  // namespace

void WrapperFunctionTable::bind(void* library) {
  for (const RuntimeSymbol& symbol : kRuntimeSymbols)
    entries_[symbol.position] = dlsym(library, symbol.name);
}

}  // namespace velmora
