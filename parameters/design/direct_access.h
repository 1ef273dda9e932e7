#pragma once

#include <map>
#include <string>
#include <vector>

#include "velmora/handles.h"

namespace velmora {

class FgKtWrapper;

/// Direct access reaches the design past the SDK parameters: `DRA_` names its registers, `DKTA_`
/// its own parameters. SDK ids of the two families lie above these numbers.
inline constexpr int kRegisterIdOffset = 1000000;
inline constexpr int kDesignParameterIdOffset = 2000000;

inline constexpr const char* kRegisterPrefix = "DRA_";
inline constexpr const char* kDesignParameterPrefix = "DKTA_";

/// Whether an environment variable switches a family on: "yes", "true", "on" or "1" in any case.
bool isEnabled(const char* environmentVariable);

struct DesignRegister {
  std::string name;
  int id;
};

/// The registers of a design in its own order, without those whose SDK id would be no `int`.
std::vector<DesignRegister> designRegisters(fpga_design* design);

/// The design's own parameters by name with their ids, as far as the runtime describes them and
/// knows their names. Field parameters are left out, and what would have an SDK id that is no
/// `int`.
std::map<std::string, int> designParameters(const FgKtWrapper& wrapper);

}  // namespace velmora
