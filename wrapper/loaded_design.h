#pragma once

#include <memory>

#include "external/dervin.h"

namespace velmora {

struct DesignUnloader {
  void operator()(fpga_design* design) const { HapUnloadHapFile(design); }
};

/// A design that is unloaded with its owner.
using LoadedDesign = std::unique_ptr<fpga_design, DesignUnloader>;

}  // namespace velmora
