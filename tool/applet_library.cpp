#include "tool/applet_library.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "tool/code_text.h"

namespace velmora::tool {
namespace {

constexpr const char* kLibraryName = "libVelmora.so";

void* open() {
  void* const library = dlopen(kLibraryName, RTLD_NOW | RTLD_LOCAL);
  if (!library) throw Failure(fmt::format("cannot load the applet: {}", dlerror()));
  return library;
}

}  // namespace

void AppletLibrary::Close::operator()(void* library) const { dlclose(library); }

template <class Function>
void AppletLibrary::find(const char* name, Function*& function) const {
  function = reinterpret_cast<Function*>(dlsym(library_.get(), name));
  if (!function) throw Failure(fmt::format("{} has no function {}", kLibraryName, name));
}

AppletLibrary::AppletLibrary() : library_(open()) {
  find("Std_entry", stdEntry);
  find("Fg_FreeGrabber", freeGrabber);
  find("Info", info);
  find("Fg_AcquireEx", acquire);
  find("Fg_stopAcquireEx", stopAcquire);
  find("Fg_getLastPicNumberBlockingEx", waitForPicture);
  find("Fg_getStatusEx", status);
  find("Fg_setParameterWithType", setParameter);
  find("Fg_getParameterWithType", getParameter);
  find("Fg_freeParameterStringWithType", freeString);
  find("Fg_getNrOfParameter", parameterCount);
  find("Fg_getParameterName", parameterName);
  find("Fg_getParameterId", parameterId);
  find("Fg_getParameterIdByName", parameterIdByName);
  find("Fg_saveConfig", saveConfig);
  find("Fg_loadConfig", loadConfig);
  find("Fg_getParameterInfoXML", descriptionXml);
  find("Fg_getParameterInfo", description);
  find("Fg_getEventName", eventName);
}

}  // namespace velmora::tool
