#include "paraminfo/parameter_info.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

#include "velmora/errors.h"

// Readers in other programs rely on this layout.
static_assert(sizeof(RegisterInfo) == 128);
static_assert(offsetof(RegisterInfo, index) == 4);
static_assert(offsetof(RegisterInfo, name) == 8);
static_assert(offsetof(RegisterInfo, paramName) == 16);
static_assert(offsetof(RegisterInfo, accessMode) == 24);
static_assert(offsetof(RegisterInfo, qualifier) == 28);
static_assert(offsetof(RegisterInfo, visible) == 32);
static_assert(offsetof(RegisterInfo, id) == 36);
static_assert(offsetof(RegisterInfo, value) == 40);
static_assert(offsetof(RegisterInfo, value.group.children) == 48);
static_assert(offsetof(RegisterInfo, value.group.nextChildIndex) == 56);
static_assert(offsetof(RegisterInfo, value.uint32.max) == 44);
static_assert(offsetof(RegisterInfo, value.uint32.inc) == 48);
static_assert(offsetof(RegisterInfo, value.real.max) == 48);
static_assert(offsetof(RegisterInfo, value.real.inc) == 56);
static_assert(offsetof(RegisterInfo, value.enumeration.names) == 48);
static_assert(offsetof(RegisterInfo, value.enumeration.values) == 56);
static_assert(offsetof(RegisterInfo, value.enumeration.identifiers) == 72);
static_assert(offsetof(RegisterInfo, value.string.value) == 48);
static_assert(offsetof(RegisterInfo, value.uintField.max) == 44);
static_assert(offsetof(RegisterInfo, value.uintField.count) == 48);
static_assert(offsetof(RegisterInfo, value.uintField.zero) == 52);
static_assert(offsetof(RegisterInfo, value.uintField.initial) == 56);
static_assert(offsetof(RegisterInfo, value.realField.count) == 56);
static_assert(offsetof(RegisterInfo, value.realField.initial) == 64);
static_assert(offsetof(RegisterInfo, next) == 80);
static_assert(offsetof(RegisterInfo, prev) == 88);
static_assert(offsetof(RegisterInfo, level) == 96);
static_assert(offsetof(RegisterInfo, parentName) == 104);
static_assert(offsetof(RegisterInfo, unit) == 112);
static_assert(offsetof(RegisterInfo, process) == 120);

namespace velmora {
namespace {

using ValueArea = decltype(RegisterInfo::value);
using Text = std::unique_ptr<char[]>;

Text copyText(const char* text) {
  if (!text) return nullptr;
  const std::size_t size = std::strlen(text) + 1;
  Text copy = std::make_unique_for_overwrite<char[]>(size);
  std::memcpy(copy.get(), text, size);
  return copy;
}

void replaceText(char*& text, Text replacement) noexcept {
  delete[] text;
  text = replacement.release();
}

void createEntries(ValueArea& area, std::size_t count) {
  auto names = std::make_unique<char*[]>(count);
  auto values = std::make_unique<std::int32_t[]>(count);
  auto identifiers = std::make_unique<char*[]>(count);
  area.enumeration.entryCount = static_cast<std::uint32_t>(count);
  area.enumeration.names = names.release();
  area.enumeration.values = values.release();
  area.enumeration.identifiers = identifiers.release();
}

void releaseEntries(ValueArea& area) noexcept {
  for (std::uint32_t i = 0; i < area.enumeration.entryCount; ++i) {
    delete[] area.enumeration.names[i];
    delete[] area.enumeration.identifiers[i];
  }
  delete[] area.enumeration.names;
  delete[] area.enumeration.values;
  delete[] area.enumeration.identifiers;
}

}  // namespace

void Fg_ParameterInfo::NodeDeleter::operator()(RegisterInfo* node) const noexcept {
  switch (node->kind) {
    case REGISTER_INFO_GROUP:
      delete[] node->value.group.children;
      break;
    case REGISTER_INFO_ENUM:
      releaseEntries(node->value);
      break;
    case REGISTER_INFO_STRING:
      delete[] node->value.string.value;
      break;
    default:
      break;
  }
  delete[] node->name;
  delete[] node->paramName;
  delete[] node->parentName;
  delete[] node->unit;
  delete node;
}

Fg_ParameterInfo::Fg_ParameterInfo(int processCount)
    : processes_(static_cast<std::size_t>(std::max(processCount, 0))) {}

void Fg_ParameterInfo::init(int process) {
  destroy(process);
  if (Process* found = find(process)) found->finalized = false;
}

void Fg_ParameterInfo::destroy(int process) {
  if (Process* found = find(process)) {
    found->newestRoot = nullptr;
    found->nodes.clear();
  }
}

void Fg_ParameterInfo::finalize(int process) {
  if (Process* found = find(process)) found->finalized = true;
}

RegisterInfo* Fg_ParameterInfo::addGroupInfo(int process, RegisterInfo* parent, const char* name) {
  Process* owner = openProcess(process, parent);
  if (!owner) return nullptr;
  NodePtr group = createNode(REGISTER_INFO_GROUP, {.name = name, .process = process});
  if (!parent) return prependRoot(*owner, std::move(group));
  group->level = parent->level + 1;
  replaceText(group->parentName, copyText(parent->name));
  return appendChild(*owner, *parent, std::move(group));
}

RegisterInfo* Fg_ParameterInfo::addInfoUInt(RegisterInfo* parent, const char* name,
                                            const char* paramName, std::uint32_t min,
                                            std::uint32_t max, std::uint32_t inc, int accessMode,
                                            int qualifier, int visible, const char* unit, int id,
                                            int process) {
  return addValueNode(REGISTER_INFO_UINT,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        area.uint32 = {min, max, inc};
                      });
}

RegisterInfo* Fg_ParameterInfo::addInfoInt(RegisterInfo* parent, const char* name,
                                           const char* paramName, std::int32_t min,
                                           std::int32_t max, std::int32_t inc, int accessMode,
                                           int qualifier, int visible, const char* unit, int id,
                                           int process) {
  return addValueNode(REGISTER_INFO_INT,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        area.int32 = {min, max, inc};
                      });
}

RegisterInfo* Fg_ParameterInfo::addInfoUInt64(RegisterInfo* parent, const char* name,
                                              const char* paramName, std::uint64_t min,
                                              std::uint64_t max, std::uint64_t inc, int accessMode,
                                              int qualifier, int visible, const char* unit, int id,
                                              int process) {
  return addValueNode(REGISTER_INFO_UINT64,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        area.uint64 = {min, max, inc};
                      });
}

RegisterInfo* Fg_ParameterInfo::addInfoInt64(RegisterInfo* parent, const char* name,
                                             const char* paramName, std::int64_t min,
                                             std::int64_t max, std::int64_t inc, int accessMode,
                                             int qualifier, int visible, const char* unit, int id,
                                             int process) {
  return addValueNode(REGISTER_INFO_INT64,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        area.int64 = {min, max, inc};
                      });
}

RegisterInfo* Fg_ParameterInfo::addInfoDouble(RegisterInfo* parent, const char* name,
                                              const char* paramName, double min, double max,
                                              double inc, int accessMode, int qualifier,
                                              int visible, const char* unit, int id, int process) {
  return addValueNode(REGISTER_INFO_DOUBLE,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        area.real = {min, max, inc};
                      });
}

RegisterInfo* Fg_ParameterInfo::addInfoString(RegisterInfo* parent, const char* name,
                                              const char* paramName, const char* value,
                                              int accessMode, int qualifier, int visible,
                                              const char* unit, int id, int process) {
  return addValueNode(REGISTER_INFO_STRING,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) { area.string.value = copyText(value).release(); });
}

RegisterInfo* Fg_ParameterInfo::addInfoEnum(RegisterInfo* parent, const char* name,
                                            const char* paramName, int entryCount, int accessMode,
                                            int qualifier, int visible, const char* unit, int id,
                                            int process) {
  return addValueNode(REGISTER_INFO_ENUM,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        createEntries(area, static_cast<std::size_t>(std::max(entryCount, 0)));
                      });
}

int Fg_ParameterInfo::addEnumNameValue(RegisterInfo* enumeration, int entryIndex,
                                       const char* displayText, int value,
                                       const char* symbolicName) {
  if (!enumeration || enumeration->kind != REGISTER_INFO_ENUM || !displayText)
    return VELMORA_BUFFER_TOO_SMALL;
  auto& entries = enumeration->value.enumeration;
  if (entryIndex < 0 || static_cast<std::uint32_t>(entryIndex) >= entries.entryCount)
    return VELMORA_BUFFER_TOO_SMALL;
  try {
    Text name = copyText(displayText);
    Text identifier = copyText(symbolicName);
    replaceText(entries.names[entryIndex], std::move(name));
    replaceText(entries.identifiers[entryIndex], std::move(identifier));
  } catch (const std::bad_alloc&) {
    return VELMORA_BUFFER_TOO_SMALL;
  }
  entries.values[entryIndex] = value;
  return VELMORA_OK;
}

RegisterInfo* Fg_ParameterInfo::addInfoIntField(RegisterInfo* parent, const char* name,
                                                const char* paramName, std::int32_t count,
                                                std::int32_t value, std::int32_t max,
                                                std::int32_t /*ignored*/, int accessMode,
                                                int qualifier, int visible, const char* unit,
                                                int id, int process) {
  return addValueNode(REGISTER_INFO_INT_FIELD,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        area.intField = {value, max, count, 0, value};
                      });
}

RegisterInfo* Fg_ParameterInfo::addInfoUIntField(RegisterInfo* parent, const char* name,
                                                 const char* paramName, std::uint32_t count,
                                                 std::uint32_t value, std::uint32_t max,
                                                 std::uint32_t /*ignored*/, int accessMode,
                                                 int qualifier, int visible, const char* unit,
                                                 int id, int process) {
  return addValueNode(REGISTER_INFO_UINT_FIELD,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        area.uintField = {value, max, count, 0, value};
                      });
}

RegisterInfo* Fg_ParameterInfo::addInfoDoubleField(RegisterInfo* parent, const char* name,
                                                   const char* paramName, std::int32_t count,
                                                   double value, double max, double /*ignored*/,
                                                   int accessMode, int qualifier, int visible,
                                                   const char* unit, int id, int process) {
  return addValueNode(REGISTER_INFO_DOUBLE_FIELD,
                      {parent, name, paramName, accessMode, qualifier, visible, unit, id, process},
                      [&](ValueArea& area) {
                        area.realField = {value, max, count, value};
                      });
}

void Fg_ParameterInfo::setParamName(RegisterInfo* node, const char* paramName) {
  if (node) replaceText(node->paramName, copyText(paramName));
}

RegisterInfo* Fg_ParameterInfo::getRegisterInfo(int process) const {
  const Process* found = find(process);
  return found ? found->newestRoot : nullptr;
}

RegisterInfo* Fg_ParameterInfo::getNextRegisterInfo(const RegisterInfo* node, int process) const {
  const Process* found = find(process);
  if (!found) return nullptr;
  return node ? node->next : found->newestRoot;
}

const Fg_ParameterInfo::Process* Fg_ParameterInfo::find(int process) const {
  const bool exists = process >= 0 && static_cast<std::size_t>(process) < processes_.size();
  return exists ? &processes_[static_cast<std::size_t>(process)] : nullptr;
}

Fg_ParameterInfo::Process* Fg_ParameterInfo::find(int process) {
  return const_cast<Process*>(std::as_const(*this).find(process));
}

Fg_ParameterInfo::Process* Fg_ParameterInfo::openProcess(int process, const RegisterInfo* parent) {
  if (parent && parent->kind != REGISTER_INFO_GROUP) return nullptr;
  Process* found = find(process);
  return !found || found->finalized ? nullptr : found;
}

Fg_ParameterInfo::NodePtr Fg_ParameterInfo::createNode(RegisterInfoKind kind,
                                                       const Attributes& attributes) {
  NodePtr node(new RegisterInfo());
  node->kind = static_cast<std::uint32_t>(kind);
  node->accessMode = static_cast<std::uint32_t>(attributes.accessMode);
  node->qualifier = static_cast<std::uint32_t>(attributes.qualifier);
  node->visible = static_cast<std::uint32_t>(attributes.visible);
  node->id = attributes.id;
  node->process = attributes.process;
  node->name = copyText(attributes.name).release();
  node->paramName = copyText(attributes.paramName).release();
  node->unit = copyText(attributes.unit).release();
  return node;
}

RegisterInfo* Fg_ParameterInfo::appendChild(Process& process, RegisterInfo& parent, NodePtr node) {
  auto& group = parent.value.group;
  const std::size_t count = group.childCount;
  // There is room for the next power of two.
  std::unique_ptr<RegisterInfo*[]> grown;
  if (count == 0 || std::has_single_bit(count))
    grown = std::make_unique_for_overwrite<RegisterInfo*[]>(std::max<std::size_t>(2 * count, 1));
  // The last step that can fail; from here on parent and child are linked.
  RegisterInfo* child = process.nodes.emplace_back(std::move(node)).get();
  if (grown) {
    std::copy_n(group.children, count, grown.get());
    delete[] group.children;
    group.children = grown.release();
  }
  child->index = group.nextChildIndex++;
  group.children[count] = child;
  ++group.childCount;
  return child;
}

RegisterInfo* Fg_ParameterInfo::prependRoot(Process& process, NodePtr node) {
  RegisterInfo* root = process.nodes.emplace_back(std::move(node)).get();
  root->next = process.newestRoot;
  if (root->next) root->next->prev = root;
  process.newestRoot = root;
  return root;
}

template <class Fill>
RegisterInfo* Fg_ParameterInfo::addValueNode(RegisterInfoKind kind, const Attributes& attributes,
                                             Fill fill) {
  if (!attributes.parent) return nullptr;
  Process* owner = openProcess(attributes.process, attributes.parent);
  if (!owner) return nullptr;
  NodePtr node = createNode(kind, attributes);
  fill(node->value);
  return appendChild(*owner, *attributes.parent, std::move(node));
}

}  // namespace velmora
