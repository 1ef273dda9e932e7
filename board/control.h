/// The virtual board: a model of a frame grabber, and stand-ins for the libraries that drive one
/// (`libvorn5.so`, `libdervin.so`, `libkorv_hw.so`), so that applets run without hardware.
///
/// `velmora/virtual_board.h` is the control side in C. This header adds what a test or a tool in
/// C++ watches every access with, and makes accesses fail with. The journal and the faults are
/// process-wide and may be used from any thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "velmora/virtual_board.h"

#pragma GCC visibility push(default)

namespace board {

/// Sets or returns the value of a register or parameter by name, without a journal entry: to play
/// the hardware's part (status words, counters, overflow) and to check what was written. The
/// channel `dma` has no influence on registers and shared parameters. The runtime's own parameters
/// have names such as "FG_TIMEOUT" or "FG_CAMSTATUS_EXTENDED"; once set here, one keeps that value
/// instead of following the device's state. So does a status of the trigger block, until a host
/// clears it. Unknown names and channels, and all names before the first inner handle, throw
/// `std::out_of_range`.
void setValue(KTdevice* device, const std::string& name, unsigned dma, double value);
double value(KTdevice* device, const std::string& name, unsigned dma);

/// Inner handles, designs, strings (type 22) and picture memories that were handed out and not
/// given back; all 0 when nothing leaked.
struct Outstanding {
  int handles = 0;
  int designs = 0;
  int strings = 0;
  int memories = 0;
};
Outstanding outstanding();

/// What an error code of the board's libraries means; empty for any other code.
const char* errorText(int code);

/// Replaces the clock that counts pictures and measures timeouts. Empty functions restore the
/// steady clock and real sleep; a test's `sleep` advances its own time. Neither may use the board.
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
      0;                ///< what the access returned (0 for a non-null pointer, -1 for a null one)
  bool failed = false;  ///< whether a fault took its place or the result is an error
};

/// One line, such as "set Device1_Process1_Buffer_XLength[1] = 1000", "get NAME[0] -> 5",
/// "write CamGenWidth0 = 1024", "read NAME -> 3", "call Fg_AcquireEx(dma 0, 10 pictures)"; a failed
/// access ends in " failed: -2080", a call that returns a null pointer in " -> null".
std::string describe(const Access& access);

/// The journal records nothing until it is started. Starting clears it.
void startJournal();
void stopJournal();
/// Returns the accesses since the start or the last take. The journal goes on, empty.
std::vector<Access> takeJournal();
/// Calls `observer` for every access, on the accessing thread, before its result is returned,
/// without any board lock held. An empty function stops it.
void observe(std::function<void(const Access&)> observer);

/// Makes the accesses of this name (parameter, register or function name as in the journal) fail:
/// return `code`, negative or positive, without any effect, `times` times, or until `clearFaults`
/// when 0. Functions that return a pointer return null, and `code` becomes the last error.
void failNamed(const std::string& name, int code, int times = 0);
/// Makes the k-th parameter or register access from now (k from 1; `kCall` accesses do not count)
/// return `code` without any effect.
void failAt(unsigned k, int code);
/// Like `failAt`, counting writes (`kSet`, `kRegisterWrite`) only.
void failAtWrite(unsigned k, int code);
/// Like `failAt`, counting every access, of whatever kind; of a function that returns a pointer as
/// with `failNamed`.
void failAtCall(unsigned k, int code);
void clearFaults();

}  // namespace board

#pragma GCC visibility pop
