/// Register access library `libkorv_hw.so`.
#pragma once

#include <stdint.h>

#include "velmora/handles.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Writes a register of the board; 0 on success, else an error code.
int KorvRegisterWrite(KTdevice*, int registerId, uint64_t value);
/// Reads a register of the board into `value`; 0 on success, else an error code.
int KorvRegisterRead(KTdevice*, int registerId, uint64_t* value);

#ifdef __cplusplus
}
#endif
