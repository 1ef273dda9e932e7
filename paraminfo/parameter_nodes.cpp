#include "paraminfo/parameter_nodes.h"

#include <cstddef>

namespace velmora {

ParameterNodes::ParameterNodes(int ports) : nodes_(static_cast<std::size_t>(ports)) {}

RegisterInfo* ParameterNodes::add(RegisterInfo* node) {
  if (node) nodes_.at(static_cast<std::size_t>(node->process))[node->id] = node;
  return node;
}

RegisterInfo* ParameterNodes::find(int port, int id) const {
  if (port < 0 || static_cast<std::size_t>(port) >= nodes_.size()) return nullptr;
  const auto& byId = nodes_[static_cast<std::size_t>(port)];
  const auto found = byId.find(id);
  return found == byId.end() ? nullptr : found->second;
}

}  // namespace velmora
