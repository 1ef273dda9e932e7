/// Acquisition runtime `libvorn5.so`: types of the functions that the applet binds by name. They
/// take the runtime's own (inner) handle first; negative results are errors unless noted.
#pragma once

#include "velmora/handles.h"
#include "velmora/register_info.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Creates the inner handle on a loaded design; null on failure.
typedef Fg_Struct* VornInitHandleSlaveAware(const char* hapName, KTdevice*, fpga_design*,
                                            int flags);
typedef Fg_Struct* VornInitHandle(const char* hapName, KTdevice*, fpga_design*);
typedef int VornFreeGrabber(Fg_Struct*);
/// Last error of the handle; for a null handle, that of the init that has just failed.
typedef int VornGetLastErrorNumber(Fg_Struct*);

/// Id of a design parameter; 0 or negative when the name does not exist.
typedef int VornGetParameterIdByName(Fg_Struct*, const char* name);
/// 0 on success, else an error code, for all of the following parameter functions.
typedef int VornSetParameter(Fg_Struct*, int id, const void* value, unsigned dma);
typedef int VornGetParameter(Fg_Struct*, int id, void* value, unsigned dma);
typedef int VornSetParameterWithType(Fg_Struct*, int id, const void* value, unsigned dma, int type);
typedef int VornGetParameterWithType(Fg_Struct*, int id, void* value, unsigned dma, int type);
typedef int VornFreeParameterStringWithType(Fg_Struct*, int id, void* value, unsigned dma,
                                            int type);
/// Description forest of the design's own parameters; the applet asks for port 0.
typedef struct RegisterInfo* VornGetParameterInfo(Fg_Struct*, int port);

typedef int VornGetAppletId(Fg_Struct*, void* argument);
typedef int VornAcquireEx(Fg_Struct*, uint32_t dma, int64_t pictures, int32_t flags, void* memory);
typedef int VornStopAcquireEx(Fg_Struct*, uint32_t dma, int64_t memory, int32_t flags);
typedef int64_t VornGetLastPicNumberEx(Fg_Struct*, uint32_t dma, int64_t memory);
typedef int64_t VornGetLastPicNumberBlockingEx(Fg_Struct*, int64_t picture, uint32_t dma,
                                               int32_t timeout, int64_t memory);
typedef int64_t VornGetStatusEx(Fg_Struct*, uint32_t param, int64_t data, int32_t dma,
                                void* memory);

#ifdef __cplusplus
}
#endif
