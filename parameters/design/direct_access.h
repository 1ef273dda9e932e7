#pragma once

#include <map>
#include <string>
#include <vector>

#include "velmora/handles.h"

namespace velmora {

class FgKtWrapper;

/// Direct access bypasses the SDK parameters: `DRA_` names are the design's registers, `DKTA_`
/// names its own parameters. Their SDK ids are the design's ids plus these offsets.
inline constexpr int kRegisterIdOffset = 1000000;
inline constexpr int kDesignParameterIdOffset = 2000000;

inline constexpr const char* kRegisterPrefix = "DRA_";
inline constexpr const char* kDesignParameterPrefix = "DKTA_";

/// Whether an environment variable is "yes", "true", "on" or "1", in upper or lower case.
bool isEnabled(const char* environmentVariable);

struct DesignRegister {
  std::string name;
  int id;
};

/// The registers of a design in its own order, except those whose SDK id would not fit in an `int`.
std::vector<DesignRegister> designRegisters(fpga_design* design);

/// Names and ids of the design's own parameters, as far as the runtime describes them and knows
/// their names. Field parameters and those whose SDK id would not fit in an `int` are left out.
std::map<std::string, int> designParameters(const FgKtWrapper& wrapper);

}  // namespace velmora
