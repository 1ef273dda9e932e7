#pragma once

#include <memory>

#include "external/dervin.h"
#include "external/release.h"

namespace velmora {

struct DesignUnloader {
  void operator()(fpga_design* design) const {
    releaseQuietly([=] { HapUnloadHapFile(design); });
  }
};

/// A design that is unloaded with its owner.
using LoadedDesign = std::unique_ptr<fpga_design, DesignUnloader>;

}  // namespace velmora
