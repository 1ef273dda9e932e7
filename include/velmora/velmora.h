/// The folder include/velmora/ is what hosts of the acquisition applet `libVelmora.so` include.
/// This header declares the exported functions.
///
/// An `Fg_Struct*` is the host's (outer) handle, whose first word is the instance that `Std_entry`
/// returned. With a null handle or a null first word a function returns -2001 (or null, or 0 where
/// noted) and changes nothing. Results are 0 or positive on success, and on failure negative codes
/// of `velmora/errors.h` or of the libraries around the applet. A set or get succeeds with 0 only:
/// codes of those libraries may be positive.
///
/// Texts end in a zero and are ASCII, except that the micro sign in units is the single byte 0xB5.
/// What a host passes in is compared byte by byte.
///
/// Threads: `Std_entry` and `Fg_FreeGrabber` must not overlap other calls on the same handle. Sets
/// and gets may come from any thread; they run one after the other. These must not overlap sets on
/// the same handle, nor a load:
/// - `Fg_loadConfig`, which must not overlap gets either;
/// - `Fg_saveConfig`, which could write the value of a set that the design then refuses;
/// - `Fg_getParameterInfoXML` and readers of the nodes of `Fg_getParameterInfo`, since sets change
///   ranges and access modes.
/// `Fg_saveConfig` and `Fg_loadConfig` set the locale of the whole process (`setlocale(LC_ALL,
/// "English")`, without effect if there is no such locale); no other thread may be using it.
/// `Info` may be called at any time from any thread, also while the process exits.
///
/// Exceptions: a C host sees none while it keeps the rules above, memory does not run out and the
/// libraries around the applet throw nothing. Otherwise these leave an export:
/// - `std::logic_error` from a set or get that is called within a set or get on the same handle and
///   thread (by a runtime that calls back);
/// - `std::bad_alloc` and other errors of the standard library, except from `Info`, `Std_entry` and
///   `Fg_getParameterInfoXML`; a set has then restored the stored setting and released the lock;
/// - whatever a library around the applet throws, except that an integer becomes the result of a
///   set or get of the applet's own parameters (not of ids above 2000000 or register ids), and
///   that only the cancellation of the calling thread leaves `Std_entry`.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "velmora/handles.h"
#include "velmora/info.h"
#include "velmora/register_info.h"
#include "velmora/status.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Flags of `Std_entry`; the others are the runtime's.
enum VelmoraStartFlag {
  VELMORA_LEAVE_DESIGN = 1  ///< No defaults are written: the design keeps what it has.
};

/// Creates an applet instance: opens the acquisition runtime `libvorn5.so`, loads the design (the
/// embedded image, or the file "Velmora.hap" when the environment variable
/// "__KORV_FORCE_EXTERNAL_HAP" exists and the process runs with the rights of its user), creates
/// the runtime's handle on it and writes the defaults.
/// @param device the host's board device; passed on, never looked into.
/// @param error receives 0, -2031 (no usable runtime), -100 (no design) or the runtime's code; may
///        be null.
/// @param flags handed to the runtime; the applet itself reads `VELMORA_LEAVE_DESIGN` only.
/// @return the instance, to be stored as the first word of an `Fg_Struct` and released with
///         `Fg_FreeGrabber`; null on failure, with nothing left behind.
void* Std_entry(KTdevice* device, int* error, int flags);

/// Releases the runtime's handle and the instance, unloads the design and clears the first word of
/// `fg`. Invalidates every node, name and string that the instance handed out.
/// When the runtime throws instead, nothing is released and the call can be repeated.
/// @return the runtime's result; 0 when it has no such function.
int Fg_FreeGrabber(Fg_Struct* fg);

/// Answers a question about the applet itself; needs no instance.
/// @param property a `VelmoraInfo`; `velmora/info.h` says what each one answers.
/// @param index port of the mapping properties, 0 to 3.
/// @param sub second index of the mapping properties, 0.
/// @param out receives sizes and handles as unsigned 64-bit; holds the name for
///        `VELMORA_INFO_VALUE_OF_NAME`. May be null.
/// @param outPointer receives texts and blocks, which the library owns. May be null.
/// @return the property's result; -2130 for an unknown property; -2070 for an unknown name or port.
int Info(int property, int index, int sub, void* out, void** outPointer);

/// @name Acquisition, forwarded to the runtime's function of the same name
/// Arguments are the runtime's. Failure records the runtime's last error; -12 when the runtime
/// lacks the function.
/// @{
int Fg_getAppletId(Fg_Struct* fg, void* argument);
/// Starts DMA channel `dma` for `pictures` pictures, -1 for no limit; `memory` is the runtime's.
int Fg_AcquireEx(Fg_Struct* fg, uint32_t dma, int64_t pictures, int32_t flags, void* memory);
int Fg_stopAcquireEx(Fg_Struct* fg, uint32_t dma, int64_t memory, int32_t flags);
/// Number of the last picture on channel `dma`, from 1; 0 before the first.
int64_t Fg_getLastPicNumberEx(Fg_Struct* fg, uint32_t dma, int64_t memory);
/// Waits up to `timeout` seconds for picture number `picture`.
int64_t Fg_getLastPicNumberBlockingEx(Fg_Struct* fg, int64_t picture, uint32_t dma, int32_t timeout,
                                      int64_t memory);
/// The state `param` of channel `dma`; `velmora/status.h` has what the virtual board knows.
int64_t Fg_getStatusEx(Fg_Struct* fg, uint32_t param, int64_t data, int32_t dma, void* memory);
/// @}

/// Sets SDK parameter `id` on port `dma` (0 to 3). The stored setting, which a get returns, is all
/// or nothing: a refused set leaves it as it was. Some parameters take several writes to the design
/// (a Bayer order two, a trigger mode up to 20); when one fails, those before it stay done, and
/// setting the same value again completes them.
/// @param value the value in the parameter's own width: 32 bits for integers, 64 for doubles.
/// @param type the caller's `FgParamTypes`; used only for ids that are passed through.
/// @return 0; -2070 null value, unknown id or port; -12 read-only; -6000 out of range; -7080 step;
///         -2075, -2078, -2079, -60, -2140, -2141 as `errors.h` says; else the design's code.
///         Recorded as the last error.
int Fg_setParameterWithType(Fg_Struct* fg, int id, const void* value, unsigned dma, int type);

/// Reads SDK parameter `id` of port `dma` into `value`, which must have room for the parameter: 4
/// bytes, 8 for doubles; for types 3 and 4 the 8 bytes are cleared first. With type 22 the text
/// parameters store a `char*` to be given back with `Fg_freeParameterStringWithType`; with any
/// other type they copy the text; `VELMORA_TEXT_ROOM` bytes are enough. `FG_PARAM_DESCR` takes the
/// name to describe from `value`.
/// @return 0; -2070 null value, unknown id or port; else the design's or runtime's code. Recorded.
int Fg_getParameterWithType(Fg_Struct* fg, int id, void* value, unsigned dma, int type);

/// Releases a string of a type-22 get. `value` is the string itself. Any thread.
/// @return 0; -2078 for a type other than 22; -2070 for a string that was not handed out.
int Fg_freeParameterStringWithType(Fg_Struct* fg, int id, void* value, unsigned dma, int type);

/// Number of listed parameters: 85, plus the direct-access names when enabled.
int Fg_getNrOfParameter(Fg_Struct* fg);
/// Name at `index` (from 0), valid while the instance lives; null and -2070 recorded when there is
/// none.
const char* Fg_getParameterName(Fg_Struct* fg, int index);
/// Id of the parameter at `index`, or -2070 (recorded).
int Fg_getParameterId(Fg_Struct* fg, int index);
/// Id of the parameter called `name` (exact spelling), or -2070 (recorded).
int Fg_getParameterIdByName(Fg_Struct* fg, const char* name);

/// Writes all settings of the four ports to `file`, whose name must contain ".mcf". A file that is
/// there stays until the new content is whole: that is written beside it and takes its place, with
/// the same mode and owner. Links are followed; another hard link keeps the old content. Only where
/// the directory takes no such new file is the old one overwritten.
///
/// A value that cannot be read from the design is left out, which the result does not tell: 0 all
/// the same. A file without one of the values that a load looks for does not load.
/// @return 0; -5001 (recorded) when the file cannot be written, or exists and is no regular file.
int Fg_saveConfig(Fg_Struct* fg, const char* file);
/// Reads a file written by `Fg_saveConfig` and applies it port by port: first all settings of the
/// port except trigger mode and state are stored, then each one is set in the order of the list. A
/// refused value does not end the load: the design keeps what it had, while a get returns the
/// file's value. What was applied before a failure stays.
///
/// Even a good file can have values refused because of what the design held before: the frame rate
/// is checked against the pulse widths and delays in the design, which come later in the list.
/// Loading the file again cures this, since the design then has the file's widths and delays.
/// @return 0; -2076 (and -5000 recorded) when there is no such file; -5000 for another applet's
///         file or a missing key.
int Fg_loadConfig(Fg_Struct* fg, const char* file);

/// Renders the GenApi XML document of `port`. With a null `buffer` only the size is stored.
/// @param size in: bytes at `buffer`; out: bytes needed, terminating zero included. Unchanged on
///        failure.
/// @return 0; -500 buffer too small or null `size`; -501 out of memory; -2075 no such port.
///         Recorded.
int Fg_getParameterInfoXML(Fg_Struct* fg, int port, char* buffer, size_t* size);
/// First root group of `port`'s description forest, owned by the instance; null when there is no
/// such port.
struct RegisterInfo* Fg_getParameterInfo(Fg_Struct* fg, int port);

/// @name Events
/// The applet knows what the events of the design are called and in which bit of a mask each one
/// is. The events themselves come from whoever drives the board: the virtual board records those of
/// a mask after `VirtualBoard_enableEvents`, and `VirtualBoard_takeEvent` waits for them.
/// @{

/// Mask of the event called `name`; 0 and -2070 recorded when there is none.
uint64_t Fg_getEventMask(Fg_Struct* fg, const char* name);
/// Name of the event with exactly this mask, valid while the instance lives; null and -2070
/// recorded when there is none.
const char* Fg_getEventName(Fg_Struct* fg, uint64_t mask);
/// @}

/// Result recorded by the latest call that records one.
int Fg_getLastErrorNumber(Fg_Struct* fg);

/// @name Shading, which this applet does not offer: -2130, or a null object
/// @{
ShadingMaster* Fg_AllocShading(Fg_Struct* fg, int a, int b);
int Fg_FreeShading(Fg_Struct* fg, ShadingMaster* shading);
int Shad_SetSubValueLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, float value);
int Shad_SetMultValueLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel, float value);
int Shad_SetFixedPatternNoiseLine(Fg_Struct* fg, ShadingMaster* shading, int x, int channel,
                                  int enable);
int Shad_GetMaxLine(Fg_Struct* fg, ShadingMaster* shading);
int Shad_GetAccess(Fg_Struct* fg, ShadingMaster* shading);
int Shad_FreeAccess(Fg_Struct* fg, ShadingMaster* shading);
int Shad_WriteActLine(Fg_Struct* fg, ShadingMaster* shading, int line);
/// @}

/// Creates a file with a unique name, open for reading and writing, mode 0600.
/// @param nameTemplate ends in "XXXXXX" and a suffix; receives the name, or becomes empty when no
///        file could be created.
/// @param suffixLength characters after "XXXXXX".
/// @return the file's descriptor; -1 on failure.
int mkstemps(char* nameTemplate, int suffixLength);

#ifdef __cplusplus
}
#endif
