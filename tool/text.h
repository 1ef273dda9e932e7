/// Text: encoding, numbers, tables, files.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora::tool {

/// Single-byte (Latin-1) text of the applet's descriptions as UTF-8; empty for null.
std::string utf8(const char* latin1);

/// The whole text as a number, if it is one. `base`, 10 if left out, is for integers only.
template <class Number, class... Base>
std::optional<Number> parseWhole(std::string_view text, Base... base) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, base...);
  return result.ec == std::errc{} && result.ptr == end ? std::optional(number) : std::nullopt;
}

/// Of ASCII letters.
bool equalIgnoringCase(std::string_view one, std::string_view other);
/// Whether a text of at least two letters is part of the other.
bool containsIgnoringCase(std::string_view text, std::string_view part);
/// Number of letters to insert, remove or replace to make one text of the other, in any case.
std::size_t editDistance(std::string_view one, std::string_view other);

/// Writes a line to standard output or standard error; without one, nothing happens. Any thread.
/// The line is UTF-8 and is printed in the encoding of the locale. What is not printable is shown
/// as `board::printable` does: names, values and messages come from designs and files of others.
void printLine(std::string_view line);
void printError(std::string_view line);

/// Columns of the terminal on standard output; of no terminal those that COLUMNS tells, or 80.
std::size_t outputWidth();
/// Prints pieces of text with a blank between them, as many to a line as fit; the first line
/// indented by `indent` blanks and the others by four more. Empty pieces are left out.
void printFitting(std::size_t indent, const std::vector<std::string>& pieces);

/// Writes `content` to a file byte for byte; `Failure` when that does not work.
void writeFile(const std::string& file, std::string_view content);

/// Rows of cells, printed in aligned columns.
class Table {
 public:
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  /// Writes the table to standard output, each line indented by `indent` blanks.
  void print(std::size_t indent = 0) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace velmora::tool
