/// The design's own parameters in the catalogue, mirrored from the runtime's description.
#include <algorithm>

#include "parameters/catalogue.h"
#include "paraminfo/parameter_info.h"
#include "wrapper/fg_kt_wrapper.h"

namespace velmora {
namespace {

/// A parameter of the runtime's forest and the position of its group; null when there is none.
struct Match {
  const RegisterInfo* node = nullptr;
  std::size_t group = ForestGroup::kNoParent;
};

Match findById(const std::vector<ForestGroup>& forest, int id) {
  for (std::size_t i = 0; i < forest.size(); ++i) {
    const auto& children = forest[i].group->value.group;
    for (uint32_t child = 0; child < children.childCount; ++child) {
      const RegisterInfo* node = children.children[child];
      if (node && node->kind != REGISTER_INFO_GROUP && node->id == id) return {node, i};
    }
  }
  return {};
}

/// Mirrors the groups of the runtime's forest, each at most once.
class GroupMirror {
 public:
  GroupMirror(Fg_ParameterInfo& registry, int process, RegisterInfo* root,
              const std::vector<ForestGroup>& forest)
      : registry_(registry),
        process_(process),
        root_(root),
        forest_(forest),
        mirrors_(forest.size()) {}

  /// The mirror of a group, made together with those of the groups around it.
  RegisterInfo* of(std::size_t group) {
    if (group == ForestGroup::kNoParent) return root_;
    RegisterInfo*& mirror = mirrors_[group];
    if (!mirror) {
      const RegisterInfo& source = *forest_[group].group;
      mirror = registry_.addGroupInfo(process_, of(forest_[group].parent), source.name);
      if (source.paramName) Fg_ParameterInfo::setParamName(mirror, source.paramName);
    }
    return mirror;
  }

 private:
  Fg_ParameterInfo& registry_;
  int process_;
  RegisterInfo* root_;
  const std::vector<ForestGroup>& forest_;
  std::vector<RegisterInfo*> mirrors_;
};

void copyEntries(RegisterInfo* node, const RegisterInfo& source) {
  const auto& entries = source.value.enumeration;
  for (uint32_t i = 0; i < entries.entryCount; ++i)
    Fg_ParameterInfo::addEnumNameValue(node, static_cast<int>(i),
                                       entries.names[i] ? entries.names[i] : "", entries.values[i],
                                       entries.identifiers[i]);
}

}  // namespace

void Catalogue::describeDesignParameters(const std::map<std::string, int>& idsByName) {
  if (idsByName.empty()) return;
  auto& registry = *wrapper_.parameterInfo();
  RegisterInfo* root = registry.addGroupInfo(process_, nullptr, "Direct KT Access");
  const RegisterInfo* described = wrapper_.getUnwrappedParameterInfo();
  if (!root || !described) return;

  const std::vector<ForestGroup> forest = breadthFirst(described);
  GroupMirror groups(registry, process_, root, forest);
  for (const auto& [name, designId] : idsByName) {
    const Match match = findById(forest, designId);
    if (match.node && isPlainValue(match.node->kind))
      addMirrored(groups.of(match.group), *match.node, designId + kDesignParameterIdOffset);
  }
}

RegisterInfo* Catalogue::addMirrored(RegisterInfo* parent, const RegisterInfo& source, int id) {
  auto& registry = *wrapper_.parameterInfo();
  const std::string paramName =
      kDesignParameterPrefix + std::string(source.paramName ? source.paramName : "");
  const auto ranged = [&](auto add, const auto& range) {
    return (registry.*add)(parent, source.name, paramName.c_str(), range.min, range.max, range.inc,
                           static_cast<int>(source.accessMode), static_cast<int>(source.qualifier),
                           static_cast<int>(source.visible), source.unit, id, process_);
  };
  const auto valued = [&](auto add, auto value) {
    return (registry.*add)(parent, source.name, paramName.c_str(), value,
                           static_cast<int>(source.accessMode), static_cast<int>(source.qualifier),
                           static_cast<int>(source.visible), source.unit, id, process_);
  };
  using Registry = Fg_ParameterInfo;
  switch (source.kind) {
    case REGISTER_INFO_UINT:
      return file(ranged(&Registry::addInfoUInt, source.value.uint32), id);
    case REGISTER_INFO_INT:
      return file(ranged(&Registry::addInfoInt, source.value.int32), id);
    case REGISTER_INFO_UINT64:
      return file(ranged(&Registry::addInfoUInt64, source.value.uint64), id);
    case REGISTER_INFO_INT64:
      return file(ranged(&Registry::addInfoInt64, source.value.int64), id);
    case REGISTER_INFO_DOUBLE:
      return file(ranged(&Registry::addInfoDouble, source.value.real), id);
    case REGISTER_INFO_STRING:
      return file(
          valued(&Registry::addInfoString, static_cast<const char*>(source.value.string.value)),
          id);
    case REGISTER_INFO_ENUM: {
      RegisterInfo* node = file(
          valued(&Registry::addInfoEnum, static_cast<int>(source.value.enumeration.entryCount)),
          id);
      copyEntries(node, source);
      return node;
    }
    default:
      return nullptr;
  }
}

}  // namespace velmora
