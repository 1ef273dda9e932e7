#include "tool/parameter_description.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "tool/code_text.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

template <class Range>
std::string range(const Range& limits, const std::string& unit) {
  if (limits.min == 0 && limits.max == 0 && limits.inc == 0) return unit;
  // A step of one epsilon means that any value will do.
  const bool any = static_cast<double>(limits.inc) <= std::numeric_limits<double>::epsilon();
  return fmt::format("{} to {}{}{}{}", limits.min, limits.max, unit.empty() ? "" : " ", unit,
                     any ? "" : fmt::format(", step {}", limits.inc));
}

void collect(const RegisterInfo& node, unsigned level, const std::string& group,
             std::vector<DescribedNode>& nodes) {
  nodes.push_back({&node, level, group});
  if (!isGroup(node)) return;
  const std::string path = group.empty() ? utf8(node.name) : group + " / " + utf8(node.name);
  for (std::uint32_t i = 0; i < node.value.group.childCount; ++i)
    collect(*node.value.group.children[i], level + 1, path, nodes);
}

}  // namespace

std::vector<DescribedNode> describedNodes(Session& session, unsigned port) {
  std::vector<const RegisterInfo*> roots;
  for (const RegisterInfo* root =
           session.library().description(session.grabber(), static_cast<int>(port));
       root; root = root->next)
    roots.push_back(root);
  if (roots.empty()) throw Failure(fmt::format("the applet does not describe port {}", port));
  // The list of roots begins with the newest.
  std::reverse(roots.begin(), roots.end());
  std::vector<DescribedNode> nodes;
  for (const RegisterInfo* root : roots) collect(*root, 0, {}, nodes);
  return nodes;
}

const RegisterInfo* findNode(Session& session, unsigned port, int id) {
  for (const DescribedNode& described : describedNodes(session, port))
    if (!isGroup(*described.node) && described.node->id == id) return described.node;
  return nullptr;
}

bool isGroup(const RegisterInfo& node) { return node.kind == REGISTER_INFO_GROUP; }

std::string accessText(const RegisterInfo& node) {
  const bool readable = (node.accessMode & REGISTER_INFO_READABLE) != 0;
  const bool writable = (node.accessMode & REGISTER_INFO_WRITABLE) != 0;
  return readable && writable ? "read/write" : writable ? "write" : "read";
}

std::string rangeText(const RegisterInfo& node) {
  std::string unit = node.unit ? utf8(node.unit) : "";
  switch (node.kind) {
    case REGISTER_INFO_UINT:
      return range(node.value.uint32, unit);
    case REGISTER_INFO_INT:
      return range(node.value.int32, unit);
    case REGISTER_INFO_UINT64:
      return range(node.value.uint64, unit);
    case REGISTER_INFO_INT64:
      return range(node.value.int64, unit);
    case REGISTER_INFO_DOUBLE:
      return range(node.value.real, unit);
    default:
      return unit;
  }
}

}  // namespace velmora::tool
