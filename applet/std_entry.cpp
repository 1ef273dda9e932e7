/// Creation and release of an applet instance.
#include <cstdlib>
#include <memory>

#include "design/design_image.h"
#include "parameters/applet_identity.h"
#include "parameters/fg_kt_wrapper_impl.h"
#include "velmora/velmora.h"
#include "wrapper/loaded_design.h"

using namespace velmora;

namespace {

constexpr unsigned kLeaveDesign = 1;  // Flag bit: the design keeps what it has.
constexpr int kLoadArgument = 1;      // What both design loaders are given last.

LoadedDesign loadDesign() {
  if (std::getenv("__KORV_FORCE_EXTERNAL_HAP"))
    return LoadedDesign(HapLoadHapFileWithType(kHapFileName, kBoardType, kLoadArgument));
  return LoadedDesign(
      HapLoadDesignFromBuffer(velmora_design_image, kDesignImageSize, kLoadArgument));
}

/// Opens the runtime, loads the design and creates the inner handle. The instance owns the design
/// only when all of it went well.
int open(FgKtWrapper& applet, KTdevice* device, int flags) {
  if (const int code = applet.initializeDllFunctions("libvorn5.so"); code != VELMORA_OK)
    return code;
  LoadedDesign design = loadDesign();
  if (!design) return VELMORA_NO_DESIGN;
  const int code = applet.runFgInit(kHapFileName, device, design.get(), flags);
  if (code == VELMORA_OK) applet.initHandles(device, design.release());
  return code;
}

void start(FgKtWrapperImpl& applet, int flags) {
  applet.buildTables();
  applet.resolveParameterIds();
  applet.initParameterInfo();
  applet.routePorts();
  if ((static_cast<unsigned>(flags) & kLeaveDesign) == 0) applet.applyDefaults();
}

}  // namespace

void* Std_entry(KTdevice* device, int* error, int flags) {
  int unread = VELMORA_OK;
  int& result = error ? *error : unread;
  std::unique_ptr<FgKtWrapperImpl> applet;
  try {
    applet = std::make_unique<FgKtWrapperImpl>();
    result = open(*applet, device, flags);
    if (result != VELMORA_OK) return nullptr;
    start(*applet, flags);
    return static_cast<FgKtWrapper*>(applet.release());
  } catch (...) {
    // Out of memory, at the most; nothing may be left behind.
    if (applet) applet->releaseInnerHandle();
    result = VELMORA_NO_DESIGN;
    return nullptr;
  }
}

int Fg_FreeGrabber(Fg_Struct* fg) {
  auto** const applet = reinterpret_cast<FgKtWrapper**>(fg);
  if (!applet || !*applet) return VELMORA_NO_INSTANCE;
  const int result = (*applet)->releaseInnerHandle();
  delete *applet;
  *applet = nullptr;
  return result;
}
