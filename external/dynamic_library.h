/// How the applet opens libraries at run time.
#pragma once

#include <dlfcn.h>

namespace velmora {

/// Resolve all symbols at once, preferring the library's own definitions. The address and thread
/// sanitizers refuse deep binding, so their builds do without.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int kOpenLibraryFlags = RTLD_NOW;
#else
inline constexpr int kOpenLibraryFlags = RTLD_NOW | RTLD_DEEPBIND;
#endif

}  // namespace velmora
