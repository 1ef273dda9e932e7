#include "parameters/port.h"

#include "parameters/parameter_table.h"

namespace velmora {

RegisterInfo* Port::nodeOf(int parameterId) const {
  const std::size_t parameter = parameterIndex(parameterId);
  return parameter < nodes.size() ? nodes[parameter] : nullptr;
}

void Port::describeMinimum(int parameterId, std::uint32_t minimum) {
  if (RegisterInfo* node = nodeOf(parameterId)) node->value.uint32.min = minimum;
}

void Port::describeMinimum(int parameterId, double minimum) {
  if (RegisterInfo* node = nodeOf(parameterId)) node->value.real.min = minimum;
}

void Port::describeMaximum(int parameterId, std::uint32_t maximum) {
  if (RegisterInfo* node = nodeOf(parameterId)) node->value.uint32.max = maximum;
}

void Port::describeAccess(int parameterId, std::uint32_t accessMode) {
  if (RegisterInfo* node = nodeOf(parameterId)) node->accessMode = accessMode;
}

}  // namespace velmora
