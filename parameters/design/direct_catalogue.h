/// The groups of direct access in the catalogue of a process.
#pragma once

#include <map>
#include <string>

namespace velmora {

class FgKtWrapper;

/// The design's own parameters, mirrored from the runtime's description.
/// @param idsByName those to mirror, with the design's ids. Nothing happens for none.
void describeDesignParameters(const FgKtWrapper& wrapper, int process,
                              const std::map<std::string, int>& idsByName);

/// The design's registers.
void describeRegisters(const FgKtWrapper& wrapper, int process);

}  // namespace velmora
