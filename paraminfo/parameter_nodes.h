#pragma once

#include <map>
#include <vector>

#include "velmora/register_info.h"

namespace velmora {

/// Finds the description node of a parameter by process and SDK id. Filled while the catalogue is
/// built. Setters do not search here; each port keeps the nodes that it updates.
class ParameterNodes {
 public:
  explicit ParameterNodes(int processes);

  /// Adds a node under its process and id; null is ignored.
  /// @return the node.
  RegisterInfo* add(RegisterInfo* node);
  /// The node, or null when the process or the id is unknown.
  RegisterInfo* find(int process, int id) const;

 private:
  std::vector<std::map<int, RegisterInfo*>> nodes_;
};

}  // namespace velmora
