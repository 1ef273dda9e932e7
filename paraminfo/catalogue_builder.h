/// Turns the lines of a catalogue into description nodes.
#pragma once

#include <span>

#include "paraminfo/limits.h"

namespace velmora {

class Fg_ParameterInfo;
class ParameterNodes;

/// A value as tools are told of it.
struct ValueDescription {
  const char* name = nullptr;
  int id = 0;
  Limits limits{};
  const char* display = nullptr;  ///< Null for a value that is not described.
  int accessMode = 0;             ///< `RegisterInfoAccess` bits.
  int qualifier = 0;              ///< Carried for the runtime's tools.
  const char* unit = nullptr;
};

/// One line of a catalogue: a group, or a value. The level is the depth in the tree; a line belongs
/// to the nearest group above it that lies one level higher.
struct CatalogueLine {
  int level;
  const char* title;                        ///< Null for a value.
  const ValueDescription* value = nullptr;  ///< Null for a group.
};

/// Groups may lie on the levels below this one.
inline constexpr int kCatalogueLevels = 4;

/// Adds a node for each line, in their order, to the registry, and every value to the nodes. The
/// lines are well-formed: the group of each one lies above it.
void describe(std::span<const CatalogueLine> lines, Fg_ParameterInfo& registry,
              ParameterNodes& nodes, int process);

}  // namespace velmora
