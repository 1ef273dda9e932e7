/// The board's model, shared by all of its libraries, and what their opaque handles point to: a
/// device (`device.h`), designs (`design.h`) and inner handles. `ledger.h` records what is handed
/// out, `watch.h` sees every access.
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
  std::shared_ptr<const board::Design> design;  ///< Outlives the applet's `fpga_design`.
  std::atomic<int> lastError{0};
};
