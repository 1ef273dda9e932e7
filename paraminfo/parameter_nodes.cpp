#include "paraminfo/parameter_nodes.h"

#include <cstddef>

namespace velmora {

ParameterNodes::ParameterNodes(int processes) : nodes_(static_cast<std::size_t>(processes)) {}

RegisterInfo* ParameterNodes::add(RegisterInfo* node) {
  if (node) nodes_.at(static_cast<std::size_t>(node->process))[node->id] = node;
  return node;
}

RegisterInfo* ParameterNodes::find(int process, int id) const {
  if (process < 0 || static_cast<std::size_t>(process) >= nodes_.size()) return nullptr;
  const auto& byId = nodes_[static_cast<std::size_t>(process)];
  const auto found = byId.find(id);
  return found == byId.end() ? nullptr : found->second;
}

}  // namespace velmora
