#include "parameters/design/direct_catalogue.h"

#include <cstdint>
#include <new>
#include <unordered_map>
#include <vector>

#include "external/dervin.h"
#include "parameters/design/direct_access.h"
#include "paraminfo/forest.h"
#include "paraminfo/parameter_info.h"
#include "paraminfo/parameter_nodes.h"
#include "velmora/errors.h"
#include "wrapper/fg_kt_wrapper.h"

namespace velmora {
namespace {

/// A parameter of the runtime's forest and the position of its group.
struct Match {
  const RegisterInfo* node;
  std::size_t group;
};

/// The forest's parameters by id; of several with the same id the first one counts.
std::unordered_map<int, Match> parametersById(const std::vector<ForestGroup>& forest) {
  std::unordered_map<int, Match> matches;
  for (std::size_t i = 0; i < forest.size(); ++i) {
    const auto& children = forest[i].group->value.group;
    for (std::uint32_t child = 0; child < children.childCount; ++child) {
      const RegisterInfo* node = children.children[child];
      if (node && node->kind != REGISTER_INFO_GROUP) matches.try_emplace(node->id, Match{node, i});
    }
  }
  return matches;
}

/// Mirrors nodes of the runtime's forest, and each of their groups when it is first needed.
class Mirror {
 public:
  Mirror(Fg_ParameterInfo& registry, int port, RegisterInfo* root,
         const std::vector<ForestGroup>& forest)
      : registry_(registry), port_(port), root_(root), forest_(forest), groups_(forest.size()) {}

  /// Adds the mirror of a parameter, under an SDK id, to the mirror of its group.
  RegisterInfo* add(const Match& match, int id);

 private:
  RegisterInfo* group(std::size_t position);

  Fg_ParameterInfo& registry_;
  int port_;
  RegisterInfo* root_;
  const std::vector<ForestGroup>& forest_;
  std::vector<RegisterInfo*> groups_;
};

/// Created on first use, together with the groups that contain it.
RegisterInfo* Mirror::group(std::size_t position) {
  if (position == ForestGroup::kNoParent) return root_;
  RegisterInfo*& mirror = groups_[position];
  if (!mirror) {
    const RegisterInfo& source = *forest_[position].group;
    mirror = registry_.addGroupInfo(port_, group(forest_[position].parent), source.name);
    if (source.paramName) Fg_ParameterInfo::setParamName(mirror, source.paramName);
  }
  return mirror;
}

void copyEntries(RegisterInfo* node, const RegisterInfo& source) {
  const auto& entries = source.value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i) {
    const char* display = entries.names[i] ? entries.names[i] : "";
    if (Fg_ParameterInfo::addEnumNameValue(node, static_cast<int>(i), display, entries.values[i],
                                           entries.identifiers[i]) != VELMORA_OK)
      throw std::bad_alloc();
  }
}

RegisterInfo* Mirror::add(const Match& match, int id) {
  const RegisterInfo& source = *match.node;
  RegisterInfo* parent = group(match.group);
  const std::string paramName =
      kDesignParameterPrefix + std::string(source.paramName ? source.paramName : "");
  const auto value = [&](auto add, auto... content) {
    return (registry_.*add)(parent, source.name, paramName.c_str(), content...,
                            static_cast<int>(source.accessMode), static_cast<int>(source.qualifier),
                            static_cast<int>(source.visible), source.unit, id, port_);
  };
  const auto ranged = [&](auto add, const auto& range) {
    return value(add, range.min, range.max, range.inc);
  };
  using Registry = Fg_ParameterInfo;
  switch (source.kind) {
    case REGISTER_INFO_UINT:
      return ranged(&Registry::addInfoUInt, source.value.uint32);
    case REGISTER_INFO_INT:
      return ranged(&Registry::addInfoInt, source.value.int32);
    case REGISTER_INFO_UINT64:
      return ranged(&Registry::addInfoUInt64, source.value.uint64);
    case REGISTER_INFO_INT64:
      return ranged(&Registry::addInfoInt64, source.value.int64);
    case REGISTER_INFO_DOUBLE:
      return ranged(&Registry::addInfoDouble, source.value.real);
    case REGISTER_INFO_STRING:
      return value(&Registry::addInfoString, source.value.string.value);
    case REGISTER_INFO_ENUM: {
      RegisterInfo* node =
          value(&Registry::addInfoEnum, static_cast<int>(source.value.enumeration.entryCount));
      copyEntries(node, source);
      return node;
    }
    default:
      return nullptr;
  }
}

}  // namespace

void describeDesignParameters(const FgKtWrapper& wrapper, int port,
                              const std::map<std::string, int>& idsByName) {
  if (idsByName.empty()) return;
  Fg_ParameterInfo& registry = *wrapper.parameterInfo();
  RegisterInfo* root = registry.addGroupInfo(port, nullptr, "Direct KT Access");
  const RegisterInfo* described = wrapper.getUnwrappedParameterInfo();
  if (!root || !described) return;

  const std::vector<ForestGroup> forest = breadthFirst(described);
  const auto matches = parametersById(forest);
  Mirror mirror(registry, port, root, forest);
  for (const auto& [name, designId] : idsByName) {
    const auto found = matches.find(designId);
    if (found != matches.end() && isPlainValue(found->second.node->kind))
      wrapper.parameterNodes().add(mirror.add(found->second, designId + kDesignParameterIdOffset));
  }
}

void describeRegisters(const FgKtWrapper& wrapper, int port) {
  constexpr int kReadOnly = REGISTER_INFO_READABLE;
  constexpr int kWritable =
      REGISTER_INFO_READABLE | REGISTER_INFO_WRITABLE | REGISTER_INFO_RUNTIME_FLAG;
  constexpr int kQualifier = 1;
  constexpr int kVisible = 1;
  Fg_ParameterInfo& registry = *wrapper.parameterInfo();
  RegisterInfo* group = registry.addGroupInfo(port, nullptr, "Direct Register Access");
  if (!group) return;
  fpga_design* design = wrapper.designHandle();
  for (const DesignRegister& reg : designRegisters(design)) {
    const int bits = HapGetRegisterBitRange(design, reg.id);
    const bool readOnly = HapGetRegisterDirection(design, reg.id) == 0;
    const std::string display = reg.name + " (" + std::to_string(bits) + ")";
    const std::string name = kRegisterPrefix + reg.name;
    const auto add = [&](auto addInfo, auto max) {
      return (registry.*addInfo)(group, display.c_str(), name.c_str(), 0, max, 1,
                                 readOnly ? kReadOnly : kWritable, kQualifier, kVisible, nullptr,
                                 reg.id + kRegisterIdOffset, port);
    };
    const std::uint64_t max =
        bits >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << (bits & 63)) - 1;
    wrapper.parameterNodes().add(
        bits <= 32 ? add(&Fg_ParameterInfo::addInfoUInt, static_cast<std::uint32_t>(max))
                   : add(&Fg_ParameterInfo::addInfoUInt64, max));
  }
}

}  // namespace velmora
