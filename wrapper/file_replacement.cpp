#include "wrapper/file_replacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>

#include "wrapper/temporary_file.h"

namespace velmora {
namespace {

constexpr mode_t kPermissions = ALLPERMS;
constexpr mode_t kPrivate = S_IRUSR | S_IWUSR;
constexpr mode_t kOfNewFile = DEFFILEMODE;  // But for what the process masks.

// Short, so that it fits wherever the file's own name does. Configuration files end in ".mcf".
constexpr const char* kTemplate = ".velmora-XXXXXX.mcf";
constexpr int kSuffixLength = 4;

/// A new file, removed at the end unless it was moved.
class NewFile {
 public:
  NewFile(const std::filesystem::path& directory, mode_t mode) : name_(directory / kTemplate) {
    descriptor_ = makeUniqueFile(name_.data(), kSuffixLength, mode);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    if (descriptor_ < 0) return;
    close(descriptor_);
    if (!moved_) unlink(name_.c_str());
  }

  bool created() const { return descriptor_ >= 0; }
  const char* name() const { return name_.c_str(); }

  /// Takes over owner and mode of another file; false when that is not possible.
  bool resemble(const struct stat& other) const {
    struct stat own = {};
    if (fstat(descriptor_, &own) != 0) return false;
    const bool sameOwner = own.st_uid == other.st_uid && own.st_gid == other.st_gid;
    return (sameOwner || fchown(descriptor_, other.st_uid, other.st_gid) == 0) &&
           fchmod(descriptor_, other.st_mode & kPermissions) == 0;
  }

  bool moveTo(const std::filesystem::path& target) {
    moved_ = std::rename(name_.c_str(), target.c_str()) == 0;
    return moved_;
  }

 private:
  std::string name_;
  int descriptor_;
  bool moved_ = false;
};

/// Whether a file can be opened for writing; it keeps its content.
bool isWritable(const char* file) {
  const int descriptor = open(file, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return false;
  close(descriptor);
  return true;
}

/// After a failure to create or move a file: whether it is the directory that does not take it. A
/// mounted file cannot be moved to.
bool directoryRefuses() {
  constexpr int kRefusals[] = {EACCES, EPERM, EROFS, EBUSY, EXDEV, ENAMETOOLONG};
  return std::find(std::begin(kRefusals), std::end(kRefusals), errno) != std::end(kRefusals);
}

}  // namespace

bool replaceFile(const char* file, const std::function<bool(const char*)>& write) {
  struct stat old = {};
  struct stat link = {};
  const bool exists = stat(file, &old) == 0;
  if (exists ? !S_ISREG(old.st_mode) || !isWritable(file) : lstat(file, &link) == 0)
    return write(file);

  std::error_code error;
  const std::filesystem::path target = exists ? std::filesystem::canonical(file, error) : file;
  if (error) return write(file);
  NewFile replacement(target.parent_path(), exists ? kPrivate : kOfNewFile);
  if (!replacement.created()) return directoryRefuses() && write(file);
  if (exists && !replacement.resemble(old)) return write(file);
  if (!write(replacement.name())) return false;
  return replacement.moveTo(target) || (directoryRefuses() && write(file));
}

}  // namespace velmora
