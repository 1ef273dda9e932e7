#include "fuzz/hostile_runtime.h"

#include "external/vorn5.h"

HostileRuntime hostileRuntime;

namespace {
char handle;
}

extern "C" {

Fg_Struct* Fg_InitHandleSlaveAware(const char*, KTdevice*, fpga_design*, int) {
  return reinterpret_cast<Fg_Struct*>(&handle);
}
int Fg_FreeGrabber(Fg_Struct*) { return 0; }
int Fg_getParameterIdByName(Fg_Struct*, const char* name) {
  const auto found = hostileRuntime.ids.find(name);
  return found == hostileRuntime.ids.end() ? 0 : found->second;
}
RegisterInfo* Fg_getParameterInfo(Fg_Struct*, int) { return hostileRuntime.forest; }
int Fg_setParameter(Fg_Struct*, int, const void*, unsigned) { return hostileRuntime.result; }
int Fg_getParameter(Fg_Struct*, int, void*, unsigned) { return hostileRuntime.result; }

}  // extern "C"
