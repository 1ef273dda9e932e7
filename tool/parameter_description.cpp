#include "tool/parameter_description.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <type_traits>

#include "tool/code_text.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

template <class Range>
std::optional<Limits> limits(const Range& range) {
  if (range.min == 0 && range.max == 0 && range.inc == 0) return std::nullopt;
  using Number = std::conditional_t<
      std::is_floating_point_v<decltype(range.min)>, double,
      std::conditional_t<std::is_signed_v<decltype(range.min)>, std::int64_t, std::uint64_t>>;
  Limits limits{Number{range.min}, Number{range.max}, std::nullopt};
  // A step of one epsilon means that any value will do.
  if (static_cast<double>(range.inc) > std::numeric_limits<double>::epsilon())
    limits.step = Number{range.inc};
  return limits;
}

void collect(const RegisterInfo& node, unsigned level, const std::string& group,
             std::vector<DescribedNode>& nodes) {
  nodes.push_back({&node, level, group});
  if (!isGroup(node)) return;
  const std::string path = group.empty() ? utf8(node.name) : group + " / " + utf8(node.name);
  for (std::uint32_t i = 0; i < node.value.group.childCount; ++i)
    if (const RegisterInfo* child = node.value.group.children[i])
      collect(*child, level + 1, path, nodes);
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

std::optional<Limits> limits(const RegisterInfo& node) {
  switch (node.kind) {
    case REGISTER_INFO_UINT:
      return limits(node.value.uint32);
    case REGISTER_INFO_INT:
      return limits(node.value.int32);
    case REGISTER_INFO_UINT64:
      return limits(node.value.uint64);
    case REGISTER_INFO_INT64:
      return limits(node.value.int64);
    case REGISTER_INFO_DOUBLE:
      return limits(node.value.real);
    default:
      return std::nullopt;
  }
}

std::string unit(const RegisterInfo& node) { return utf8(node.unit); }

std::string rangeText(const RegisterInfo& node) {
  const auto found = limits(node);
  if (!found) return unit(node);
  std::string text =
      fmt::format("{} to {}", showValue(nullptr, found->min), showValue(nullptr, found->max));
  if (!unit(node).empty()) text += ' ' + unit(node);
  if (found->step) text += ", step " + showValue(nullptr, *found->step);
  return text;
}

}  // namespace velmora::tool
