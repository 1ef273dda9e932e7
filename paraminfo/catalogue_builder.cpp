#include "paraminfo/catalogue_builder.h"

#include <array>
#include <cstddef>
#include <new>

#include "paraminfo/parameter_info.h"
#include "paraminfo/parameter_nodes.h"
#include "velmora/errors.h"

namespace velmora {
namespace {

constexpr int kVisible = 1;

RegisterInfo* addValue(const ValueDescription& v, RegisterInfo* parent, Fg_ParameterInfo& registry,
                       int port) {
  switch (v.limits.kind) {
    case Limits::Kind::kInteger: {
      const auto& [min, max, inc] = v.limits.integer;
      return registry.addInfoUInt(parent, v.display, v.name, min, max, inc, v.accessMode,
                                  v.qualifier, kVisible, v.unit, v.id, port);
    }
    case Limits::Kind::kReal: {
      const auto& [min, max, inc] = v.limits.real;
      return registry.addInfoDouble(parent, v.display, v.name, min, max, inc, v.accessMode,
                                    v.qualifier, kVisible, v.unit, v.id, port);
    }
    case Limits::Kind::kText:
      return registry.addInfoString(parent, v.display, v.name, v.limits.text, v.accessMode,
                                    v.qualifier, kVisible, v.unit, v.id, port);
    case Limits::Kind::kEnumeration:
      return registry.addInfoEnum(
          parent, v.display, v.name,
          static_cast<int>(v.limits.entries(static_cast<unsigned>(port)).size()), v.accessMode,
          v.qualifier, kVisible, v.unit, v.id, port);
    case Limits::Kind::kNone:
      break;
  }
  return nullptr;
}

/// Does nothing unless the value is an enumeration.
void addEntries(RegisterInfo* node, const ValueDescription& value, int port) {
  int index = 0;
  for (const EnumEntry& entry : value.limits.entries(static_cast<unsigned>(port))) {
    const int code = Fg_ParameterInfo::addEnumNameValue(node, index++, entry.display, entry.value,
                                                        entry.identifier);
    if (code != VELMORA_OK) throw std::bad_alloc();  // No entry may be left without a text.
  }
}

}  // namespace

void describe(std::span<const CatalogueLine> lines, Fg_ParameterInfo& registry,
              ParameterNodes& nodes, int port) {
  std::array<RegisterInfo*, kCatalogueLevels> groups{};  // The latest group of each level.
  for (const CatalogueLine& line : lines) {
    const auto level = static_cast<std::size_t>(line.level);
    RegisterInfo* parent = level > 0 ? groups[level - 1] : nullptr;
    if (line.value)
      addEntries(nodes.add(addValue(*line.value, parent, registry, port)), *line.value, port);
    else
      groups[level] = registry.addGroupInfo(port, parent, line.title);
  }
}

}  // namespace velmora
