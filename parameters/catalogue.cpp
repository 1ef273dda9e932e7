#include "parameters/catalogue.h"

#include <array>

#include "parameters/catalogue_rows.h"
#include "parameters/parameter_table.h"
#include "paraminfo/parameter_info.h"
#include "external/dervin.h"
#include "wrapper/fg_kt_wrapper.h"

namespace velmora {
namespace {

constexpr int kVisible = 1;
constexpr int kLevels = 4;

}  // namespace

RegisterInfo* Catalogue::file(RegisterInfo* node, int id) {
  wrapper_.parameterNodes().file(process_, id, node);
  return node;
}

void Catalogue::describeParameters() {
  auto& registry = *wrapper_.parameterInfo();
  std::array<RegisterInfo*, kLevels> groups{};  // The latest group of each level.
  for (const CatalogueLine& line : kCatalogue) {
    const auto level = static_cast<std::size_t>(line.level);
    RegisterInfo* parent = level > 0 ? groups[level - 1] : nullptr;
    if (line.parameter == 0) {
      groups[level] = registry.addGroupInfo(process_, parent, line.text);
      continue;
    }
    const ParameterRow& row = *findParameter(line.parameter);
    addValue(parent, line.text, row.id, row.name, row.limits, line.accessMode, line.qualifier,
             line.unit);
  }
}

RegisterInfo* Catalogue::addValue(RegisterInfo* parent, const char* display, int id,
                                  const char* name, const Limits& limits, int accessMode,
                                  int qualifier, const char* unit) {
  auto& registry = *wrapper_.parameterInfo();
  switch (limits.kind) {
    case Limits::Kind::kWord:
      return file(registry.addInfoUInt(parent, display, name, limits.word.min, limits.word.max,
                                       limits.word.inc, accessMode, qualifier, kVisible, unit, id,
                                       process_),
                  id);
    case Limits::Kind::kReal:
      return file(registry.addInfoDouble(parent, display, name, limits.real.min, limits.real.max,
                                         limits.real.inc, accessMode, qualifier, kVisible, unit, id,
                                         process_),
                  id);
    case Limits::Kind::kText:
      return file(registry.addInfoString(parent, display, name, limits.text, accessMode, qualifier,
                                         kVisible, unit, id, process_),
                  id);
    case Limits::Kind::kEnumeration:
      break;
    case Limits::Kind::kNone:
      return nullptr;
  }
  const Enumeration entries = limits.entries(static_cast<unsigned>(process_));
  RegisterInfo* node =
      file(registry.addInfoEnum(parent, display, name, static_cast<int>(entries.size()), accessMode,
                                qualifier, kVisible, unit, id, process_),
           id);
  for (std::size_t i = 0; i < entries.size(); ++i)
    registry.addEnumNameValue(node, static_cast<int>(i), entries[i].display, entries[i].value,
                              entries[i].identifier);
  return node;
}

void Catalogue::describeRegisters() {
  constexpr int kRegisterAccess =
      REGISTER_INFO_READABLE | REGISTER_INFO_WRITABLE | REGISTER_INFO_RUNTIME_FLAG;
  constexpr int kQualifier = 1;
  auto& registry = *wrapper_.parameterInfo();
  RegisterInfo* group = registry.addGroupInfo(process_, nullptr, "Direct Register Access");
  if (!group) return;
  fpga_design* design = wrapper_.designHandle();
  for (const DesignRegister& reg : designRegisters(design)) {
    const int bits = HapGetRegisterBitRange(design, reg.id);
    const bool readOnly = HapGetRegisterDirection(design, reg.id) == 0;
    const std::string display = reg.name + " (" + std::to_string(bits) + ")";
    const std::string name = kRegisterPrefix + reg.name;
    const std::uint64_t max =
        bits >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << (bits & 63)) - 1;
    const int access = readOnly ? int{REGISTER_INFO_READABLE} : kRegisterAccess;
    const int id = reg.id + kRegisterIdOffset;
    file(bits <= 32 ? registry.addInfoUInt(group, display.c_str(), name.c_str(), 0,
                                           static_cast<std::uint32_t>(max), 1, access, kQualifier,
                                           kVisible, nullptr, id, process_)
                    : registry.addInfoUInt64(group, display.c_str(), name.c_str(), 0, max, 1,
                                             access, kQualifier, kVisible, nullptr, id, process_),
         id);
  }
}

}  // namespace velmora
