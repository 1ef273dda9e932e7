#include "parameters/port/parameter_row.h"

#include "parameters/port/setting.h"

namespace velmora {

template <class T>
void ParameterRow::writePlain(Port& port, const ParameterRow& row, T value) {
  setThrough(port, row, value, [&] { port.design.write(row.design_, value); });
}
template void ParameterRow::writePlain(Port&, const ParameterRow&, std::uint32_t);
template void ParameterRow::writePlain(Port&, const ParameterRow&, double);

void ParameterRow::writeNothing(Port& port, const ParameterRow& row, std::uint32_t value) {
  setThrough(port, row, value, [] {});
}

void ParameterRow::writeRegister(Port& port, const ParameterRow& row, std::uint32_t value) {
  setThrough(port, row, value, [&] { port.writeRegister(row.design_, value); });
}

void ParameterRow::writeOneShot(Port& port, const ParameterRow& row, std::uint32_t value) {
  setThrough(port, row, value, [&] { port.design.trigger(row.design_); });
}

void ParameterRow::readDesign(Port& port, const ParameterRow& row, void* value, int) {
  store(value, port.design.read(row.design_));
}

void getSetting(Port& port, const ParameterRow& row, void* value, int) {
  if (row.field.real)
    store(value, port.settings.*row.field.real);
  else
    store(value, port.settings.*row.field.integer);
}

void getForwarded(Port& port, const ParameterRow& row, void* value, int type) {
  port.design.getRuntime(row.id, value, type);
}

}  // namespace velmora
