/// The DMA channel and the camera of a port as the runtime and the design report them.
#pragma once

#include "parameters/families/family.h"

namespace velmora::port_status {

std::uint32_t dmaStatus(const Port& port);
std::uint32_t cameraStatus(const Port& port);
std::uint32_t cameraStatusExtended(const Port& port);

}  // namespace velmora::port_status
