/// The control side's access to a device's values.
#include "board/control.h"
#include "board/model/model.h"

namespace board {

void setValue(KTdevice* device, const std::string& name, unsigned dma, double value) {
  device->setByName(name, dma, value);
}

double value(KTdevice* device, const std::string& name, unsigned dma) {
  return device->byName(name, dma);
}

}  // namespace board
