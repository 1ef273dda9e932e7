#include "parameters/design/direct_access.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <limits>
#include <set>

#include "external/dervin.h"
#include "paraminfo/forest.h"
#include "wrapper/fg_kt_wrapper.h"

namespace velmora {
namespace {

/// Whether a design id with an offset added to it is still an `int`.
constexpr bool hasSdkId(int id, int offset) {
  return id <= std::numeric_limits<int>::max() - offset;
}

}  // namespace

bool isEnabled(const char* environmentVariable) {
  const char* value = std::getenv(environmentVariable);
  if (!value) return false;
  std::string text = value;
  std::ranges::transform(text, text.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text == "yes" || text == "true" || text == "on" || text == "1";
}

std::vector<DesignRegister> designRegisters(fpga_design* design) {
  std::vector<DesignRegister> registers;
  const int count = HapGetNrOfRegister(design);
  for (int i = 1; i <= count; ++i) {
    const char* name = HapGetRegisterName(design, i);
    if (!name) name = "";
    DesignRegister reg{name, HapGetRegisterByName(design, name)};
    if (hasSdkId(reg.id, kRegisterIdOffset)) registers.push_back(std::move(reg));
  }
  return registers;
}

std::map<std::string, int> designParameters(const FgKtWrapper& wrapper) {
  std::set<std::string> names;
  for (const ForestGroup& entry : breadthFirst(wrapper.getUnwrappedParameterInfo())) {
    const auto& children = entry.group->value.group;
    for (std::uint32_t i = 0; i < children.childCount; ++i) {
      const RegisterInfo* node = children.children[i];
      if (node && isPlainValue(node->kind) && node->paramName && *node->paramName)
        names.insert(node->paramName);
    }
  }

  std::map<std::string, int> ids;
  for (const std::string& name : names)
    if (const int id = wrapper.getParameterIdByName(name.c_str());
        id >= 1 && hasSdkId(id, kDesignParameterIdOffset))
      ids.emplace(name, id);
  return ids;
}

}  // namespace velmora
