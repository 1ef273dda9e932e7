#include "tool/applet_library.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "tool/error_text.h"

namespace velmora::tool {
namespace {

constexpr const char* kLibraryName = "libVelmora.so";

void* open() {
  void* const library = dlopen(kLibraryName, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw Failure(fmt::format("cannot load the applet: {}", dlerror()));
  return library;
}

}  // namespace

void AppletLibrary::Close::operator()(void* library) const { dlclose(library); }

AppletLibrary::AppletLibrary() : library_(open()) {}

AppletLibrary::Symbol AppletLibrary::symbol(const char* name) const {
  void* const address = dlsym(library_.get(), name);
  if (address == nullptr) throw Failure(fmt::format("{} has no function {}", kLibraryName, name));
  return {address};
}

}  // namespace velmora::tool
