#include "tests/fakes/recording_runtime.h"

#include <sstream>

#include "platform/vorn5.h"
#include "velmora/velmora.h"

RecordingRuntime recordingRuntime;

namespace {

char handle;
Fg_Struct* const inner = reinterpret_cast<Fg_Struct*>(&handle);

template <class Result, class... Arguments>
Result note(Fg_Struct* fg, const char* name, Arguments... arguments) {
  std::ostringstream text;
  text << name << (fg == inner ? "" : " on another handle");
  ((text << ' ' << arguments), ...);
  recordingRuntime.call = text.str();
  return static_cast<Result>(recordingRuntime.result);
}

}  // namespace

extern "C" Fg_Struct* Fg_InitHandleSlaveAware(const char*, KTdevice*, fpga_design*, int) {
  return inner;
}
int Fg_getLastErrorNumber(Fg_Struct* fg) { return fg == inner ? recordingRuntime.lastError : 0; }
int Fg_FreeGrabber(Fg_Struct* fg) { return note<int>(fg, __func__); }
int Fg_getAppletId(Fg_Struct* fg, void* value) { return note<int>(fg, __func__, value); }
int Fg_AcquireEx(Fg_Struct* fg, uint32_t dma, int64_t pictures, int32_t flags, void* memory) {
  return note<int>(fg, __func__, dma, pictures, flags, memory);
}
int Fg_stopAcquireEx(Fg_Struct* fg, uint32_t dma, int64_t memory, int32_t flags) {
  return note<int>(fg, __func__, dma, memory, flags);
}
int64_t Fg_getLastPicNumberEx(Fg_Struct* fg, uint32_t dma, int64_t memory) {
  return note<int64_t>(fg, __func__, dma, memory);
}
int64_t Fg_getLastPicNumberBlockingEx(Fg_Struct* fg, int64_t picture, uint32_t dma, int32_t timeout,
                                      int64_t memory) {
  return note<int64_t>(fg, __func__, picture, dma, timeout, memory);
}
int64_t Fg_getStatusEx(Fg_Struct* fg, uint32_t param, int64_t data, int32_t dma, void* memory) {
  return note<int64_t>(fg, __func__, param, data, dma, memory);
}
