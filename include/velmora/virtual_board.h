/// Control side of the virtual board, in C: what plays the part of the hardware around an applet.
/// The functions are those of `libvirtualboard.so`.
///
/// Functions that return an int answer 0 or a code of `velmora/errors.h`; a failure changes
/// nothing. Null pointers are refused with a code where this header does not give them a meaning.
/// All functions may be called from any thread; destroying something must not overlap its use.
///
/// Times are nanoseconds of the board's clock, which counts from an unspecified start.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "velmora/handles.h"

#ifdef __cplusplus
extern "C" {
#endif

/// A device with four cameras, to be destroyed after all handles on it are released; null when
/// memory runs out. The first inner handle gives it the registers and parameters of the handle's
/// design, with the manifest's initial values (0 if not given). They keep their values from handle
/// to handle; a design with other content starts afresh.
KTdevice* VirtualBoard_createDevice(void);
void VirtualBoard_destroyDevice(KTdevice* device);

/// @name Picture memory
/// The buffers that a DMA channel writes pictures to, given to `Fg_AcquireEx` as its `memory`; the
/// calls after it take it as their memory handle, `(int64_t)(intptr_t)memory`, or 0. A channel uses
/// one memory and a memory serves one channel at a time.
///
/// A picture goes into a free buffer and belongs to the host from `VirtualBoard_takePicture` to
/// `VirtualBoard_returnBuffer`. A picture that finds no free buffer is lost and counted
/// (`VELMORA_STATUS_LOST_PICTURES`); `FG_FILLLEVEL` is the share of buffers that are not free, and
/// `FG_OVERFLOW` is 1 from a loss to the next picture that is kept. Lost pictures have numbers too,
/// so that a gap shows them.
/// @{
typedef struct VirtualBoardMemory VirtualBoardMemory;

/// @param buffers number of buffers, all free; may be 0.
/// @param bytes size of each; `Fg_AcquireEx` refuses buffers smaller than a picture (-2112).
/// @param addresses the host's own buffers, which it keeps until the memory is destroyed; null for
///        buffers of the board.
/// @return the memory; null when `bytes` is 0, an address is null or memory runs out.
VirtualBoardMemory* VirtualBoard_createMemory(uint32_t buffers, size_t bytes,
                                              void* const* addresses);
/// @return 0; -2113 while a channel runs with it; -2050 for what is no memory.
int VirtualBoard_destroyMemory(VirtualBoardMemory* memory);
/// Adds a buffer of the host, of at least the memory's buffer size. The host holds it until it
/// returns it. May be called while a channel runs.
/// @return its index; -2082 for a null address.
int VirtualBoard_addBuffer(VirtualBoardMemory* memory, void* address);
/// Takes a free buffer away from the channel: the host holds it until it returns it.
/// @return 0; -2087 for a buffer that is not free.
int VirtualBoard_holdBuffer(VirtualBoardMemory* memory, uint32_t buffer);

struct VirtualBoardPicture {
  uint32_t buffer;   ///< Index, for `VirtualBoard_returnBuffer`.
  uint32_t port;     ///< Camera port.
  int64_t number;    ///< Since the start, from 1; counts lost pictures.
  int64_t time;      ///< When the camera took it.
  uint8_t* pixels;   ///< Lines of 24-bit pixels (blue, green, red) without gaps, the top one first.
  size_t bytes;      ///< Of the picture.
  uint32_t width;    ///< Pixels.
  uint32_t height;   ///< Lines; fewer than the region's in an incomplete picture.
  int32_t complete;  ///< 0 for a picture that outgrew its buffer, or that its camera did not send.
};

/// Waits for the oldest picture that was not taken and hands it to the host. Pictures are computed
/// here, as the design's settings were at their time. After a stop the remaining ones can be taken.
/// @param seconds longest time to wait, at least 0.
/// @return 0; -2120 when none came in time; -2111 when no more will come; -2087 for a bad time.
int VirtualBoard_takePicture(VirtualBoardMemory* memory, double seconds,
                             struct VirtualBoardPicture* picture);
/// Frees a buffer that the host holds; its picture may be overwritten from now on.
/// @return 0; -2087 for a buffer that the host does not hold.
int VirtualBoard_returnBuffer(VirtualBoardMemory* memory, uint32_t buffer);
/// @}

/// @name Cameras
/// By default the camera of a port shows a colour chart through a Bayer mosaic whose first line is
/// red followed by green. A host's own raw pictures take its place.
/// @{
struct VirtualBoardRawPicture {
  const void* pixels;  ///< Lines without gaps, the top one first.
  uint32_t width;      ///< Pixels, 1 to 8192.
  uint32_t height;     ///< Lines, 1 to 65535.
  uint32_t bits;       ///< Per pixel: 8, or 16 in the byte order of the machine, all in use.
};

/// Makes a camera send these pictures, which are copied, one after the other and over again.
/// @param count number of pictures; 0 brings the colour chart back.
/// @return 0; -2081 for a port that there is not; -2087 for a picture without pixels or of another
///         depth or size.
int VirtualBoard_setCameraPictures(KTdevice* device, uint32_t port, uint32_t count,
                                   const struct VirtualBoardRawPicture* pictures);

/// Fills picture `number` of an acquisition. Called by `VirtualBoard_takePicture`, on its thread.
/// @return 0; anything else for a picture that the camera did not send, which is incomplete.
typedef int (*VirtualBoardFillPicture)(void* context, uint32_t port, int64_t number, void* pixels);

/// Makes a camera send what a function fills in. It is called until another camera is set and the
/// pictures up to then are taken.
/// @param format size and depth of the pictures; its `pixels` are ignored.
int VirtualBoard_setCameraFunction(KTdevice* device, uint32_t port, VirtualBoardFillPicture fill,
                                   void* context, const struct VirtualBoardRawPicture* format);
/// @}

/// @name Trigger inputs and outputs
/// The last call on an input (0 to 7) replaces what was going on there. -2087 for an input that
/// there is not, a negative width, or a rate that is negative or above 15 MHz.
/// @{
int VirtualBoard_setInput(KTdevice* device, uint32_t input, int level);
/// A pulse that begins now.
int VirtualBoard_pulseInput(KTdevice* device, uint32_t input, int64_t width);
/// Pulses that begin now and are as often high as low.
/// @param rate Hz; 0 ends with a low level.
/// @param pulses number of pulses; -1 for no end.
int VirtualBoard_trainInput(KTdevice* device, uint32_t input, double rate, int64_t pulses);
/// Levels of the eight outputs, two for each port, as a bit mask; 0 for a null device.
uint32_t VirtualBoard_outputs(KTdevice* device);
/// @}

/// @name Events of the design
/// @{
struct VirtualBoardEvent {
  uint64_t mask;  ///< As `Fg_getEventMask` has it: one bit.
  int64_t time;
};

/// Records the events of `mask` (see `Fg_getEventMask`) from now on, and no others.
int VirtualBoard_enableEvents(KTdevice* device, uint64_t mask);
/// Waits for the oldest recorded event and takes it. Of more than 4096 the oldest are lost.
/// @return 0; -2120 when there was none in time; -2087 for a bad time.
int VirtualBoard_takeEvent(KTdevice* device, double seconds, struct VirtualBoardEvent* event);
/// Number of events that were lost since the device was created.
uint64_t VirtualBoard_lostEvents(KTdevice* device);
/// @}

#ifdef __cplusplus
}
#endif
