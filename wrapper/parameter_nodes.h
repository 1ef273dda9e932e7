#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "velmora/register_info.h"

namespace velmora {

/// Finds the description node of a parameter: process, then SDK id. Filled once while the catalogue
/// is built. Setters do not search here; each port keeps the nodes that it moves.
class ParameterNodes {
 public:
  explicit ParameterNodes(int processes) : nodes_(static_cast<std::size_t>(processes)) {}

  void file(int process, int id, RegisterInfo* node) {
    nodes_.at(static_cast<std::size_t>(process))[id] = node;
  }

  /// The node, or null when the process or the id is unknown.
  RegisterInfo* find(int process, int id) const {
    if (process < 0 || static_cast<std::size_t>(process) >= nodes_.size()) return nullptr;
    const auto& byId = nodes_[static_cast<std::size_t>(process)];
    const auto found = byId.find(id);
    return found == byId.end() ? nullptr : found->second;
  }

 private:
  std::vector<std::map<int, RegisterInfo*>> nodes_;
};

}  // namespace velmora
