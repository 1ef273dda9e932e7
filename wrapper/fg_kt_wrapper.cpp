#include "wrapper/fg_kt_wrapper.h"

#include <dlfcn.h>

#include <atomic>
#include <cstring>
#include <type_traits>

#include "external/dynamic_library.h"
#include "external/release.h"
#include "paraminfo/parameter_info.h"
#include "paraminfo/parameter_nodes.h"
#include "support/logging.h"
#include "wrapper/loaded_design.h"

namespace velmora {

using korv::tools::logging::logMessage;

namespace {

constexpr int kLogInitRefused = 5;
constexpr int kLogNoRuntime = 6;
constexpr int kMaskedEvents = 64;
constexpr int kMissing = VELMORA_NOT_AVAILABLE;

struct LibraryCloser {
  void operator()(void* library) const {
    releaseQuietly([=] { dlclose(library); });
  }
};

template <class Function>
Function* symbol(void* library, const char* name) {
  return reinterpret_cast<Function*>(dlsym(library, name));
}

template <class Handle>
Handle* accessHolder(std::atomic<Handle*>& holder, Handle* handle) {
  if (handle) holder = handle;
  return handle ? handle : holder.load();
}

}  // namespace

struct FgKtWrapper::Private {
  explicit Private(int processes) : registry(processes), nodes(processes) {}

  /// Calls a runtime function on the inner handle; returns `missing` when either is null.
  template <class Signature, class Result, class... Arguments>
  Result call(RuntimeEntry<Signature> entry, Result missing, Arguments... arguments) const {
    Signature* function = table[entry];
    return function && inner ? function(inner, arguments...) : missing;
  }

  // Destroyed last to first: the runtime library is closed, then the design is unloaded.
  Fg_ParameterInfo registry;
  ParameterNodes nodes;
  Fg_Error error;
  WrapperFunctionTable table;
  Fg_Struct* inner = nullptr;
  KTdevice* device = nullptr;
  LoadedDesign design;
  VornInitHandleSlaveAware* initSlaveAware = nullptr;
  VornInitHandle* init = nullptr;
  VornGetParameterIdByName* idByName = nullptr;
  VornGetLastErrorNumber* lastErrorAtInit = nullptr;
  std::unique_ptr<void, LibraryCloser> library;
};

FgKtWrapper::FgKtWrapper(int nrOfProcesses) : private_(std::make_unique<Private>(nrOfProcesses)) {}

FgKtWrapper::~FgKtWrapper() = default;

korv::tools::logging::Logger& FgKtWrapper::logger() {
  if (!logger_ || logger_->isDefault())
    logger_ = korv::tools::logging::Logging::getLogger("korv.wrapper.FgKtWrapper");
  return *logger_;
}

int FgKtWrapper::initializeDllFunctions(const char* libraryName) {
  private_->library.reset(dlopen(libraryName, kOpenLibraryFlags));
  if (!private_->library) {
    logMessage(logger(), kLogNoRuntime, "error opening dll '", libraryName, "'");
    return fgError().setErr(VELMORA_NO_RUNTIME);
  }
  void* library = private_->library.get();
  private_->table.bind(library);
  private_->idByName = symbol<VornGetParameterIdByName>(library, "Fg_getParameterIdByName");
  return VELMORA_OK;
}

int FgKtWrapper::runFgInit(const char* hapName, KTdevice* device, fpga_design* design, int flags) {
  auto& p = *private_;
  void* library = p.library.get();
  p.initSlaveAware = symbol<VornInitHandleSlaveAware>(library, "Fg_InitHandleSlaveAware");
  p.init = symbol<VornInitHandle>(library, "Fg_InitHandle");
  p.lastErrorAtInit = symbol<VornGetLastErrorNumber>(library, "Fg_getLastErrorNumber");
  if (!p.initSlaveAware && !p.init) {
    logMessage(logger(), kLogNoRuntime,
               "cannot resolve function 'Fg_InitHandle' and/or 'Fg_InitHandleSlaveAware'");
    return fgError().setErr(VELMORA_NO_RUNTIME);
  }

  p.inner = p.initSlaveAware ? p.initSlaveAware(hapName, device, design, flags)
                             : p.init(hapName, device, design);
  if (p.inner) {
    accessDeviceHandle(device);
    accessDesignHandle(design);
    return VELMORA_OK;
  }

  logMessage(logger(), kLogInitRefused, "error calling '",
             p.initSlaveAware ? "Fg_InitHandleSlaveAware" : "Fg_InitHandle", "' (hapName = '",
             hapName, "')");
  const int runtimeError = p.lastErrorAtInit ? p.lastErrorAtInit(nullptr) : 0;
  // A refusal without a code of its own must not pass for success.
  return fgError().setErr(runtimeError != 0 ? runtimeError : VELMORA_NO_DESIGN);
}

void FgKtWrapper::initHandles(KTdevice* device, fpga_design* design) {
  private_->device = device;
  private_->design.reset(design);
}

int FgKtWrapper::releaseInnerHandle() {
  const int result = private_->call(runtime::kFreeGrabber, int{VELMORA_OK});
  private_->inner = nullptr;
  return result;
}

const WrapperFunctionTable& FgKtWrapper::wrapperFg() const { return private_->table; }
Fg_Struct* FgKtWrapper::vornFg() const { return private_->inner; }
KTdevice* FgKtWrapper::boardHandle() const { return private_->device; }
fpga_design* FgKtWrapper::designHandle() const { return private_->design.get(); }
Fg_ParameterInfo* FgKtWrapper::parameterInfo() const { return &private_->registry; }
ParameterNodes& FgKtWrapper::parameterNodes() const { return private_->nodes; }
Fg_Error& FgKtWrapper::fgError() const { return private_->error; }

KTdevice* FgKtWrapper::accessDeviceHandle(KTdevice* device) {
  static std::atomic<KTdevice*> holder{nullptr};
  return accessHolder(holder, device);
}

fpga_design* FgKtWrapper::accessDesignHandle(fpga_design* design) {
  static std::atomic<fpga_design*> holder{nullptr};
  return accessHolder(holder, design);
}

int FgKtWrapper::Fg_getLastErrorNumberKt() const {
  return private_->call(runtime::kGetLastErrorNumber, kMissing);
}

int FgKtWrapper::getParameterIdByName(const char* name) const {
  return private_->idByName ? private_->idByName(private_->inner, name) : kMissing;
}

int FgKtWrapper::getUnwrappedParameterWithType(int id, void* value, unsigned dma, int type) const {
  return private_->call(runtime::kGetParameterWithType, kMissing, id, value, dma, type);
}

int FgKtWrapper::setUnwrappedParameterWithType(int id, const void* value, unsigned dma,
                                               int type) const {
  return private_->call(runtime::kSetParameterWithType, kMissing, id, value, dma, type);
}

int FgKtWrapper::freeUnwrappedParameterString(int id, void* value, unsigned dma, int type) const {
  return private_->call(runtime::kFreeParameterStringWithType, kMissing, id, value, dma, type);
}

int FgKtWrapper::getUnwrappedParameter(int id, void* value, unsigned dma) const {
  return private_->call(runtime::kGetParameter, kMissing, id, value, dma);
}

int FgKtWrapper::setUnwrappedParameter(int id, const void* value, unsigned dma) const {
  return private_->call(runtime::kSetParameter, kMissing, id, value, dma);
}

RegisterInfo* FgKtWrapper::getUnwrappedParameterInfo() const {
  return private_->call(runtime::kGetParameterInfo, static_cast<RegisterInfo*>(nullptr), 0);
}

RegisterInfo* FgKtWrapper::Fg_getParameterInfo(int port) const {
  return private_->registry.getRegisterInfo(port);
}

std::uint64_t FgKtWrapper::Fg_getEventMask(const char* name) {
  if (!name) return 0;
  for (int i = 0; i < kMaskedEvents; ++i) {
    const HapEvent* event = HapGetEvent(designHandle(), i);
    if (event && event->name && std::strcmp(event->name, name) == 0) return std::uint64_t{1} << i;
  }
  return 0;
}

const char* FgKtWrapper::Fg_getEventName(std::uint64_t mask) {
  for (int i = 0; i < kMaskedEvents; ++i) {
    if (mask != std::uint64_t{1} << i) continue;
    const HapEvent* event = HapGetEvent(designHandle(), i);
    return event ? event->name : nullptr;
  }
  return nullptr;
}

}  // namespace velmora
