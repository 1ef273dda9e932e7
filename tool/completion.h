/// What a command line may go on with.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "tool/session.h"

namespace velmora::tool {

/// What the last word of a line may be, from the program's own commands and options and from the
/// applet's parameters. Of a word such as NAME=VALUE only what comes after the last '=' or '@' is
/// told, since shells complete that. None where a file is expected, or nothing is known.
std::vector<std::string> completions(const CLI::App& program, Session& session,
                                     const std::string& line);

}  // namespace velmora::tool
