/// The groups of direct access in the catalogue of a port.
#pragma once

#include <map>
#include <string>

namespace velmora {

class FgKtWrapper;

/// Describes the design's own parameters by mirroring the runtime's description.
/// @param idsByName those to mirror, with the design's ids; nothing is added when it is empty.
void describeDesignParameters(const FgKtWrapper& wrapper, int port,
                              const std::map<std::string, int>& idsByName);

/// Describes the design's registers.
void describeRegisters(const FgKtWrapper& wrapper, int port);

}  // namespace velmora
