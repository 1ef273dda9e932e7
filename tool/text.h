/// Text: encoding, tables, files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora::tool {

/// Single-byte (Latin-1) text of the applet's descriptions as UTF-8.
std::string utf8(std::string_view latin1);

/// Writes a line to standard error, as far as there is one. Any thread.
void printError(const std::string& line);

/// Writes `content` to a file as it stands; `Failure` when that does not work.
void writeFile(const std::string& file, std::string_view content);

/// Rows of cells; printing lines the columns up.
class Table {
 public:
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  /// Writes the table to standard output, each line with `indent` blanks first.
  void print(std::size_t indent = 0) const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace velmora::tool
