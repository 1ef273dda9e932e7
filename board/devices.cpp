/// The control side's access to devices.
#include "board/model/model.h"
#include "board/virtual_board.h"

namespace board {

KTdevice* createDevice() { return new KTdevice; }

void destroyDevice(KTdevice* device) { delete device; }

void setValue(KTdevice* device, const std::string& name, unsigned dma, double value) {
  device->setByName(name, dma, value);
}

double value(KTdevice* device, const std::string& name, unsigned dma) {
  return device->byName(name, dma);
}

}  // namespace board
