#pragma once

#include <map>
#include <string>
#include <vector>

#include "velmora/handles.h"
#include "velmora/register_info.h"

namespace velmora {

class FgKtWrapper;

/// Direct access reaches the design past the SDK parameters: `DRA_` names its registers, `DKTA_`
/// its own parameters. SDK ids of the two families lie above these numbers.
inline constexpr int kRegisterIdOffset = 1000000;
inline constexpr int kDesignParameterIdOffset = 2000000;

inline constexpr const char* kRegisterPrefix = "DRA_";
inline constexpr const char* kDesignParameterPrefix = "DKTA_";

/// Whether an environment variable switches a family on: "yes", "true", "on" or "1" in any case.
bool switchedOn(const char* environmentVariable);

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

/// A group of a description forest with the group that contains it.
struct ForestGroup {
  static constexpr std::size_t kNoParent = static_cast<std::size_t>(-1);

  const RegisterInfo* group;
  std::size_t parent;  ///< Position in the list, or `kNoParent`.
};

/// All groups of a forest, breadth first. A root group's successor follows its children and is
/// listed with the same parent.
std::vector<ForestGroup> breadthFirst(const RegisterInfo* firstRoot);

/// Whether nodes of this kind can be listed and described: values, but no fields.
bool isPlainValue(uint32_t kind);

}  // namespace velmora
