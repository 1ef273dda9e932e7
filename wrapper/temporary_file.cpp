#include "wrapper/temporary_file.h"

#include <fcntl.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace velmora {
namespace {

constexpr std::string_view kPlaceholder = "XXXXXX";
constexpr std::string_view kDigits =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
constexpr int kAttempts = 62 * 62 * 62;
constexpr std::uint64_t kStep = 7777;

std::uint64_t uptimeSeconds() {
  struct sysinfo info = {};
  sysinfo(&info);
  return static_cast<std::uint64_t>(info.uptime);
}

/// The next number for a file name; the counter serves the whole process.
std::uint64_t advanceCounter(std::uint64_t step) {
  static std::atomic<std::uint64_t> counter{0};
  return counter.fetch_add(step) + step;
}

/// Writes the number's lowest digits, the least significant first.
void writeDigits(std::uint64_t number, char* digits) {
  for (std::size_t i = 0; i < kPlaceholder.size(); ++i) {
    digits[i] = kDigits[number % kDigits.size()];
    number /= kDigits.size();
  }
}

/// The placeholder's first character; null when it is not right before the suffix.
char* findPlaceholder(char* nameTemplate, int suffixLength) {
  if (!nameTemplate || suffixLength < 0) return nullptr;
  const std::string_view name = nameTemplate;
  const std::size_t tail = kPlaceholder.size() + static_cast<std::size_t>(suffixLength);
  if (name.size() < tail || !name.substr(name.size() - tail).starts_with(kPlaceholder)) {
    return nullptr;
  }
  return nameTemplate + (name.size() - tail);
}

}  // namespace

int makeUniqueFile(char* nameTemplate, int suffixLength, mode_t mode) {
  char* const digits = findPlaceholder(nameTemplate, suffixLength);
  if (!digits) {
    errno = EINVAL;
    return -1;
  }
  std::uint64_t number = advanceCounter(uptimeSeconds());
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    writeDigits(number, digits);
    const int file = open(nameTemplate, O_RDWR | O_CREAT | O_EXCL, mode);
    if (file >= 0) return file;
    if (errno != EEXIST && errno != EINTR) break;  // Another name would fail too.
    number = advanceCounter(kStep);
  }
  nameTemplate[0] = '\0';
  return -1;
}

char* createTempFile() {
  constexpr char kTemplate[] = "/tmp/coef-XXXXXX.tiff";
  constexpr int kSuffixLength = 5;
  auto name = std::make_unique<char[]>(32);
  std::memcpy(name.get(), kTemplate, sizeof(kTemplate));
  const int file = makeUniqueFile(name.get(), kSuffixLength);
  if (file < 0) return nullptr;
  close(file);
  return name.release();
}

void deleteTempFile(char* name) {
  if (!name) return;
  unlink(name);
  delete[] name;
}

}  // namespace velmora
