#include "support/dispatcher_library.h"

#include <dlfcn.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <new>

#include "external/dynamic_library.h"
#include "support/locks.h"

namespace korv::tools::logging {

namespace {

constexpr std::string_view kDispatcherName = "common-logging-dispatcher";
constexpr std::array<std::string_view, 5> kLibraryDirectories = {"bin", "dll", "Hardware Applets",
                                                                 "lib", "lib64"};
constexpr std::size_t kPathLimit = 1024;

// The conversions of the C library follow the host's locale: the Turkish one turns I into a dotless
// i.
constexpr char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isLibraryDirectory(std::string_view name) {
  return std::ranges::any_of(kLibraryDirectories, [name](std::string_view known) {
    return std::ranges::equal(known, name, {}, lowered, lowered);
  });
}

std::string_view withoutTrailingSlashes(std::string_view path) {
  return path.substr(0, path.find_last_not_of('/') + 1);
}

std::optional<std::string> baseDirectoryFromPath(std::string_view path) {
  if (path.size() >= kPathLimit) return std::nullopt;
  std::size_t slash = path.rfind('/');
  while (slash != std::string_view::npos) {
    const std::string_view directory = withoutTrailingSlashes(path.substr(0, slash));
    slash = directory.rfind('/');
    if (isLibraryDirectory(directory.substr(slash + 1))) {
      return slash == std::string_view::npos
                 ? "."
                 : std::string(withoutTrailingSlashes(directory.substr(0, slash)));
    }
  }
  return std::nullopt;
}

std::optional<std::string> baseDirectoryFromEnvironment() {
  for (const char* variable : {"KORVDIR5_64", "KORVDIR5"}) {
    if (const char* value = secure_getenv(variable)) {
      return std::string(withoutTrailingSlashes(std::string_view(value).substr(0, kPathLimit - 1)));
    }
  }
  return std::nullopt;
}

/// The base directory of this library, looked up on the first call.
std::optional<std::string> baseDirectory() {
  static std::atomic<std::uint32_t> flag{0};
  static std::optional<std::optional<std::string>> searched;
  const templates::platform::SpinLockVariableGuard guard(flag);
  if (!searched) searched = findBaseDirectory(ownLibraryPath());
  return *searched;
}

}  // namespace

std::string ownLibraryPath() {
  Dl_info info;
  if (dladdr(reinterpret_cast<const void*>(&ownLibraryPath), &info) == 0 || !info.dli_fname) {
    return {};
  }
  return info.dli_fname;
}

std::optional<std::string> findBaseDirectory(std::string_view libraryPath) {
  std::optional<std::string> directory = baseDirectoryFromPath(libraryPath);
  return directory ? directory : baseDirectoryFromEnvironment();
}

LibraryRecord openInstalledLibrary(std::string_view baseDirectory, std::string_view name) {
  LibraryRecord record;
  record.path.append(baseDirectory).append("/lib64/lib").append(name).append(".so");
  errno = 0;
  record.handle = dlopen(record.path.c_str(), velmora::kOpenLibraryFlags);
  // The loader reports a lack of memory like a missing library.
  if (!record.handle && errno == ENOMEM) throw std::bad_alloc();
  if (!record.handle) {
    const char* error = dlerror();
    record.error = error ? error : "";
  }
  return record;
}

std::optional<LibraryRecord> openDispatcherLibrary() {
  const std::optional<std::string> directory = baseDirectory();
  if (!directory) return std::nullopt;
  LibraryRecord record = openInstalledLibrary(*directory, kDispatcherName);
  return record.handle ? std::optional(std::move(record)) : std::nullopt;
}

}  // namespace korv::tools::logging
