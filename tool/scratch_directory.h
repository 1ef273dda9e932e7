/// A directory for the files of one moment.
#pragma once

#include <fmt/format.h>
#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include "tool/code_text.h"

namespace velmora::tool {

/// Goes with what is in it.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::string name = std::filesystem::temp_directory_path() / "velmora-XXXXXX";
    if (!mkdtemp(name.data()))
      throw Failure(fmt::format("cannot create {}: {}", name, std::strerror(errno)));
    path_ = name;
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace velmora::tool
