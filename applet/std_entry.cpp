/// Creation and release of an applet instance.
#include <stdlib.h>

#include <memory>

#include "design/design_image.h"
#include "external/release.h"
#include "parameters/fg_kt_wrapper_impl.h"
#include "parameters/port/applet_identity.h"
#include "support/cancellation.h"
#include "velmora/velmora.h"
#include "wrapper/loaded_design.h"

using namespace velmora;

namespace {

constexpr int kLoadArgument = 1;  // The reserved argument of both design loaders.

LoadedDesign loadDesign() {
  if (secure_getenv("__KORV_FORCE_EXTERNAL_HAP"))
    return LoadedDesign(HapLoadHapFileWithType(kHapFileName, kBoardType, kLoadArgument));
  return LoadedDesign(
      HapLoadDesignFromBuffer(velmora_design_image, kDesignImageSize, kLoadArgument));
}

/// Opens the runtime, loads the design and creates the inner handle. The instance takes over the
/// design only if all of this succeeds.
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
  if ((static_cast<unsigned>(flags) & unsigned{VELMORA_LEAVE_DESIGN}) == 0) applet.applyDefaults();
}

/// Creates and starts an instance; null on failure, with the code in `result`. Nothing stays
/// allocated or open after a failure or an exception.
std::unique_ptr<FgKtWrapperImpl> create(KTdevice* device, int flags, int& result) {
  auto applet = std::make_unique<FgKtWrapperImpl>();
  try {
    result = open(*applet, device, flags);
    if (result != VELMORA_OK) return nullptr;
    start(*applet, flags);
    return applet;
  } catch (...) {
    releaseQuietly([&] { applet->releaseInnerHandle(); });
    throw;
  }
}

}  // namespace

void* Std_entry(KTdevice* device, int* error, int flags) {
  int unread = VELMORA_OK;
  int& result = error ? *error : unread;
  try {
    return static_cast<FgKtWrapper*>(create(device, flags, result).release());
  } catch (...) {
    rethrowCancellation();
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
