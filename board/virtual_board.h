/// Control side of the virtual board: what a test or a tool uses to own a device, watch every
/// access to it and make accesses fail. The board's libraries (`libvorn5.so`, `libdervin.so`,
/// `libkorv_hw.so`) work on the same model.
///
/// The journal and the faults are process-wide and may be used from any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "velmora/handles.h"

#pragma GCC visibility push(default)

namespace board {

/// Creates a board device; destroy it with `destroyDevice` after every handle on it was released.
/// The first inner handle gives it the registers and parameters of that handle's design, at 0 or at
/// the initial values that the manifest names. They keep their values from handle to handle until a
/// design of other content is loaded, which starts anew.
KTdevice* createDevice();
void destroyDevice(KTdevice* device);

/// What a device's register or parameter holds, by name, without leaving a trace in the journal:
/// the way to play the hardware's side (status words, counters, overflow) and to look at the result
/// of writes. `dma` (0 to 3) is ignored for registers and for shared parameters. The runtime's own
/// parameters are known too, as "FG_TIMEOUT" or "FG_CAMSTATUS_EXTENDED"; one that was set here
/// keeps the value instead of the one that follows from the device's state. Unknown names, and all
/// names before the first inner handle, throw `std::out_of_range`.
void setValue(KTdevice* device, const std::string& name, unsigned dma, double value);
double value(KTdevice* device, const std::string& name, unsigned dma);

/// Inner handles, designs and strings (type 22) that were handed out and not given back; 0 when
/// nothing leaked.
struct Outstanding {
  int handles = 0;
  int designs = 0;
  int strings = 0;
};
Outstanding outstanding();

/// What `Fg_getStatusEx` is asked for with `param`.
enum ChannelStatus : std::uint32_t {
  kGrabbedPictures = 1,  ///< Number of the last picture, 0 before the first start.
  kLostPictures = 2,     ///< Always 0: nothing gets lost here.
  kAcquiring = 3         ///< 1 while pictures are still to come on a started channel.
};

/// What an error code of the board's libraries means; empty for any other code.
const char* errorText(int code);

/// The time that pictures are counted and timeouts measured by. Empty functions stand for the
/// steady clock and for sleeping; a test's `sleep` lets its own time go on. Neither may use the
/// board.
void setClock(std::function<std::chrono::nanoseconds()> now,
              std::function<void(std::chrono::nanoseconds)> sleep);

enum class AccessKind {
  kSet,  ///< design or runtime parameter written
  kGet,  ///< design or runtime parameter read
  kRegisterWrite,
  kRegisterRead,
  kCall,  ///< any other function of the board's libraries; `name` is the function's
};

/// One access to the board, in the order they happened.
struct Access {
  AccessKind kind;
  std::string name;   ///< parameter, register or function name; "#<id>" for an unknown id
  int dma = -1;       ///< DMA index as passed; -1 where the call has none
  std::string value;  ///< value written or read (decimal, doubles in shortest form), or arguments
  std::int64_t result =
      0;  ///< what the access returned (0 for a non-null pointer, -1 for a null one)
};

/// One line, such as "set Device1_Process1_Buffer_XLength[1] = 1000", "get NAME[0] -> 5",
/// "write CamGenWidth0 = 1024", "read NAME -> 3", "call Fg_AcquireEx(dma 0, 10 pictures)"; a failed
/// access ends in " failed: -2080", a call that returns a null pointer in " -> null".
std::string describe(const Access& access);

/// The journal records nothing until it is started. Starting clears it.
void startJournal();
void stopJournal();
/// The accesses since the start or the last take, leaving the journal empty and running.
std::vector<Access> takeJournal();
/// Calls `observer` for every access, on the accessing thread, before its result is returned,
/// without any board lock held. An empty function ends it.
void observe(std::function<void(const Access&)> observer);

/// Makes the accesses of this name (parameter, register or function name as in the journal) return
/// `code` without any effect, `times` times, or until `clearFaults` when 0. Functions that return a
/// pointer return null, and `code` becomes the last error.
void failNamed(const std::string& name, int code, int times = 0);
/// Makes the k-th parameter or register access from now (k from 1; `kCall` accesses do not count)
/// return `code` without any effect.
void failAt(unsigned k, int code);
/// Like `failAt`, counting writes (`kSet`, `kRegisterWrite`) only.
void failAtWrite(unsigned k, int code);
void clearFaults();

}  // namespace board

#pragma GCC visibility pop
