/// The image path of a port, from the camera's pixels to the output format.
#pragma once

#include "parameters/families/family.h"

namespace velmora::image_path {

/// The runtime's own image timeout.
void setTimeout(Port& port, const ParameterRow& row, std::uint32_t timeout);

/// @name Region of interest, in pixels: a size and its offset limit each other
/// @{
void setWidth(Port& port, const ParameterRow& row, std::uint32_t width);
void setHeight(Port& port, const ParameterRow& row, std::uint32_t height);
void setXOffset(Port& port, const ParameterRow& row, std::uint32_t offset);
void setYOffset(Port& port, const ParameterRow& row, std::uint32_t offset);
/// @}

/// The colour order goes to the demosaicing and to the white balance.
void setBayerInit(Port& port, const ParameterRow& row, std::uint32_t order);

}  // namespace velmora::image_path
