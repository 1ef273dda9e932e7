#include "paraminfo/forest.h"

namespace velmora {

bool isPlainValue(std::uint32_t kind) {
  switch (kind) {
    case REGISTER_INFO_UINT:
    case REGISTER_INFO_ENUM:
    case REGISTER_INFO_STRING:
    case REGISTER_INFO_DOUBLE:
    case REGISTER_INFO_UINT64:
    case REGISTER_INFO_INT:
    case REGISTER_INFO_INT64:
      return true;
    default:
      return false;
  }
}

std::vector<ForestGroup> breadthFirst(const RegisterInfo* firstRoot) {
  std::vector<ForestGroup> groups;
  const auto append = [&groups](const RegisterInfo* node, std::size_t parent) {
    if (node && node->kind == REGISTER_INFO_GROUP) groups.push_back({node, parent});
  };
  append(firstRoot, ForestGroup::kNoParent);
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const ForestGroup current = groups[i];
    const auto& children = current.group->value.group;
    for (std::uint32_t child = 0; child < children.childCount; ++child)
      append(children.children[child], i);
    append(current.group->next, current.parent);
  }
  return groups;
}

}  // namespace velmora
