/// Walking the runtime's description of the design's own parameters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "velmora/register_info.h"

namespace velmora {

/// A group of a description forest with the group that contains it.
struct ForestGroup {
  static constexpr std::size_t kNoParent = static_cast<std::size_t>(-1);

  const RegisterInfo* group;
  std::size_t parent;  ///< Position in the list, or `kNoParent`.
};

/// All groups of a forest, breadth first. A root group's successor follows its children and is
/// listed with the same parent.
std::vector<ForestGroup> breadthFirst(const RegisterInfo* firstRoot);

/// Whether nodes of this kind can be listed and described: single values, no fields.
bool isPlainValue(std::uint32_t kind);

}  // namespace velmora
