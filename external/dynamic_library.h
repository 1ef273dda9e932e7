/// How the applet opens libraries at run time.
#pragma once

#include <dlfcn.h>

// How clang tells what GCC tells by macros.
#ifndef __has_feature
#define __has_feature(feature) 0
#endif

namespace velmora {

/// All symbols at once, the library's own definitions first. The address and thread sanitizers
/// refuse deep binding, so their builds do without.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) ||       \
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
inline constexpr int kOpenLibraryFlags = RTLD_NOW;
#else
inline constexpr int kOpenLibraryFlags = RTLD_NOW | RTLD_DEEPBIND;
#endif

}  // namespace velmora
