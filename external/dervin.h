/// The folder external/ declares the libraries around the applet. This one is the design runtime
/// `libdervin.so`, which loads an FPGA design and describes its registers and events.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "velmora/handles.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Loads a design from an image of `size` bytes; null when the image is not a design.
fpga_design* HapLoadDesignFromBuffer(const void* image, unsigned size, int reserved);
/// Loads a design file for a board type; null when there is no such file or it is not a design.
fpga_design* HapLoadHapFileWithType(const char* file, int boardType, int reserved);
void HapUnloadHapFile(fpga_design*);

/// Id of a register; 0 or negative when the name does not exist.
int HapGetRegisterByName(fpga_design*, const char* name);
int HapGetNrOfRegister(fpga_design*);
/// Name of the register at `index`, from 1 up to the number of registers.
const char* HapGetRegisterName(fpga_design*, int index);
/// Width in bits; registers of more than 32 bits are accessed with 64-bit values.
int HapGetRegisterBitRange(fpga_design*, int registerId);
/// 0 for a read-only register.
int HapGetRegisterDirection(fpga_design*, int registerId);

/// An event of the design. Kind 1 marks the events that an applet reports.
struct HapEvent {
  uint64_t id;
  const char* name;
  int32_t kind;
};

/// The event at `index`, from 0; null past the last one.
const struct HapEvent* HapGetEvent(fpga_design*, int index);

#ifdef __cplusplus
}
static_assert(offsetof(HapEvent, name) == 8);
static_assert(offsetof(HapEvent, kind) == 16);
#endif
