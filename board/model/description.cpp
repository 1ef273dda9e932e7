#include "board/model/description.h"

#include <bit>
#include <map>
#include <string>

namespace board {
namespace {

constexpr int kProcess = 0;
constexpr int kQualifier = 1;
constexpr int kVisible = 1;
constexpr int kReadOnlyAccess = REGISTER_INFO_READABLE;
constexpr int kFullAccess =
    REGISTER_INFO_READABLE | REGISTER_INFO_WRITABLE | REGISTER_INFO_RUNTIME_FLAG;
constexpr const char* kRootOfShortNames = "Design";

/// The groups made so far, by the part of the parameter names that they stand for.
class Groups {
 public:
  explicit Groups(velmora::Fg_ParameterInfo& registry) : registry_(registry) {}

  RegisterInfo* at(const std::string& path) {
    auto& group = groups_[path];
    if (group) return group;
    // The device and the process together make the root: "Device1_Process0".
    const auto cut = path.rfind('_');
    const bool root = cut == std::string::npos || path.find('_') == cut;
    RegisterInfo* parent = root ? nullptr : at(path.substr(0, cut));
    const std::string name = root ? path : path.substr(cut + 1);
    group = registry_.addGroupInfo(kProcess, parent, name.c_str());
    return group;
  }

 private:
  velmora::Fg_ParameterInfo& registry_;
  std::map<std::string, RegisterInfo*> groups_;
};

void addNode(velmora::Fg_ParameterInfo& registry, RegisterInfo* group, const char* leaf,
             const ParameterRecord& record, int id) {
  const char* name = record.name.c_str();
  const char* unit = record.unit.empty() ? nullptr : record.unit.c_str();
  const int access = record.writable ? kFullAccess : kReadOnlyAccess;
  // One add operation per kind; they differ in the numbers in front of the common attributes.
  const auto add = [&](auto operation, auto... numbers) {
    return (registry.*operation)(group, leaf, name, numbers..., access, kQualifier, kVisible, unit,
                                 id, kProcess);
  };
  const auto addRange = [&](auto operation, auto convert) {
    return add(operation, convert(record.min), convert(record.max), convert(record.step));
  };
  const auto asUint = [](std::uint64_t bits) { return static_cast<std::uint32_t>(bits); };
  const auto asInt = [](std::uint64_t bits) { return static_cast<std::int32_t>(bits); };
  const auto asUint64 = [](std::uint64_t bits) { return bits; };
  const auto asInt64 = [](std::uint64_t bits) { return static_cast<std::int64_t>(bits); };
  const auto asDouble = [](std::uint64_t bits) { return std::bit_cast<double>(bits); };

  using Registry = velmora::Fg_ParameterInfo;
  switch (record.kind) {
    case REGISTER_INFO_UINT:
      addRange(&Registry::addInfoUInt, asUint);
      break;
    case REGISTER_INFO_INT:
      addRange(&Registry::addInfoInt, asInt);
      break;
    case REGISTER_INFO_UINT64:
      addRange(&Registry::addInfoUInt64, asUint64);
      break;
    case REGISTER_INFO_INT64:
      addRange(&Registry::addInfoInt64, asInt64);
      break;
    case REGISTER_INFO_DOUBLE:
      addRange(&Registry::addInfoDouble, asDouble);
      break;
    case REGISTER_INFO_STRING:
      add(&Registry::addInfoString, record.text.c_str());
      break;
    case REGISTER_INFO_UINT_FIELD:
      add(&Registry::addInfoUIntField, record.count, asUint(record.initial), asUint(record.max),
          0U);
      break;
    case REGISTER_INFO_INT_FIELD:
      add(&Registry::addInfoIntField, asInt(record.count), asInt(record.initial), asInt(record.max),
          0);
      break;
    case REGISTER_INFO_DOUBLE_FIELD:
      add(&Registry::addInfoDoubleField, asInt(record.count), asDouble(record.initial),
          asDouble(record.max), 0.0);
      break;
    case REGISTER_INFO_ENUM: {
      auto* node = add(&Registry::addInfoEnum, static_cast<int>(record.entries.size()));
      int index = 0;
      for (const auto& [label, value] : record.entries) {
        Registry::addEnumNameValue(node, index++, label.c_str(), value, label.c_str());
      }
      break;
    }
    case REGISTER_INFO_GROUP:
      break;
  }
}

}  // namespace

void describeParameters(const std::vector<ParameterRecord>& parameters, int firstId,
                        velmora::Fg_ParameterInfo& registry) {
  Groups groups(registry);
  int id = firstId;
  for (const auto& record : parameters) {
    const auto cut = record.name.rfind('_');
    const bool hasGroup = cut != std::string::npos && cut > 0;
    auto* group = groups.at(hasGroup ? record.name.substr(0, cut) : kRootOfShortNames);
    addNode(registry, group, record.name.c_str() + (hasGroup ? cut + 1 : 0), record, id++);
  }
}

}  // namespace board
