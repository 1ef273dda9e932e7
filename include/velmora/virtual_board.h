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

/// @name Values from the hardware's side
/// A parameter or register by name, without an entry in the journal: to set what the design would
/// (status words, counters, overflow) and to see what was written to it. Read-only ones can be set
/// too. Those of the runtime itself have names such as "FG_TIMEOUT" or "FG_CAMSTATUS_EXTENDED"; one
/// that is set here keeps the value instead of following the device's state. So does a status of
/// the trigger block, until a host clears it.
///
/// -2050 for a null device; -2082 for another null pointer; -2081 for a DMA index outside 0 to 3;
/// -2080 for an unknown name, and for every name before the first inner handle; -2083 for a
/// parameter that is not a single number.
/// @{

/// @param dma channel; without influence on registers and on parameters that all channels share.
/// @param value is rounded towards zero and limited to what the parameter's type holds.
int VirtualBoard_setValue(KTdevice* device, const char* name, uint32_t dma, double value);
/// @param value takes the value; one of 64 bits is rounded.
int VirtualBoard_getValue(KTdevice* device, const char* name, uint32_t dma, double* value);
/// @}

/// What was handed out in this process and not given back; all 0 when nothing leaked.
struct VirtualBoardOutstanding {
  int32_t handles;   ///< Inner handles.
  int32_t designs;   ///< Loaded designs.
  int32_t strings;   ///< Texts that gets of type 22 returned.
  int32_t memories;  ///< Picture memories.
};
struct VirtualBoardOutstanding VirtualBoard_outstanding(void);

/// What a code of `VelmoraBoardError` means, or -2130, in English; empty for any other code.
/// @return a text that lives as long as the library.
const char* VirtualBoard_errorText(int code);

/// Tells the owner of a context that the board has no more use for it: what it was given with was
/// replaced, or refused, and calls that had begun have returned. Called on the thread that replaced
/// it or on that of the last call; not at the end of the process.
typedef void (*VirtualBoardRelease)(void* context);

/// @name Clock
/// The clock of all devices counts pictures and triggers and measures timeouts. Unless replaced it
/// is the machine's steady clock. Its functions may be called by several threads at a time and must
/// not call the board.
/// @{

/// @return the time, never less than before.
typedef int64_t (*VirtualBoardNow)(void* context);
/// @param time nanoseconds to let pass, at least 0.
typedef void (*VirtualBoardSleep)(void* context, int64_t time);

/// @param now null for the steady clock.
/// @param sleep null to really sleep; a simulated clock advances its own time.
/// @param release may be null.
/// @return 0; -501 when memory runs out.
int VirtualBoard_setClock(VirtualBoardNow now, VirtualBoardSleep sleep, void* context,
                          VirtualBoardRelease release);
/// @}

/// @name Journal
/// Every access to the board by an applet or host, that is, each call of `libvorn5.so`,
/// `libdervin.so` and `libkorv_hw.so`, of all devices and threads, in the order in which they
/// ended. While there is no journal, observer or fault, accesses are not described and cost nothing
/// more.
/// @{
enum VirtualBoardAccessKind {
  VELMORA_ACCESS_SET = 0,             ///< Design or runtime parameter written.
  VELMORA_ACCESS_GET = 1,             ///< Design or runtime parameter read.
  VELMORA_ACCESS_REGISTER_WRITE = 2,  ///< Register written.
  VELMORA_ACCESS_REGISTER_READ = 3,   ///< Register read.
  VELMORA_ACCESS_CALL = 4             ///< Any other function of the board's libraries.
};

/// Its texts live until the function returns that was given the access.
struct VirtualBoardAccess {
  int32_t kind;       ///< A `VirtualBoardAccessKind`.
  int32_t dma;        ///< DMA index as passed; -1 where the call has none.
  const char* name;   ///< Parameter, register or function; "#<id>" for an unknown id.
  const char* value;  ///< Written or read (decimal, doubles in shortest form), or arguments.
  int64_t result;     ///< What it returned; 0 for a non-null pointer, -1 for a null one.
  int32_t failed;     ///< 1 if a fault took its place or the result is an error, else 0.
};

/// Writes an access as a line without its end, such as "set Device1_Process1_Buffer_XLength[1] =
/// 1000", "get NAME[0] -> 5", "write CamGenWidth0 = 1024", "read NAME -> 3" or "call
/// Fg_AcquireEx(dma 0, 10 pictures)"; a failed access ends in " failed: -2080", a call that returns
/// a null pointer in " -> null". With a null `text` only the size is stored.
/// @param size in: bytes at `text`; out: bytes needed, terminating zero included. Unchanged on
///        failure.
/// @return 0; -500 for too small a text or a null `size`; -501 when memory runs out; -2082 for a
///         null access, name or value; -2087 for an unknown kind.
int VirtualBoard_describe(const struct VirtualBoardAccess* access, char* text, size_t* size);

/// Is told of an access, on its thread and before its result is returned. It may use the board; its
/// own accesses are told as well. If it is in C++ and throws, the exception leaves the access.
typedef void (*VirtualBoardObserver)(void* context, const struct VirtualBoardAccess* access);

/// Empties the journal and records from now on. What there is no memory for is left out.
void VirtualBoard_startJournal(void);
/// Records no more. What was recorded can still be taken.
void VirtualBoard_stopJournal(void);
/// Empties the journal, which goes on, and calls `each` for every access that was in it.
/// @return 0; -2082 for a null function; -501 when it is in C++ and throws, and the rest is lost.
int VirtualBoard_takeJournal(VirtualBoardObserver each, void* context);
/// Empties the journal, which goes on, into a text: for each access the line of
/// `VirtualBoard_describe` and a line feed. With a null `text` the size is stored and the journal
/// stays as it is. It may grow between two calls, if other threads use the board.
/// @param size in: bytes at `text`; out: bytes needed, terminating zero included. Unchanged on
///        failure.
/// @return 0; -500 for too small a text or a null `size`; -501 when memory runs out. After a
///         failure the journal is as it was.
int VirtualBoard_takeJournalText(char* text, size_t* size);

/// Calls a function for every access from now on, beside the journal. It takes the place of the one
/// before, which another thread may still be in.
/// @param observer null for none.
/// @param release may be null.
/// @return 0; -501 when memory runs out.
int VirtualBoard_observe(VirtualBoardObserver observer, void* context, VirtualBoardRelease release);
/// @}

/// @name Faults
/// An access that meets a fault has no effect and returns the fault's code, negative or positive; a
/// function that returns a pointer returns null, and the code becomes the last error. Faults are of
/// the whole process and add up. If several meet, all are used up, and that by name prevails.
/// @{

/// What a fault counts.
enum VirtualBoardCounted {
  VELMORA_COUNT_WRITES = 0,  ///< Parameters set and registers written.
  VELMORA_COUNT_VALUES = 1,  ///< These, and parameters and registers that are read.
  VELMORA_COUNT_ALL = 2      ///< Accesses of every kind.
};

/// Makes the k-th of the accesses from now on fail, and no other.
/// @param counted which are counted: a `VirtualBoardCounted`.
/// @param k from 1.
/// @return 0; -2087 when `k` is 0 or `counted` unknown; -501 when memory runs out.
int VirtualBoard_failAt(int counted, uint32_t k, int code);
/// Makes the accesses of a name fail. Replaces a fault of the same name.
/// @param name of a parameter, register or function, as in the journal; one that does not exist is
///        no error.
/// @param times how many; 0 for all until `VirtualBoard_clearFaults`.
/// @return 0; -2082 for a null name; -501 when memory runs out.
int VirtualBoard_failNamed(const char* name, int code, uint32_t times);
void VirtualBoard_clearFaults(void);
/// @}

#ifdef __cplusplus
}
#endif
