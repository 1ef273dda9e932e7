/// The image generator that can take the place of a port's camera, driven through registers.
#pragma once

#include "parameters/families/family.h"

namespace velmora::camera_simulator {

/// The register holds the height minus 1; a height of 0 wraps around.
void setHeight(Port& port, const ParameterRow& row, std::uint32_t height);
/// Width and line gap, in pixels: either one rewrites both line registers, so that the pair always
/// matches the settings.
void setWidthOrGap(Port& port, const ParameterRow& row, std::uint32_t pixels);
/// Pixel frequency in MHz.
void setFrequency(Port& port, const ParameterRow& row, double megahertz);
/// Clock cycles per period.
void setAccuracy(Port& port, const ParameterRow& row, std::uint32_t cycles);

std::uint32_t active(const Port& port);
std::uint32_t passive(const Port& port);
std::uint32_t lineWidth(const Port& port);

}  // namespace velmora::camera_simulator
