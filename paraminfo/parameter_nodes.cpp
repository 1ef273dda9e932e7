#include "paraminfo/parameter_nodes.h"

#include <algorithm>
#include <cstddef>

namespace velmora {

ParameterNodes::ParameterNodes(int ports) : nodes_(static_cast<std::size_t>(ports)) {}

RegisterInfo* ParameterNodes::add(RegisterInfo* node) {
  if (!node) return nullptr;
  auto& sorted = nodes_.at(static_cast<std::size_t>(node->process));
  const auto place = std::ranges::lower_bound(sorted, node->id, {}, &RegisterInfo::id);
  if (place != sorted.end() && (*place)->id == node->id)
    *place = node;
  else
    sorted.insert(place, node);
  return node;
}

RegisterInfo* ParameterNodes::find(int port, int id) const {
  if (port < 0 || static_cast<std::size_t>(port) >= nodes_.size()) return nullptr;
  const auto& sorted = nodes_[static_cast<std::size_t>(port)];
  const auto found = std::ranges::lower_bound(sorted, id, {}, &RegisterInfo::id);
  return found == sorted.end() || (*found)->id != id ? nullptr : *found;
}

}  // namespace velmora
