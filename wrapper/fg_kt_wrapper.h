/// The folder wrapper/ is the part of an applet that does not depend on the design: the binding to
/// the acquisition runtime and the services that every applet shares.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "external/vorn5.h"
#include "wrapper/fg_error.h"
#include "wrapper/wrapper_function_table.h"

namespace korv::tools::logging {
class Logger;
}

namespace velmora {

class Fg_ConfigFileParser;
class Fg_ParameterInfo;
class ParameterNodes;

/// Applet-independent base of an applet instance: binds the acquisition runtime, owns the inner
/// handle, the design, the last error and the parameter descriptions, and offers the services that
/// every applet shares. The runtime's tools rely on the order of the virtual operations; do not
/// change it.
///
/// An instance is started by `initializeDllFunctions`, `runFgInit` and `initHandles`, in this
/// order, on one thread. Nothing here takes a lock.
class FgKtWrapper {
 public:
  /// @param nrOfProcesses camera ports that the registry describes.
  explicit FgKtWrapper(int nrOfProcesses);
  FgKtWrapper(const FgKtWrapper&) = delete;
  FgKtWrapper& operator=(const FgKtWrapper&) = delete;

  /// The class's logger, created on first use and kept.
  virtual korv::tools::logging::Logger& logger();
  /// Reads the applet's settings; stops at the first missing key and returns false.
  virtual bool loadParameters(Fg_ConfigFileParser& parser) = 0;
  /// Writes the applet's settings.
  virtual void saveParameters(Fg_ConfigFileParser& parser) = 0;
  virtual int processChannelToDma(int process, int channel) = 0;
  virtual int mapDmaToFormat(int dma) = 0;
  virtual int setDmaAlignment(int dma, int alignment) = 0;
  virtual int getDmaAlignment(int dma) = 0;
  /// Closes the runtime, then unloads the design. Does not release the inner handle.
  virtual ~FgKtWrapper();
  /// Describes the applet's parameters in the registry.
  virtual void initParameterInfo() = 0;
  virtual int Fg_setParameterWithType(int id, const void* value, unsigned dma, int type) = 0;
  virtual int Fg_getParameterWithType(int id, void* value, unsigned dma, int type) = 0;
  virtual int Fg_freeParameterStringWithType(int id, void* value, unsigned dma, int type) = 0;
  virtual int Fg_getParameterIdByName(const char* name) = 0;
  virtual const char* Fg_getParameterName(int index) = 0;
  virtual int Fg_getParameterId(int index) = 0;
  virtual int Fg_getNrOfParameter() = 0;
  /// Writes a configuration file: header, then `saveParameters`. 0 or -5001, recorded.
  virtual int Fg_saveConfig(Fg_Struct* fg, const char* file);
  /// Checks that a configuration file is this applet's, then `loadParameters`. Returns 0, -2076 or
  /// -5000; both failures record -5000.
  virtual int Fg_loadConfig(Fg_Struct* fg, const char* file);
  /// Copies a port's GenApi document into the caller's buffer, or returns its size.
  virtual int Fg_getParameterInfoXML(Fg_Struct* fg, int port, char* buffer, std::size_t* size);
  virtual ShadingMaster* Fg_AllocShading(int, int) { return nullptr; }
  virtual int Fg_FreeShading(ShadingMaster*) { return VELMORA_NOT_SUPPORTED; }
  virtual int Shad_SetSubValueLine(ShadingMaster*, int, int, float) {
    return VELMORA_NOT_SUPPORTED;
  }
  virtual int Shad_SetMultValueLine(ShadingMaster*, int, int, float) {
    return VELMORA_NOT_SUPPORTED;
  }
  virtual int Shad_SetFixedPatternNoiseLine(ShadingMaster*, int, int, int) {
    return VELMORA_NOT_SUPPORTED;
  }
  virtual int Shad_GetMaxLine(ShadingMaster*) { return VELMORA_NOT_SUPPORTED; }
  virtual int Shad_GetAccess(ShadingMaster*) { return VELMORA_NOT_SUPPORTED; }
  virtual int Shad_FreeAccess(ShadingMaster*) { return VELMORA_NOT_SUPPORTED; }
  virtual int Shad_WriteActLine(ShadingMaster*, int) { return VELMORA_NOT_SUPPORTED; }
  /// Mask of the design's event with this name, 0 when there is none.
  virtual std::uint64_t Fg_getEventMask(const char* name);
  /// Name of the design's event with exactly this mask, null when there is none.
  virtual const char* Fg_getEventName(std::uint64_t mask);
  virtual const char* getVendorName() = 0;
  virtual const char* getAppletName() = 0;
  virtual const char* getAppletVersion() = 0;
  virtual int getLoadAppletId() = 0;

  /// Opens the runtime library and binds its functions. Returns 0, or -2031, recorded and logged.
  int initializeDllFunctions(const char* libraryName);
  /// Creates the inner handle on a loaded design. Returns 0, -2031 or the runtime's code; failures
  /// are recorded and logged.
  int runFgInit(const char* hapName, KTdevice* device, fpga_design* design, int flags);
  /// Stores both; from now on the instance owns the design.
  void initHandles(KTdevice* device, fpga_design* design);
  /// Releases the inner handle. Returns the runtime's result; 0 when there is nothing to call.
  int releaseInnerHandle();

  const WrapperFunctionTable& wrapperFg() const;
  Fg_Struct* vornFg() const;
  KTdevice* boardHandle() const;
  fpga_design* designHandle() const;
  Fg_ParameterInfo* parameterInfo() const;
  ParameterNodes& parameterNodes() const;
  Fg_Error& fgError() const;

  /// Process-wide holders of the handles of the latest successful start-up. A non-null argument is
  /// stored and returned, a null one returns what is stored. Any thread.
  static KTdevice* accessDeviceHandle(KTdevice* device);
  static fpga_design* accessDesignHandle(fpga_design* design);

  void setError(int code) { fgError().setErr(code); }
  int Fg_getLastErrorNumber() const { return fgError().getErrorNumberBuffer(); }
  /// The runtime's last error for the inner handle; -12 when that is not available.
  int Fg_getLastErrorNumberKt() const;

  /// Id of a design parameter; below 1 when there is none, -12 without the runtime's function.
  int getParameterIdByName(const char* name) const;

  /// @name Design-level access through the runtime on the inner handle
  /// The runtime's results; -12 (or null) when the function or the inner handle is missing.
  /// @{
  int getUnwrappedParameterWithType(int id, void* value, unsigned dma, int type) const;
  int setUnwrappedParameterWithType(int id, const void* value, unsigned dma, int type) const;
  int freeUnwrappedParameterString(int id, void* value, unsigned dma, int type) const;
  int getUnwrappedParameter(int id, void* value, unsigned dma) const;
  int setUnwrappedParameter(int id, const void* value, unsigned dma) const;
  RegisterInfo* getUnwrappedParameterInfo() const;
  /// @}

  /// First root group of a port's description; null for no such port.
  RegisterInfo* Fg_getParameterInfo(int port) const;

 private:
  struct Private;

  /// Writes a whole configuration to a file; false when that is not possible.
  bool writeConfiguration(const char* file);

  korv::tools::logging::Logger* logger_ = nullptr;
  std::unique_ptr<Private> private_;

 protected:
  /// Whether design registers can be accessed by `DRA_` ids.
  bool directRegisterAccess_ = false;
};

}  // namespace velmora
