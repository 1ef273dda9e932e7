#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "paraminfo/parameter_info.h"

namespace {
/// Allocations until one fails; negative: none fails.
int allocationsUntilFailure = -1;
}  // namespace

void* operator new(std::size_t size) {
  if (allocationsUntilFailure >= 0 && allocationsUntilFailure-- == 0) throw std::bad_alloc();
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
// Not inline: the compiler would take their `free` for a mismatch with `new` at the call.
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete[](void* memory, std::size_t) noexcept { operator delete(memory); }

namespace velmora {
namespace {

/// What a node holds at a byte offset, read as the runtime's tools do.
template <class Value>
Value at(const RegisterInfo* node, size_t offset) {
  Value value;
  std::memcpy(&value, reinterpret_cast<const char*>(node) + offset, sizeof(Value));
  return value;
}

std::string bytesOf(const RegisterInfo* node, size_t offset = 0, size_t size = 128) {
  return std::string(reinterpret_cast<const char*>(node) + offset, size);
}

RegisterInfo* childOf(const RegisterInfo* group, size_t position) {
  return static_cast<RegisterInfo**>(at<void*>(group, 48))[position];
}

struct Cell {
  template <class Value>
  Cell(size_t where, Value value)
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
    return (registry.*method)(parent, "Name", "FG_P", values..., 7, 2, 4, "\xB5s", -5, process);
  };
}

RegisterInfo* addGroup(R& registry, RegisterInfo* parent, int process) {
  return registry.addGroupInfo(process, parent, "Name");
}

constexpr uint64_t kMax = UINT64_MAX;
constexpr int64_t kMin = INT64_MIN;

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
    {9, with(&R::addInfoUInt64, 1U, kMax, 3U), {{40, 1L}, {48, kMax}, {56, 3L}}},
    {11, with(&R::addInfoInt, -8, -2, 3), {{40, -8}, {44, -2}, {48, 3}}},
    {12, with(&R::addInfoInt64, kMin, -2, 3), {{40, kMin}, {48, -2L}, {56, 3L}}},
    {13, with(&R::addInfoIntField, 1, -2, 3, 4), {{40, -2}, {44, 3}, {48, 1}, {52, 0}, {56, -2}}}};

TEST(ParameterInfo, EveryOperationLaysItsNodeOutAndLinksIt) {
  Fg_ParameterInfo registry(3);
  RegisterInfo* parent = registry.addGroupInfo(2, nullptr, "Parent");
  uint32_t position = 0;
  for (const auto& operation : kOperations) {
    SCOPED_TRACE(operation.kind);
    const RegisterInfo* node = operation.add(registry, parent, 2);
    const bool group = operation.kind == 0;
    EXPECT_EQ(at<uint32_t>(node, 0), operation.kind);
    EXPECT_EQ(at<uint32_t>(node, 4), position);
    EXPECT_STREQ(at<char*>(node, 8), "Name");
    EXPECT_STREQ(at<char*>(node, 16), group ? nullptr : "FG_P");
    EXPECT_EQ((at<std::array<uint32_t, 3>>(node, 24)),
              group ? (std::array<uint32_t, 3>{}) : (std::array<uint32_t, 3>{7, 2, 4}));
    EXPECT_EQ(at<int32_t>(node, 36), group ? 0 : -5);
    for (const Cell& cell : operation.cells) {
      EXPECT_EQ(bytesOf(node, cell.offset, cell.bytes.size()), cell.bytes) << cell.offset;
    }
    EXPECT_EQ((at<std::array<void*, 2>>(node, 80)), (std::array<void*, 2>{}));
    EXPECT_EQ(at<uint32_t>(node, 96), group ? 1U : 0U);
    EXPECT_STREQ(at<char*>(node, 104), group ? "Parent" : nullptr);
    EXPECT_STREQ(at<char*>(node, 112), group ? nullptr : "\xB5s");
    EXPECT_EQ(at<int32_t>(node, 120), 2);
    EXPECT_EQ(at<uint32_t>(parent, 56), ++position);
    EXPECT_EQ(at<uint32_t>(parent, 40), position);
    for (uint32_t i = 0; i < position; ++i) EXPECT_EQ(childOf(parent, i)->index, i);
    EXPECT_EQ(childOf(parent, position - 1), node);
  }
  EXPECT_STREQ(at<char*>(childOf(parent, 3), 48), "*.hap");
}

TEST(ParameterInfo, TextsAreCopiedAndMayBeNull) {
  Fg_ParameterInfo registry(1);
  char text[] = "before";
  RegisterInfo* group = registry.addGroupInfo(0, nullptr, text);
  RegisterInfo* below = registry.addGroupInfo(0, group, nullptr);
  RegisterInfo* node = registry.addInfoString(group, text, text, text, 1, 1, 1, text, 1, 0);
  Fg_ParameterInfo::setParamName(below, text);
  std::strcpy(text, "after");
  for (const char* copy : {group->name, below->parentName, below->paramName, node->name,
                           node->paramName, node->unit, node->value.string.value})
    EXPECT_STREQ(copy, "before");

  node = registry.addInfoString(below, nullptr, nullptr, nullptr, 1, 1, 1, nullptr, 1, 0);
  const RegisterInfo* nameless = registry.addGroupInfo(0, below, nullptr);
  Fg_ParameterInfo::setParamName(below, nullptr);
  Fg_ParameterInfo::setParamName(nullptr, "nothing");
  for (const char* null : {below->name, below->paramName, nameless->parentName, node->name,
                           node->paramName, node->unit, node->value.string.value})
    EXPECT_EQ(null, nullptr);
}

TEST(ParameterInfo, RootGroupsAreListedNewestFirstAndNestedOnesCountTheirLevel) {
  Fg_ParameterInfo registry(2);
  RegisterInfo* roots[] = {registry.addGroupInfo(1, nullptr, "G1"),
                           registry.addGroupInfo(1, nullptr, "Trigger"),
                           registry.addGroupInfo(1, nullptr, "G3")};
  const RegisterInfo* newer = nullptr;
  for (int i = 2; i >= 0; --i) {
    const RegisterInfo* node = registry.getNextRegisterInfo(newer, 1);
    ASSERT_EQ(node, roots[i]);
    EXPECT_EQ(at<void*>(node, 88), newer);
    EXPECT_EQ(at<void*>(node, 80), i == 0 ? nullptr : roots[i - 1]);
    EXPECT_EQ(node->level, 0U);
    EXPECT_EQ(node->parentName, nullptr);
    newer = node;
  }
  EXPECT_EQ(registry.getRegisterInfo(1), roots[2]);
  EXPECT_EQ(registry.getNextRegisterInfo(newer, 1), nullptr);
  for (int process : {-1, 2}) EXPECT_EQ(registry.getNextRegisterInfo(newer, process), nullptr);
  for (int process : {-1, 0, 2}) {
    EXPECT_EQ(registry.getRegisterInfo(process), nullptr);
    EXPECT_EQ(registry.getNextRegisterInfo(nullptr, process), nullptr);
  }

  RegisterInfo* sub = registry.addGroupInfo(1, roots[1], "Input");
  const RegisterInfo* subSub = registry.addGroupInfo(1, sub, "External");
  EXPECT_EQ(sub->level, 1U);
  EXPECT_STREQ(sub->parentName, "Trigger");
  EXPECT_EQ(subSub->level, 2U);
  EXPECT_STREQ(subSub->parentName, "Input");
}

TEST(ParameterInfo, RefusedNodesChangeNothing) {
  Fg_ParameterInfo registry(2);
  RegisterInfo* open = registry.addGroupInfo(0, nullptr, "Open");
  RegisterInfo* closed = registry.addGroupInfo(1, nullptr, "Closed");
  for (const auto& operation : kOperations) operation.add(registry, open, 0);
  for (int process : {-1, 1, 2}) registry.finalize(process);

  std::vector<std::pair<RegisterInfo*, int>> refused = {
      {open, -1}, {open, 2}, {closed, 1}, {nullptr, 1}, {nullptr, 2}};
  for (size_t i = 1; i < std::size(kOperations); ++i) refused.push_back({childOf(open, i), 0});
  for (const auto& operation : kOperations) {
    for (const auto& [parent, process] : refused) {
      SCOPED_TRACE(testing::Message() << operation.kind << " in process " << process);
      const std::string before = parent ? bytesOf(parent) : "";
      EXPECT_EQ(operation.add(registry, parent, process), nullptr);
      EXPECT_EQ(parent ? bytesOf(parent) : "", before);
    }
    EXPECT_TRUE(operation.kind == 0 || operation.add(registry, nullptr, 0) == nullptr);
  }
  EXPECT_EQ(registry.getRegisterInfo(1), closed);
  EXPECT_EQ(registry.getRegisterInfo(0), open);
}

TEST(ParameterInfo, ProcessesAreEmptiedReopenedAndClosedIndependently) {
  Fg_ParameterInfo registry(2);
  for (int process : {0, 1}) {
    RegisterInfo* group = registry.addGroupInfo(process, nullptr, "Group");
    for (const auto& operation : kOperations) operation.add(registry, group, process);
  }
  registry.finalize(1);
  registry.destroy(1);
  EXPECT_EQ(registry.getRegisterInfo(1), nullptr);
  EXPECT_EQ(registry.addGroupInfo(1, nullptr, "Still closed"), nullptr);
  registry.init(1);
  EXPECT_EQ(registry.getRegisterInfo(1), nullptr);
  const RegisterInfo* fresh = registry.addGroupInfo(1, nullptr, "Fresh");
  EXPECT_EQ(registry.getRegisterInfo(1), fresh);
  EXPECT_EQ(fresh->next, nullptr);
  for (int process : {-1, 2}) {
    registry.init(process);
    registry.destroy(process);
  }
  EXPECT_STREQ(registry.getRegisterInfo(0)->name, "Group");
  EXPECT_EQ(Fg_ParameterInfo(-1).addGroupInfo(0, nullptr, "Nowhere"), nullptr);
}

TEST(ParameterInfo, EnumerationEntriesStartEmptyAndAreReplaced) {
  Fg_ParameterInfo registry(1);
  RegisterInfo* group = registry.addGroupInfo(0, nullptr, "Group");
  RegisterInfo* node = registry.addInfoEnum(group, "Mode", "FG_MODE", 2, 7, 1, 1, nullptr, 5, 0);
  char** names = at<char**>(node, 48);
  const int32_t* values = at<int32_t*>(node, 56);
  char** identifiers = at<char**>(node, 72);
  const auto expectEntry = [&](int i, const char* name, int value, const char* identifier) {
    EXPECT_STREQ(names[i], name);
    EXPECT_EQ(values[i], value);
    EXPECT_STREQ(identifiers[i], identifier);
  };
  expectEntry(0, nullptr, 0, nullptr);
  expectEntry(1, nullptr, 0, nullptr);
  EXPECT_EQ(registry.addEnumNameValue(node, 1, "On", 1, "FG_ON"), 0);
  EXPECT_EQ(registry.addEnumNameValue(node, 1, "Inverted", -7, nullptr), 0);
  EXPECT_EQ(registry.addEnumNameValue(node, 0, "", 3, "FG_OTHER"), 0);

  EXPECT_EQ(registry.addEnumNameValue(node, 0, nullptr, 9, "FG_X"), -500);
  EXPECT_EQ(registry.addEnumNameValue(nullptr, 0, "X", 9, "FG_X"), -500);
  EXPECT_EQ(registry.addEnumNameValue(group, 0, "X", 9, "FG_X"), -500);
  for (int i : {-1, 2}) EXPECT_EQ(registry.addEnumNameValue(node, i, "X", 9, "FG_X"), -500);
  for (int allocation : {0, 1}) {
    allocationsUntilFailure = allocation;
    const int result = registry.addEnumNameValue(node, 1, "X", 9, "FG_X");
    allocationsUntilFailure = -1;
    EXPECT_EQ(result, -500);
  }
  expectEntry(0, "", 3, "FG_OTHER");
  expectEntry(1, "Inverted", -7, nullptr);

  node = registry.addInfoEnum(group, "None", "FG_NONE", -1, 7, 1, 1, nullptr, 5, 0);
  EXPECT_EQ(node->value.enumeration.entryCount, 0U);
  EXPECT_EQ(registry.addEnumNameValue(node, 0, "X", 9, "FG_X"), -500);
}

TEST(ParameterInfo, LackOfMemoryLeavesTheForestAsItWas) {
  for (const auto& operation : kOperations) {
    SCOPED_TRACE(operation.kind);
    Fg_ParameterInfo registry(1);
    RegisterInfo* parent = registry.addGroupInfo(0, nullptr, "Parent");
    int failures = 0;
    for (const RegisterInfo* node = nullptr; node == nullptr; ++failures) {
      const std::string before = bytesOf(parent);
      allocationsUntilFailure = failures;
      try {
        node = operation.add(registry, parent, 0);
      } catch (const std::bad_alloc&) {
        EXPECT_EQ(bytesOf(parent), before);
      }
      allocationsUntilFailure = -1;
    }
    EXPECT_GT(failures, 4);  // At least the node, a text, the place in the sequence, the children.
    EXPECT_EQ(parent->value.group.childCount, 1U);
  }
}

}  // namespace
}  // namespace velmora
