/// What the fuzzers share.
#pragma once

#include <dlfcn.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "board/control.h"
#include "tests/temporary_directory.h"

namespace fuzzing {

/// Ends the process when a property does not hold; the fuzzer keeps the input. Standard error may
/// be captured, its descriptor is not.
inline void require(bool holds, const char* property) {
  if (holds) return;
  dprintf(STDERR_FILENO, "VIOLATED: %s\n", property);
  std::abort();
}

/// At the end of an input nothing may be left with the caller.
inline void requireNothingOutstanding() {
  const board::Outstanding left = board::outstanding();
  require(left.handles == 0 && left.designs == 0 && left.strings == 0, "everything is given back");
}

/// Keeps a library open: the fuzzer goes on counting in code that has been executed.
inline void* keepOpen(const char* library) {
  void* const handle = dlopen(library, RTLD_NOW);
  require(handle, "the library opens");
  return handle;
}

/// Where this process's files lie, gone at its end.
inline const TemporaryDirectory& directory() {
  static const TemporaryDirectory directory;
  return directory;
}

inline void writeFile(const std::string& name, std::string_view content) {
  std::ofstream(name, std::ios::binary) << content;
}

inline std::string readFile(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace fuzzing
