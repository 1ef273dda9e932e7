#include "tool/configuration_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "velmora/handles.h"

namespace velmora::tool {
namespace {

std::string stripped(const std::string& text, const char* characters) {
  const auto begin = text.find_first_not_of(characters);
  const auto end = text.find_last_not_of(characters);
  return begin == std::string::npos ? "" : text.substr(begin, end + 1 - begin);
}

bool isName(const std::string& text) {
  return !text.empty() && std::ranges::all_of(text, [](unsigned char character) {
    return std::isalnum(character) || character == '_';
  });
}

/// The port of a line such as "[Port A]".
std::optional<unsigned> sectionPort(const std::string& line) {
  for (unsigned port = 0; port < kPorts; ++port)
    if (line.find(std::string("[Port ") + static_cast<char>('A' + port) + ']') != std::string::npos)
      return port;
  return std::nullopt;
}

}  // namespace

std::vector<ConfigurationEntry> readConfiguration(const std::string& file) {
  std::vector<ConfigurationEntry> entries;
  std::ifstream stream(file);
  std::optional<unsigned> port;
  unsigned number = 0;
  for (std::string line; std::getline(stream, line);) {
    ++number;
    if (line.starts_with('[')) port = sectionPort(line);
    const auto equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string before = line.substr(0, equals);
    const std::string key = stripped(before, " \t");
    if (isName(key))
      entries.push_back(
          {number, port, key, stripped(line.substr(equals + 1), " \t\r;'"), key == before});
  }
  return entries;
}

unsigned firstWindowsLine(const std::string& file) {
  std::ifstream stream(file);
  unsigned number = 0;
  for (std::string line; std::getline(stream, line);) {
    ++number;
    if (line.ends_with('\r')) return number;
  }
  return 0;
}

namespace {

/// What keeps a name from being a configuration's; the last word has `open`, with `flags`.
std::string whyNot(const std::string& file, int flags) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (std::filesystem::is_directory(status)) return "it is a directory";
  if (file.find(".mcf") == std::string::npos) return "its name has to contain .mcf";
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
    return "it is no regular file";
  const int opened = open(file.c_str(), flags | O_CLOEXEC | O_NONBLOCK);
  if (opened < 0) return std::strerror(errno);
  close(opened);
  return {};
}

}  // namespace

std::string whyUnreadable(const std::string& file) { return whyNot(file, O_RDONLY); }

std::string whyUnwritable(const std::string& file) {
  const auto directory = std::filesystem::path(file).parent_path();
  std::string why = whyNot(file, O_WRONLY);
  if (why != std::strerror(ENOENT)) return why;
  // A new file needs a place.
  return access(directory.empty() ? "." : directory.c_str(), W_OK) == 0 ? "" : std::strerror(errno);
}

}  // namespace velmora::tool
