#include "tests/fakes/recording_runtime.h"

#include <sstream>

#include "external/vorn5.h"
#include "velmora/velmora.h"

RecordingRuntime recordingRuntime;

namespace {

using Fg = Fg_Struct;
char handle;
Fg* const inner = reinterpret_cast<Fg*>(&handle);

/// The handle of a call, with the name of the function that makes one of it.
struct Caller {
  Caller(Fg* fg, const char* name = __builtin_FUNCTION()) : fg(fg), name(name) {}
  Fg* fg;
  const char* name;
};

template <class Result = int, class... Arguments>
Result note(Caller caller, Arguments... arguments) {
  std::ostringstream text;
  text << caller.name << (caller.fg == inner ? "" : " on another handle");
  ((text << ' ' << arguments), ...);
  recordingRuntime.call = text.str();
  return static_cast<Result>(recordingRuntime.result);
}

}  // namespace

extern "C" Fg* Fg_InitHandleSlaveAware(const char*, KTdevice*, fpga_design*, int) { return inner; }
int Fg_getLastErrorNumber(Fg* f) { return f == inner ? recordingRuntime.lastError : 0; }
int Fg_FreeGrabber(Fg* f) { return note(f); }
int Fg_getAppletId(Fg* f, void* p) { return note(f, p); }
int Fg_AcquireEx(Fg* f, uint32_t a, int64_t b, int32_t c, void* p) { return note(f, a, b, c, p); }
int Fg_stopAcquireEx(Fg* f, uint32_t a, int64_t b, int32_t c) { return note(f, a, b, c); }
int64_t Fg_getLastPicNumberEx(Fg* f, uint32_t a, int64_t b) { return note<int64_t>(f, a, b); }
int64_t Fg_getLastPicNumberBlockingEx(Fg* f, int64_t a, uint32_t b, int32_t c, int64_t d) {
  return note<int64_t>(f, a, b, c, d);
}
int64_t Fg_getStatusEx(Fg* f, uint32_t a, int64_t b, int32_t c, void* p) {
  return note<int64_t>(f, a, b, c, p);
}
int Fg_getParameterIdByName(Fg*, const char*) { return recordingRuntime.id; }
RegisterInfo* Fg_getParameterInfo(Fg*, int) {
  static char name[] = "Far";
  static RegisterInfo parameter{}, group{};
  static RegisterInfo* children[] = {&parameter};
  parameter.kind = REGISTER_INFO_UINT;
  parameter.name = parameter.paramName = group.name = group.paramName = name;
  parameter.id = recordingRuntime.id;
  group.value.group = {1, children, 1};
  return &group;
}
