#include "tool/text.h"

#include <fmt/format.h>
#include <iconv.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <utility>

#include "board/printable.h"
#include "tool/code_text.h"

namespace velmora::tool {

std::string utf8(const char* latin1) {
  std::string text;
  for (const char character : std::string_view(latin1 ? latin1 : "")) {
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

/// Of UTF-8.
std::size_t characters(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

/// UTF-8 in the characters of the user's locale, with others in place of those that it lacks.
std::string inLocale(std::string text) {
  const std::string codeset = nl_langinfo(CODESET);
  if (codeset == "UTF-8") return text;
  const iconv_t conversion = iconv_open((codeset + "//TRANSLIT").c_str(), "UTF-8");
  if (std::bit_cast<std::intptr_t>(conversion) == -1) return text;
  std::string converted(4 * text.size(), '\0');
  char* from = text.data();
  char* to = converted.data();
  std::size_t left = text.size();
  std::size_t room = converted.size();
  const bool whole = iconv(conversion, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
  iconv_close(conversion);
  converted.resize(converted.size() - room);
  return whole ? converted : text;
}

void print(std::FILE* stream, std::string_view line) {
  std::fputs((inLocale(board::printable(line)) + '\n').c_str(), stream);
}

}  // namespace

void printLine(std::string_view line) { print(stdout, line); }
void printError(std::string_view line) { print(stderr, line); }

bool equalIgnoringCase(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, {}, upper, upper);
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
  const auto equal = [](char a, char b) { return upper(a) == upper(b); };
  return part.size() >= 2 &&
         std::search(text.begin(), text.end(), part.begin(), part.end(), equal) != text.end();
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

std::size_t outputWidth() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  const char* const columns = std::getenv("COLUMNS");
  return parseWhole<std::size_t>(columns ? columns : "").value_or(80);
}

void printFitting(std::size_t indent, const std::vector<std::string>& pieces) {
  const std::size_t width = outputWidth();
  std::string line;
  for (const std::string& piece : pieces) {
    if (piece.empty()) continue;
    if (!line.empty() && characters(line) + 1 + characters(piece) > width) {
      printLine(line);
      line = std::string(indent + 4, ' ') + piece;
    } else {
      line += (line.empty() ? std::string(indent, ' ') : " ") + piece;
    }
  }
  printLine(line);
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
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], characters(row[i]));
  }
  for (const auto& row : rows_) {
    std::string line(indent, ' ');
    for (std::size_t i = 0; i < row.size(); ++i)
      line += row[i] + std::string(widths[i] - characters(row[i]) + 2, ' ');
    line.resize(line.find_last_not_of(' ') + 1);
    printLine(line);
  }
}

}  // namespace velmora::tool
