/// The manual page.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace velmora::tool {

/// The manual page of a program, made from its commands and options; the source of `man`.
std::string manualPage(const CLI::App& program);

}  // namespace velmora::tool
