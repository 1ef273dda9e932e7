#pragma once

#include <dlfcn.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "board/control.h"

using Library = std::shared_ptr<void>;

/// A library of `RUNTIMES` that every applet uses as acquisition runtime while the result is kept;
/// for an empty name nothing, so that the board's own stays in place.
inline Library loadRuntime(const std::string& directory) {
  if (directory.empty()) return nullptr;
  void* library = dlopen((RUNTIMES "/" + directory + "/libvorn5.so").c_str(), RTLD_NOW);
  if (!library) throw std::runtime_error(dlerror());
  return {library, dlclose};
}

/// Whether anything holds an acquisition runtime open.
inline bool runtimeIsOpen() {
  void* library = dlopen("libvorn5.so", RTLD_NOW | RTLD_NOLOAD);
  return library && dlclose(library) == 0;
}

/// The runtime is closed, and the board got everything back but `handles` inner handles.
inline bool allReleased(int handles = 0) {
  const board::Outstanding out = board::outstanding();
  return out.handles == handles && out.designs == 0 && out.strings == 0 && !runtimeIsOpen();
}
