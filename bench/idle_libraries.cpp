/// The libraries around the applet, doing nothing: every name exists, every call succeeds, all
/// values are 0. What is measured with them is the applet's own. Only the names' look-up hashes, so
/// that there is something to be compared with.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "external/dervin.h"
#include "external/korv_hw.h"
#include "external/vorn5.h"

namespace {

char object;

int idOf(std::string_view name) {
  return static_cast<int>(std::hash<std::string_view>()(name) % 0xFFFFF) + 1;
}

/// Something at an address, for handles that nobody looks into.
template <class Handle>
Handle* anyHandle() {
  return reinterpret_cast<Handle*>(&object);
}

/// The design's events, which the applet would report as missing.
std::vector<std::string> eventNames() {
  const std::string prefix = "Device1_Process4_Trigger_";
  std::vector<std::string> names;
  for (int pin = 0; pin < 8; ++pin)
    for (const char* edge : {"Pin", "NotPin"})
      names.push_back(prefix + "TriggerInput_InputEvents_InputEvents_" + edge +
                      std::to_string(pin));
  for (int port = 0; port < VELMORA_PORTS; ++port) {
    const std::string cam = "_Cam" + std::to_string(port);
    const std::string module = port < 2 ? "MonitoringEvents" : "MonitoringEvents_1";
    const std::string monitoring = prefix + "Monitoring_";
    names.push_back(monitoring + "FVAL_CamPort" + std::to_string(port) + "TransferStart");
    names.push_back(monitoring + "FVAL_CamPort" + std::to_string(port) + "TransferEnd");
    names.push_back(monitoring + "MonitoringEvents" + cam + "MissingFrame");
    for (const char* event : {"Override", "HysteresisOn", "HysteresisOff", "OutputEvent"})
      names.push_back(monitoring + module + cam + event);
  }
  return names;
}

}  // namespace

extern "C" {

// Design runtime.
fpga_design* HapLoadDesignFromBuffer(const void*, unsigned, int) {
  return anyHandle<fpga_design>();
}
fpga_design* HapLoadHapFileWithType(const char*, int, int) { return anyHandle<fpga_design>(); }
void HapUnloadHapFile(fpga_design*) {}
int HapGetRegisterByName(fpga_design*, const char* name) { return idOf(name); }
int HapGetNrOfRegister(fpga_design*) { return 0; }
const char* HapGetRegisterName(fpga_design*, int) { return nullptr; }
int HapGetRegisterBitRange(fpga_design*, int) { return 32; }
int HapGetRegisterDirection(fpga_design*, int) { return 0; }
const HapEvent* HapGetEvent(fpga_design*, int index) {
  static const std::vector<std::string> names = eventNames();
  static HapEvent event;
  const auto position = static_cast<std::size_t>(index);
  if (position >= names.size()) return nullptr;
  event = {position + 1, names[position].c_str(), 1};
  return &event;
}

// Register access.
int KorvRegisterWrite(KTdevice*, int, std::uint64_t) { return 0; }
int KorvRegisterRead(KTdevice*, int, std::uint64_t* value) {
  *value = 0;
  return 0;
}

// Acquisition runtime.
Fg_Struct* Fg_InitHandleSlaveAware(const char*, KTdevice*, fpga_design*, int) {
  return anyHandle<Fg_Struct>();
}
Fg_Struct* Fg_InitHandle(const char*, KTdevice*, fpga_design*) { return anyHandle<Fg_Struct>(); }
int Fg_getParameterIdByName(Fg_Struct*, const char* name) { return idOf(name); }
int Fg_setParameterWithType(Fg_Struct*, int, const void*, unsigned, int) { return 0; }
int Fg_getParameterWithType(Fg_Struct*, int, void* value, unsigned, int) {
  *static_cast<std::uint32_t*>(value) = 0;
  return 0;
}
RegisterInfo* Fg_getParameterInfo(Fg_Struct*, int) { return nullptr; }

// Those that the measured calls do not reach; the applet binds them all.
#define IDLE(name) \
  int name() { return 0; }
IDLE(Fg_FreeGrabber)
IDLE(Fg_getLastErrorNumber)
IDLE(Fg_setParameter)
IDLE(Fg_getParameter)
IDLE(Fg_freeParameterStringWithType)
IDLE(Fg_getAppletId)
IDLE(Fg_saveConfig)
IDLE(Fg_loadConfig)
IDLE(Fg_Acquire)
IDLE(Fg_stopAcquire)
IDLE(Fg_AcquireEx)
IDLE(Fg_stopAcquireEx)
IDLE(Fg_getLastPicNumberEx)
IDLE(Fg_getLastPicNumberBlockingEx)
IDLE(Fg_getStatusEx)
IDLE(Fg_AllocShading)
IDLE(Fg_FreeShading)
IDLE(Shad_SetSubValueLine)
IDLE(Shad_SetMultValueLine)
IDLE(Shad_SetFixedPatternNoiseLine)
IDLE(Shad_GetMaxLine)
IDLE(Shad_GetAccess)
IDLE(Shad_FreeAccess)
IDLE(Shad_WriteActLine)
}
