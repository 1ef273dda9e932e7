/// The applet library as a runtime loads it: opened by name, functions looked up by name.
#pragma once

#include <memory>
#include <vector>

#include "velmora/velmora.h"

namespace velmora::tool {

/// Opens `libVelmora.so` on the loader's path and finds its functions; `Failure` when the library
/// or one of them is missing. The functions may be called while this object lives.
class AppletLibrary {
 public:
  AppletLibrary();
  /// Opens the libraries around the applet before it does, from the same places; `Failure` when one
  /// is of another board, which must not be handed a device of the virtual one.
  void requireVirtualBoard();

  decltype(::Std_entry)* stdEntry;
  decltype(::Fg_FreeGrabber)* freeGrabber;
  decltype(::Info)* info;

  decltype(::Fg_AcquireEx)* acquire;
  decltype(::Fg_stopAcquireEx)* stopAcquire;
  decltype(::Fg_getLastPicNumberBlockingEx)* waitForPicture;
  decltype(::Fg_getStatusEx)* status;

  decltype(::Fg_setParameterWithType)* setParameter;
  decltype(::Fg_getParameterWithType)* getParameter;
  decltype(::Fg_freeParameterStringWithType)* freeString;
  decltype(::Fg_getNrOfParameter)* parameterCount;
  decltype(::Fg_getParameterName)* parameterName;
  decltype(::Fg_getParameterId)* parameterId;
  decltype(::Fg_getParameterIdByName)* parameterIdByName;
  decltype(::Fg_saveConfig)* saveConfig;
  decltype(::Fg_loadConfig)* loadConfig;
  decltype(::Fg_getParameterInfoXML)* descriptionXml;
  decltype(::Fg_getParameterInfo)* description;
  decltype(::Fg_getEventName)* eventName;

 private:
  struct Close {
    void operator()(void* library) const;
  };
  template <class Function>
  void find(const char* name, Function*& function) const;

  std::unique_ptr<void, Close> library_;
  std::vector<std::unique_ptr<void, Close>> boardLibraries_;
};

}  // namespace velmora::tool
