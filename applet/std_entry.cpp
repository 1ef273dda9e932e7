/// Creation and release of an applet instance.
#include <cxxabi.h>
#include <stdlib.h>

#include <memory>

#include "design/design_image.h"
#include "parameters/applet_identity.h"
#include "parameters/fg_kt_wrapper_impl.h"
#include "velmora/velmora.h"
#include "wrapper/loaded_design.h"

using namespace velmora;

namespace {

constexpr int kLoadArgument = 1;  // What both design loaders are given last.

LoadedDesign loadDesign() {
  if (secure_getenv("__KORV_FORCE_EXTERNAL_HAP"))
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
  if ((static_cast<unsigned>(flags) & unsigned{VELMORA_LEAVE_DESIGN}) == 0) applet.applyDefaults();
}

/// Gives the inner handle of a failed start back; what the runtime throws meanwhile is dropped.
void releaseAfterFailure(FgKtWrapper& applet) {
  try {
    applet.releaseInnerHandle();
  } catch (abi::__forced_unwind&) {
    throw;
  } catch (...) {
    // The start has failed already.
  }
}

/// Starts an instance up; null, with the code in `result`, when it is refused. Whatever is thrown
/// leaves nothing behind.
std::unique_ptr<FgKtWrapperImpl> create(KTdevice* device, int flags, int& result) {
  auto applet = std::make_unique<FgKtWrapperImpl>();
  try {
    result = open(*applet, device, flags);
    if (result != VELMORA_OK) return nullptr;
    start(*applet, flags);
    return applet;
  } catch (...) {
    releaseAfterFailure(*applet);
    throw;
  }
}

}  // namespace

void* Std_entry(KTdevice* device, int* error, int flags) {
  int unread = VELMORA_OK;
  int& result = error ? *error : unread;
  try {
    return static_cast<FgKtWrapper*>(create(device, flags, result).release());
  } catch (abi::__forced_unwind&) {
    throw;  // The thread is being cancelled, which no handler may end.
  } catch (...) {
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
