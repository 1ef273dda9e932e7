#include "board/model/description.h"

#include <map>
#include <new>
#include <string>

#include "board/model/scalar.h"

namespace board {
namespace {

using Registry = velmora::Fg_ParameterInfo;
/// Operations that add a node with a range, and a field of numbers.
template <class Number>
using AddRange = RegisterInfo* (Registry::*)(RegisterInfo*, const char*, const char*, Number,
                                             Number, Number, int, int, int, const char*, int, int);
template <class Count, class Number>
using AddField = RegisterInfo* (Registry::*)(RegisterInfo*, const char*, const char*, Count, Number,
                                             Number, Number, int, int, int, const char*, int, int);

constexpr int kProcess = 0;
constexpr int kQualifier = 1;
constexpr int kVisible = 1;
constexpr int kReadOnlyAccess = REGISTER_INFO_READABLE;
constexpr int kFullAccess =
    REGISTER_INFO_READABLE | REGISTER_INFO_WRITABLE | REGISTER_INFO_RUNTIME_FLAG;
constexpr const char* kRootOfShortNames = "Design";

/// The groups added so far, by the beginning of the parameter names that they stand for.
class Groups {
 public:
  explicit Groups(Registry& registry) : registry_(registry) {}

  RegisterInfo* at(const std::string& path) {
    auto& group = groups_[path];
    if (group) return group;
    // Device and process together name a root group: "Device1_Process0".
    const auto cut = path.rfind('_');
    const bool root = cut == std::string::npos || path.find('_') == cut;
    RegisterInfo* parent = root ? nullptr : at(path.substr(0, cut));
    const std::string name = root ? path : path.substr(cut + 1);
    group = registry_.addGroupInfo(kProcess, parent, name.c_str());
    return group;
  }

 private:
  Registry& registry_;
  std::map<std::string, RegisterInfo*> groups_;
};

void addNode(Registry& registry, RegisterInfo* group, const char* leaf,
             const ParameterRecord& record, int id) {
  // One add operation per kind; they differ in the values before the common attributes.
  const auto add = [&](auto operation, auto... values) {
    return (registry.*operation)(group, leaf, record.name.c_str(), values...,
                                 record.writable ? kFullAccess : kReadOnlyAccess, kQualifier,
                                 kVisible, record.unit.empty() ? nullptr : record.unit.c_str(), id,
                                 kProcess);
  };
  const auto addRange = [&]<class Number>(AddRange<Number> operation) {
    add(operation, fromBits<Number>(record.min), fromBits<Number>(record.max),
        fromBits<Number>(record.step));
  };
  const auto addField = [&]<class Count, class Number>(AddField<Count, Number> operation) {
    add(operation, static_cast<Count>(record.count), fromBits<Number>(record.initial),
        fromBits<Number>(record.max), Number{});
  };
  switch (record.kind) {
    case REGISTER_INFO_UINT:
      return addRange(&Registry::addInfoUInt);
    case REGISTER_INFO_INT:
      return addRange(&Registry::addInfoInt);
    case REGISTER_INFO_UINT64:
      return addRange(&Registry::addInfoUInt64);
    case REGISTER_INFO_INT64:
      return addRange(&Registry::addInfoInt64);
    case REGISTER_INFO_DOUBLE:
      return addRange(&Registry::addInfoDouble);
    case REGISTER_INFO_UINT_FIELD:
      return addField(&Registry::addInfoUIntField);
    case REGISTER_INFO_INT_FIELD:
      return addField(&Registry::addInfoIntField);
    case REGISTER_INFO_DOUBLE_FIELD:
      return addField(&Registry::addInfoDoubleField);
    case REGISTER_INFO_STRING:
      add(&Registry::addInfoString, record.text.c_str());
      return;
    case REGISTER_INFO_ENUM: {
      auto* node = add(&Registry::addInfoEnum, static_cast<int>(record.entries.size()));
      int index = 0;
      for (const auto& [label, value] : record.entries) {
        if (Registry::addEnumNameValue(node, index++, label.c_str(), value, label.c_str()) != 0)
          throw std::bad_alloc();
      }
      return;
    }
    case REGISTER_INFO_GROUP:
      return;
  }
}

}  // namespace

void describeParameters(const std::vector<ParameterRecord>& parameters, int firstId,
                        Registry& registry) {
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
