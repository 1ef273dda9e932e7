/// The applet's description of a port's parameters.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tool/parameter_values.h"
#include "tool/session.h"

namespace velmora::tool {

/// A node with its place in the tree.
struct DescribedNode {
  const RegisterInfo* node;
  unsigned level;     ///< 0 for the root groups.
  std::string group;  ///< Titles of the groups around it: "Trigger / Queue".
};

/// The nodes of a port in the order in which the applet presents them, groups before their
/// children. `Failure` when the applet describes no such port.
std::vector<DescribedNode> describedNodes(Session& session, unsigned port);

/// The description of a parameter; null when there is none.
const RegisterInfo* findNode(Session& session, unsigned port, int id);

bool isGroup(const RegisterInfo& node);

/// "read", "read/write" or "write".
std::string accessText(const RegisterInfo& node);

struct Limits {
  Value min;
  Value max;
  std::optional<Value> step;  ///< None when any value between them will do.
};
/// The numbers that a parameter takes at the moment; none where the description has no range.
std::optional<Limits> limits(const RegisterInfo& node);

/// In UTF-8; may be empty.
std::string unit(const RegisterInfo& node);

/// The values that a parameter takes at the moment, with the unit in UTF-8: "8 to 8192 pixel, step
/// 4"; empty where the description has none. Entries of enumerations are left to the caller.
std::string rangeText(const RegisterInfo& node);

}  // namespace velmora::tool
