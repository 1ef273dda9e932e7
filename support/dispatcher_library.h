/// The folder support/ holds what is not about parameters: locks, singletons and logs. This header
/// finds and opens the logging dispatcher library.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korv::tools::logging {

/// The result of opening a library.
struct LibraryRecord {
  void* handle = nullptr;  ///< Loader handle; null when the library could not be opened.
  std::string path;
  std::string error;  ///< The loader's message when `handle` is null.
};

/// Path of the file that holds the calling library, as the dynamic loader knows it; empty when it
/// does not.
std::string ownLibraryPath();

/// Installation directory of the software around the file `libraryPath`, without a trailing '/'
/// (so the root directory is the empty text). It is the directory that contains the innermost
/// directory of the path called bin, dll, Hardware Applets, lib or lib64, in upper or lower case.
/// Without such a directory, or for a path of 1024 bytes or more, it is the value of the
/// environment variable "KORVDIR5_64" or, when that is unset, "KORVDIR5", of which at most 1023
/// characters count. Nothing when these are unset too.
std::optional<std::string> findBaseDirectory(std::string_view libraryPath);

/// Opens the library `name` of the installation at `baseDirectory`, that is
/// `<baseDirectory>/lib64/lib<name>.so`. Throws `std::bad_alloc` when the loader lacks memory.
LibraryRecord openInstalledLibrary(std::string_view baseDirectory, std::string_view name);

/// Opens the dispatcher library of the installation that this library belongs to; nothing when
/// there is none. The installation is looked for once per process. The library stays loaded: other
/// threads may be running its code at any time.
std::optional<LibraryRecord> openDispatcherLibrary();

}  // namespace korv::tools::logging
