#pragma once

#include <cstdint>

#include "parameters/parameter_table.h"

namespace velmora {

/// The DMA channel and the camera of a port as the runtime and the design report them.
class PortStatus {
 public:
  explicit PortStatus(Port& port) : port_(port) {}

  std::uint32_t dmaStatus() const;
  std::uint32_t cameraStatus() const;
  std::uint32_t cameraStatusExtended() const;

 private:
  struct Reading {
    std::uint32_t fillLevel;
    std::uint32_t overflow;
    std::uint32_t runtimeStatus;
  };
  Reading read() const;

  Port& port_;
};

/// The design's file name, as a string handed out (type 22) or copied.
void getHapFile(Port& port, const ParameterRow& row, void* value, int type);

/// The description of the parameter whose name stands at `value`; "-" for any other name.
void getParameterDescription(Port& port, const ParameterRow& row, void* value, int type);

/// The runtime's own answer for the same id and type.
void getForwarded(Port& port, const ParameterRow& row, void* value, int type);

}  // namespace velmora
