#pragma once

#include <CLI/CLI.hpp>
#include <vector>

namespace velmora::tool {

/// The commands of a program, without those that it does not present.
inline std::vector<const CLI::App*> visibleCommands(const CLI::App& program) {
  return program.get_subcommands(
      [](const CLI::App* command) { return !command->get_group().empty(); });
}

}  // namespace velmora::tool
