/// The applet library as a runtime loads it: opened by name, functions looked up by name.
#pragma once

#include <memory>

#include "velmora/velmora.h"

namespace velmora::tool {

/// Opens `libVelmora.so` on the loader's path and finds its functions; `Failure` when the library
/// or one of them is missing. The functions may be called while this object lives.
class AppletLibrary {
  struct Close {
    void operator()(void* library) const;
  };
  /// An address that takes the type of the function it is assigned to.
  struct Symbol {
    void* address;
    template <class Function>
    operator Function*() const {
      return reinterpret_cast<Function*>(address);
    }
  };
  Symbol symbol(const char* name) const;

  std::unique_ptr<void, Close> library_;

 public:
  AppletLibrary();

  decltype(::Std_entry)* const stdEntry = symbol("Std_entry");
  decltype(::Fg_FreeGrabber)* const freeGrabber = symbol("Fg_FreeGrabber");
  decltype(::Info)* const info = symbol("Info");

  decltype(::Fg_AcquireEx)* const acquire = symbol("Fg_AcquireEx");
  decltype(::Fg_stopAcquireEx)* const stopAcquire = symbol("Fg_stopAcquireEx");
  decltype(::Fg_getLastPicNumberBlockingEx)* const waitForPicture =
      symbol("Fg_getLastPicNumberBlockingEx");

  decltype(::Fg_setParameterWithType)* const setParameter = symbol("Fg_setParameterWithType");
  decltype(::Fg_getParameterWithType)* const getParameter = symbol("Fg_getParameterWithType");
  decltype(::Fg_freeParameterStringWithType)* const freeString =
      symbol("Fg_freeParameterStringWithType");
  decltype(::Fg_getNrOfParameter)* const parameterCount = symbol("Fg_getNrOfParameter");
  decltype(::Fg_getParameterName)* const parameterName = symbol("Fg_getParameterName");
  decltype(::Fg_getParameterId)* const parameterId = symbol("Fg_getParameterId");
  decltype(::Fg_getParameterIdByName)* const parameterIdByName = symbol("Fg_getParameterIdByName");
  decltype(::Fg_saveConfig)* const saveConfig = symbol("Fg_saveConfig");
  decltype(::Fg_loadConfig)* const loadConfig = symbol("Fg_loadConfig");
  decltype(::Fg_getParameterInfoXML)* const descriptionXml = symbol("Fg_getParameterInfoXML");
  decltype(::Fg_getParameterInfo)* const description = symbol("Fg_getParameterInfo");
  decltype(::Fg_getEventName)* const eventName = symbol("Fg_getEventName");
};

}  // namespace velmora::tool
