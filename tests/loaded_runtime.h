#pragma once

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "board/virtual_board.h"

/// A library of `RUNTIMES` that every applet opened meanwhile uses as acquisition runtime; for an
/// empty name the board's own stays in place.
class LoadedRuntime {
 public:
  explicit LoadedRuntime(const std::string& directory) {
    if (directory.empty()) return;
    library_ = dlopen((RUNTIMES "/" + directory + "/libvorn5.so").c_str(), RTLD_NOW);
    if (!library_) throw std::runtime_error(dlerror());
  }
  LoadedRuntime(const LoadedRuntime&) = delete;
  LoadedRuntime& operator=(const LoadedRuntime&) = delete;
  ~LoadedRuntime() {
    if (library_) dlclose(library_);
  }
  void* symbol(const char* name) const { return dlsym(library_, name); }

 private:
  void* library_ = nullptr;
};

/// Whether anything holds an acquisition runtime open.
inline bool runtimeIsOpen() {
  void* library = dlopen("libvorn5.so", RTLD_NOW | RTLD_NOLOAD);
  if (library) dlclose(library);
  return library != nullptr;
}

/// The runtime is closed, and the board got everything back but `handles` inner handles.
inline bool allReleased(int handles = 0) {
  const board::Outstanding out = board::outstanding();
  return out.handles == handles && out.designs == 0 && out.strings == 0 && !runtimeIsOpen();
}
