/// Many commands on one board.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace velmora::tool {

/// Runs one line's words and returns its exit status.
using RunLine = std::function<int(const std::vector<std::string>& words)>;
/// What the last word of a line may become.
using Complete = std::function<std::vector<std::string>(const std::string& line)>;

/// Runs the lines of a file, "-" for standard input, up to the first that fails or, if `goOn`, all
/// of them. Empty lines and those that begin with # are left out; words are quoted as in a shell. A
/// line `exit` ends it.
/// @return 0, or the status of the first line that failed.
int runScript(const std::string& file, bool goOn, const RunLine& runLine);

/// The same for lines that a user edits on a terminal; goes on after failures.
int runTerminal(const RunLine& runLine, const Complete& complete);

}  // namespace velmora::tool
