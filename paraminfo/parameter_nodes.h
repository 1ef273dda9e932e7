#pragma once

#include <vector>

#include "velmora/register_info.h"

namespace velmora {

/// Finds the description node of a parameter by port and SDK id. Filled while the catalogue is
/// built. Setters do not search here; each port keeps the nodes that it updates.
class ParameterNodes {
 public:
  explicit ParameterNodes(int ports);

  /// Adds a node under its port and id; null is ignored.
  /// @return the node.
  RegisterInfo* add(RegisterInfo* node);
  /// The node, or null when the port or the id is unknown.
  RegisterInfo* find(int port, int id) const;

 private:
  std::vector<std::vector<RegisterInfo*>> nodes_;  ///< By port, sorted by id.
};

}  // namespace velmora
