#include "tool/applet_library.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <link.h>

#include <filesystem>
#include <string>
#include <utility>

#include "tool/code_text.h"

namespace velmora::tool {
namespace {

constexpr const char* kLibraryName = "libVelmora.so";

/// The libraries around the applet that hand out and take devices.
constexpr const char* kBoardLibraries[] = {"libvorn5.so", "libdervin.so", "libkorv_hw.so"};
constexpr const char* kBoardFunction = "VirtualBoard_createDevice";

void* open() {
  void* library = dlopen(kLibraryName, RTLD_NOW | RTLD_LOCAL);
  link_map* file = nullptr;
  if (library && dlinfo(library, RTLD_DI_LINKMAP, &file) == 0 && file->l_name[0] != '/') {
    // The applet looks for its log beside itself, from whatever directory.
    const std::string path = std::filesystem::absolute(file->l_name);
    dlclose(library);
    library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  }
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

void AppletLibrary::requireVirtualBoard() {
  for (const char* name : kBoardLibraries) {
    std::unique_ptr<void, Close> library(dlopen(name, RTLD_NOW | RTLD_LOCAL));
    if (!library) continue;  // The applet has the words for that.
    if (dlsym(library.get(), kBoardFunction) != dlsym(RTLD_DEFAULT, kBoardFunction))
      throw Failure(fmt::format(
          "{} is not the virtual board's, and the tool has no other device; info needs none",
          name));
    boardLibraries_.push_back(std::move(library));
  }
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
