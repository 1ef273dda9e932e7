#pragma once

#include <cstdint>

#include "parameters/parameter_table.h"

namespace velmora {

/// The image path of a port: from the camera's pixels to the output format. Plain parameters of the
/// path are rows of the parameter table.
class ImagePath {
 public:
  explicit ImagePath(Port& port) : port_(port) {}

  /// The runtime's own image timeout.
  void setTimeout(const ParameterRow& row, std::uint32_t timeout);
  void setWidth(const ParameterRow& row, std::uint32_t width);
  void setHeight(const ParameterRow& row, std::uint32_t height);
  void setXOffset(const ParameterRow& row, std::uint32_t offset);
  void setYOffset(const ParameterRow& row, std::uint32_t offset);
  /// The colour order goes to the demosaicing and to the white balance.
  void setBayerInit(const ParameterRow& row, std::uint32_t order);

 private:
  struct Partner;
  void setRegionSide(const ParameterRow& row, std::uint32_t value, const Partner& partner);

  Port& port_;
};

}  // namespace velmora
