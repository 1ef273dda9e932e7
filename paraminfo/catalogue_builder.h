/// Turns the lines of a catalogue into description nodes.
#pragma once

#include <span>

#include "paraminfo/limits.h"

namespace velmora {

class Fg_ParameterInfo;
class ParameterNodes;

/// A value as it is described to tools.
struct ValueDescription {
  const char* name = nullptr;
  int id = 0;
  Limits limits{};
  const char* display = nullptr;  ///< Null for a value that is not described.
  int accessMode = 0;             ///< `RegisterInfoAccess` bits.
  int qualifier = 0;              ///< For the runtime's tools.
  const char* unit = nullptr;
};

/// One line of a catalogue: a group, or a value. The level is the depth in the tree; a line belongs
/// to the nearest preceding group that is one level higher.
struct CatalogueLine {
  int level;
  const char* title;                        ///< Null for a value.
  const ValueDescription* value = nullptr;  ///< Null for a group.
};

/// Number of levels, which count from 0.
inline constexpr int kCatalogueLevels = 4;

/// Adds a node for each line, in order, to `registry`, and the nodes of values to `nodes`. The
/// lines must be well-formed: each is preceded by its group.
void describe(std::span<const CatalogueLine> lines, Fg_ParameterInfo& registry,
              ParameterNodes& nodes, int port);

}  // namespace velmora
