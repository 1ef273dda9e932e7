/// The objects behind the opaque handles of the board's libraries.
#pragma once

#include <atomic>
#include <memory>

#include "board/model/design.h"
#include "board/model/device.h"
#include "velmora/handles.h"

struct KTdevice : board::Device {};

struct fpga_design {
  std::shared_ptr<const board::Design> content;
};

/// The acquisition runtime's inner handle.
struct Fg_Struct {
  KTdevice* device;
  std::shared_ptr<const board::Design> design;  ///< Stays usable when the applet unloads its own.
  std::atomic<int> lastError{0};
};
