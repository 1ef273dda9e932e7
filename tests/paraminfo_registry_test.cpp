#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "paraminfo/parameter_info.h"

namespace {

using namespace velmora;

std::string bytesOf(const RegisterInfo* node, size_t offset = 0, size_t size = 128) {
  return std::string(reinterpret_cast<const char*>(node) + offset, size);
}

/// Bytes of a node's value area, at their offset in the node as the runtime's tools find them.
struct Cell {
  template <class Value>
  Cell(size_t where, const Value& value)
      : offset(where), bytes(reinterpret_cast<const char*>(&value), sizeof value) {}
  size_t offset;
  std::string bytes;
};

using R = Fg_ParameterInfo;
using Add = std::function<RegisterInfo*(R&, RegisterInfo* parent, int process)>;

/// An add operation with its own values, among common ones that are told apart from each other.
template <class Method, class... Values>
Add with(Method method, Values... values) {
  return [=](R& registry, RegisterInfo* parent, int process) {
    const std::string name = "Name", paramName = "FG_P", unit = "\xB5s";  // Gone after the call.
    return (registry.*method)(parent, name.c_str(), paramName.c_str(), values..., 7, 2, 4,
                              unit.c_str(), -5, process);
  };
}

RegisterInfo* addGroup(R& registry, RegisterInfo* parent, int process) {
  return registry.addGroupInfo(process, parent, std::string("Name").c_str());
}

/// Every add operation, with the kind and the value area that it makes.
const struct {
  uint32_t kind;
  Add add;
  std::vector<Cell> cells;
} kOperations[] = {
    {0, addGroup, {{40, 0U}, {48, nullptr}, {56, 0U}}},
    {1, with(&R::addInfoUInt, 2U, ~0U, 3U), {{40, 2U}, {44, ~0U}, {48, 3U}}},
    {3, with(&R::addInfoEnum, 3), {{40, 3U}, {64, nullptr}}},
    {5, with(&R::addInfoString, "*.hap"), {}},
    {6, with(&R::addInfoDouble, .2, 8.5, .1), {{40, .2}, {48, 8.5}, {56, .1}}},
    {7, with(&R::addInfoUIntField, 1U, 2U, 3U, 4U), {{40, 2}, {44, 3}, {48, 1}, {52, 0}, {56, 2}}},
    {8, with(&R::addInfoDoubleField, 1, 2., 3., 4.), {{40, 2.}, {48, 3.}, {56, 1}, {64, 2.}}},
    {9, with(&R::addInfoUInt64, 1U, ~0UL, 3U), {{40, 1L}, {48, ~0UL}, {56, 3L}}},
    {11, with(&R::addInfoInt, -8, -2, 3), {{40, -8}, {44, -2}, {48, 3}}},
    {12, with(&R::addInfoInt64, INT64_MIN, -2, 3), {{40, INT64_MIN}, {48, -2L}, {56, 3L}}},
    {13, with(&R::addInfoIntField, 1, -2, 3, 4), {{40, -2}, {44, 3}, {48, 1}, {52, 0}, {56, -2}}}};

TEST(ParameterInfo, EveryOperationLaysItsNodeOutAndLinksIt) {
  Fg_ParameterInfo registry(3);
  RegisterInfo* parent = registry.addGroupInfo(2, nullptr, "Parent");
  uint32_t position = 0;
  for (const auto& operation : kOperations) {
    SCOPED_TRACE(operation.kind);
    const RegisterInfo* node = operation.add(registry, parent, 2);
    const bool group = operation.kind == 0;
    EXPECT_EQ(node->kind, operation.kind);
    EXPECT_STREQ(node->name, "Name");
    EXPECT_STREQ(node->paramName, group ? nullptr : "FG_P");
    EXPECT_STREQ(node->unit, group ? nullptr : "\xB5s");
    const uint32_t numbers[] = {7, 2, 4, static_cast<uint32_t>(-5)};
    EXPECT_EQ(bytesOf(node, 24, 16), group ? std::string(16, 0) : Cell(24, numbers).bytes);
    for (const Cell& cell : operation.cells)
      EXPECT_EQ(bytesOf(node, cell.offset, cell.bytes.size()), cell.bytes) << cell.offset;
    EXPECT_EQ(parent->value.group.children[position], node);
    EXPECT_EQ(parent->value.group.childCount, ++position);
  }
  EXPECT_STREQ(parent->value.group.children[3]->value.string.value, "*.hap");
}

TEST(ParameterInfo, GroupsNestAndRootsAreListedNewestFirst) {
  R registry(2);
  RegisterInfo* const first = registry.addGroupInfo(1, nullptr, "First");
  RegisterInfo* const second = registry.addGroupInfo(1, nullptr, "Second");
  RegisterInfo* const child = registry.addGroupInfo(1, first, "Child");
  RegisterInfo* const grandchild = registry.addGroupInfo(1, child, "Grandchild");
  EXPECT_EQ(registry.getNextRegisterInfo(nullptr, 1), second);
  EXPECT_EQ(registry.getNextRegisterInfo(second, 1), first);
  EXPECT_EQ(registry.getNextRegisterInfo(first, 1), nullptr);
  EXPECT_EQ(first->prev, second);
  for (const int process : {0, 2}) EXPECT_EQ(registry.getRegisterInfo(process), nullptr);
  EXPECT_EQ(first->parentName, nullptr);
  EXPECT_STREQ(grandchild->parentName, "Child");
  EXPECT_EQ(std::vector({first->level, child->level, grandchild->level}),
            (std::vector<uint32_t>{0, 1, 2}));
}

TEST(ParameterInfo, RefusedNodesChangeNothing) {
  Fg_ParameterInfo registry(2);
  RegisterInfo* open = registry.addGroupInfo(0, nullptr, "Open");
  RegisterInfo* closed = registry.addGroupInfo(1, nullptr, "Closed");
  std::vector<std::pair<RegisterInfo*, int>> refused = {{open, -1}, {open, 2}, {closed, 1}};
  for (const auto& operation : kOperations) {
    RegisterInfo* node = operation.add(registry, open, 0);
    if (operation.kind != 0) refused.push_back({node, 0});
  }
  for (int process : {-1, 1, 2}) registry.finalize(process);
  for (const auto& operation : kOperations) {
    for (const auto& [parent, process] : refused) {
      SCOPED_TRACE(testing::Message() << operation.kind << " in process " << process);
      const std::string before = bytesOf(parent);
      EXPECT_EQ(operation.add(registry, parent, process), nullptr);
      EXPECT_EQ(bytesOf(parent), before);
    }
    EXPECT_EQ(operation.add(registry, nullptr, 1), nullptr);
    EXPECT_TRUE(operation.kind == 0 || operation.add(registry, nullptr, 0) == nullptr);
  }
  EXPECT_TRUE(registry.getRegisterInfo(0) == open && registry.getRegisterInfo(1) == closed);
}

TEST(ParameterInfo, ProcessesAreEmptiedReopenedAndClosedIndependently) {
  Fg_ParameterInfo registry(2);
  for (int process : {0, 1}) registry.addGroupInfo(process, nullptr, "Group");
  registry.finalize(1);
  for (int process : {-1, 1, 2}) registry.destroy(process);
  EXPECT_EQ(registry.addGroupInfo(1, nullptr, "Still closed"), nullptr);
  for (int process : {-1, 1, 2}) registry.init(process);
  EXPECT_EQ(registry.getRegisterInfo(1), nullptr);
  EXPECT_NE(registry.addGroupInfo(1, nullptr, "Fresh"), nullptr);
  EXPECT_STREQ(registry.getRegisterInfo(0)->name, "Group");
}

TEST(ParameterInfo, EnumerationEntriesAreReplacedOrRefused) {
  Fg_ParameterInfo registry(1);
  RegisterInfo* group = registry.addGroupInfo(0, nullptr, "Group");
  RegisterInfo* node = registry.addInfoEnum(group, "Mode", "FG_MODE", 2, 7, 1, 1, nullptr, 5, 0);
  EXPECT_EQ(registry.addEnumNameValue(node, 1, "On", 1, "FG_ON"), 0);
  EXPECT_EQ(registry.addEnumNameValue(node, 1, "Inverted", -7, nullptr), 0);
  EXPECT_EQ(registry.addEnumNameValue(node, 0, nullptr, 9, "FG_X"), -500);
  EXPECT_EQ(registry.addEnumNameValue(group, 0, "X", 9, "FG_X"), -500);
  for (int i : {-1, 2}) EXPECT_EQ(registry.addEnumNameValue(node, i, "X", 9, "FG_X"), -500);
  const auto& entries = node->value.enumeration;
  EXPECT_STREQ(entries.names[1], "Inverted");
  EXPECT_TRUE(entries.values[1] == -7 && !entries.identifiers[1] && !entries.names[0]);
  node = registry.addInfoEnum(group, "Mode", "FG_MODE", -1, 7, 1, 1, nullptr, 5, 0);
  EXPECT_EQ(node->value.enumeration.entryCount, 0U);
  registry.setParamName(node, std::string("FG_OTHER").c_str());
  EXPECT_STREQ(node->paramName, "FG_OTHER");
  registry.setParamName(nullptr, "FG_OTHER");
}

}  // namespace
