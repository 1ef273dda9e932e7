#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "board/control.h"
#include "design/design_image.h"
#include "external/dervin.h"
#include "external/korv_hw.h"
#include "external/vorn5.h"
#include "velmora/velmora.h"

extern "C" {
Fg_Struct* Fg_InitHandleSlaveAware(const char* hapName, KTdevice*, fpga_design*, int flags);
Fg_Struct* Fg_InitHandle(const char* hapName, KTdevice*, fpga_design*);
VornGetParameter Fg_getParameter;
VornSetParameter Fg_setParameter;
}

inline fpga_design* loadImage() {
  return HapLoadDesignFromBuffer(velmora_design_image, velmora::kDesignImageSize, 1);
}

/// A board device with an open inner handle on a design. Everything must be given back at the end.
class BoardSession {
 public:
  explicit BoardSession(fpga_design* loaded = loadImage())
      : device(VirtualBoard_createDevice()),
        design(loaded),
        fg(Fg_InitHandleSlaveAware("Velmora.hap", device, design, 0)) {}
  BoardSession(const BoardSession&) = delete;
  ~BoardSession() {
    EXPECT_EQ(Fg_FreeGrabber(fg), 0);
    HapUnloadHapFile(design);
    VirtualBoard_destroyDevice(device);
  }

  int id(const std::string& name) const { return Fg_getParameterIdByName(fg, name.c_str()); }
  /// Sets a design parameter or writes a register.
  int set(const std::string& name, uint64_t value, unsigned dma = 0) const {
    if (!name.starts_with("CamGen")) return Fg_setParameterWithType(fg, id(name), &value, dma, 4);
    return KorvRegisterWrite(device, HapGetRegisterByName(design, name.c_str()), value);
  }

  KTdevice* const device;
  fpga_design* const design;
  Fg_Struct* const fg;
};
