/// How a function of the standard fails: by throwing a `Failure`, which its C boundary turns into
/// the result and the calling thread's last error.
#pragma once

#include <string>

#include "gentl/gentl.h"

namespace gentl {

struct Failure {
  GC_ERROR code;
  std::string text;
};

[[noreturn]] inline void fail(GC_ERROR code, std::string text) {
  throw Failure{code, std::move(text)};
}
inline void require(bool condition, GC_ERROR code, const char* text) {
  if (!condition) fail(code, text);
}
inline void requirePointer(const void* pointer) {
  require(pointer, GC_ERR_INVALID_PARAMETER, "a pointer is null");
}
inline void requireIndex(std::size_t index, std::size_t count) {
  require(index < count, GC_ERR_INVALID_INDEX, "there are not as many");
}

}  // namespace gentl
