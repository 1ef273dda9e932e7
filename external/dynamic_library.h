/// How the applet opens libraries at run time.
#pragma once

#include <dlfcn.h>

namespace velmora {

/// All symbols at once, the library's own definitions first. The address and thread sanitizers
/// refuse deep binding, so their builds do without.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VELMORA_SANITIZED
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELMORA_SANITIZED
#endif
#ifdef VELMORA_SANITIZED
inline constexpr int kOpenLibraryFlags = RTLD_NOW;
#else
inline constexpr int kOpenLibraryFlags = RTLD_NOW | RTLD_DEEPBIND;
#endif

}  // namespace velmora
