#include "parameters/port/port.h"

#include "parameters/port/parameter_table.h"

namespace velmora {

SimulatorRegisterCache::SimulatorRegisterCache() {
  (*this)[DesignId::kGeneratorEnable] = 0;
  (*this)[DesignId::kGeneratorStart] = 1;
  (*this)[DesignId::kGeneratorWidth] = 2048;
  (*this)[DesignId::kGeneratorLineWidth] = 2080;
  (*this)[DesignId::kGeneratorHeight] = 1024;
  (*this)[DesignId::kGeneratorActive] = 3;
  (*this)[DesignId::kGeneratorPassive] = 29;
  (*this)[DesignId::kGeneratorRoll] = 1;
}

void Port::writeRegister(DesignId id, std::uint64_t value) {
  design.writeRegister(id, value);
  simulatorRegisters[id] = value;
}

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

void Port::describeAccess(int parameterId, int accessMode) {
  if (RegisterInfo* node = nodeOf(parameterId))
    node->accessMode = static_cast<std::uint32_t>(accessMode);
}

void Port::describeReopened() {
  for (const ParameterRow& row : listedParameters())
    if (row.reopens) describeAccess(row.id, row.accessMode);
}

}  // namespace velmora
