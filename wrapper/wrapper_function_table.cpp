#include "wrapper/wrapper_function_table.h"

#include <dlfcn.h>

namespace velmora {
namespace {

struct RuntimeSymbol {
  std::size_t position;
  const char* name;
};

/// Every bound symbol in binding order; positions 0 to 3, 10, 17, 18 and 21 to 28 stay empty.
constexpr RuntimeSymbol kRuntimeSymbols[] = {
    {4, "Fg_getAppletId"},
    {5, "Fg_setParameter"},
    {6, "Fg_setParameterWithType"},
    {7, "Fg_getParameter"},
    {8, "Fg_getParameterWithType"},
    {9, "Fg_freeParameterStringWithType"},
    {11, "Fg_saveConfig"},
    {12, "Fg_loadConfig"},
    {13, "Fg_Acquire"},
    {14, "Fg_stopAcquire"},
    {16, "Fg_getLastPicNumberBlockingEx"},
    {15, "Fg_getLastPicNumberEx"},
    {19, "Fg_FreeGrabber"},
    {20, "Fg_getLastErrorNumber"},
    {29, "Fg_getStatusEx"},
    {30, "Fg_AcquireEx"},
    {31, "Fg_stopAcquireEx"},
    {32, "Fg_getParameterInfo"},
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

}  // namespace

void WrapperFunctionTable::bind(void* library) {
  for (const auto& symbol : kRuntimeSymbols)
    entries_[symbol.position] = dlsym(library, symbol.name);
}

}  // namespace velmora
