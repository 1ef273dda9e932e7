#include "tool/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <utility>

#include "board/printable.h"
#include "tool/code_text.h"

namespace velmora::tool {

std::string utf8(std::string_view latin1) {
  std::string text;
  for (const char character : latin1) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x80) {
      text += character;
    } else {
      text += static_cast<char>(0xC0 | (byte >> 6));
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

namespace {

char upper(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

void print(std::FILE* stream, std::string_view line) {
  std::fputs((board::printable(line) + '\n').c_str(), stream);
}

}  // namespace

void printLine(std::string_view line) { print(stdout, line); }
void printError(std::string_view line) { print(stderr, line); }

bool equalIgnoringCase(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, upper, upper);
}

std::size_t editDistance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t replaced = diagonal + (upper(one[i]) == upper(other[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

void writeFile(const std::string& file, std::string_view content) {
  std::FILE* const stream = std::fopen(file.c_str(), "wb");
  bool written = stream;
  if (written) {
    written = std::fwrite(content.data(), 1, content.size(), stream) == content.size();
    written = std::fclose(stream) == 0 && written;
  }
  if (!written) throw Failure(fmt::format("{}: cannot write: {}", file, std::strerror(errno)));
}

void Table::print(std::size_t indent) const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const auto& row : rows_) {
    std::string line(indent, ' ');
    for (std::size_t i = 0; i < row.size(); ++i) line += fmt::format("{:<{}}  ", row[i], widths[i]);
    line.resize(line.find_last_not_of(' ') + 1);
    printLine(line);
  }
}

}  // namespace velmora::tool
