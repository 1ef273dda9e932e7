/// The control side of the virtual board in C++: `velmora/virtual_board.h`, which describes it,
/// with strings, functions and exceptions for tests and tools.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "board/access.h"
#include "velmora/errors.h"
#include "velmora/virtual_board.h"

namespace board {
namespace internal {

inline void checkMemory(int code) {
  if (code == VELMORA_OUT_OF_MEMORY) throw std::bad_alloc();
}

/// Throws for a name or channel that there is not.
inline void checkValue(int code, const std::string& name) {
  checkMemory(code);
  if (code != VELMORA_OK) throw std::out_of_range(name + ": " + VirtualBoard_errorText(code));
}

inline Access ownedBy(const VirtualBoardAccess& access) {
  return {static_cast<AccessKind>(access.kind),
          access.name,
          access.dma,
          access.value,
          access.result,
          access.failed != 0};
}

/// As the context of C functions; the board releases it.
template <class T>
void* handOver(T object) {
  return new T(std::move(object));
}
template <class T>
void release(void* context) {
  delete static_cast<T*>(context);
}

struct Clock {
  std::function<std::chrono::nanoseconds()> now;
  std::function<void(std::chrono::nanoseconds)> sleep;
};
using Observer = std::function<void(const Access&)>;

}  // namespace internal

inline void setValue(KTdevice* device, const std::string& name, unsigned dma, double value) {
  internal::checkValue(VirtualBoard_setValue(device, name.c_str(), dma, value), name);
}
inline double value(KTdevice* device, const std::string& name, unsigned dma) {
  double number = 0;
  internal::checkValue(VirtualBoard_getValue(device, name.c_str(), dma, &number), name);
  return number;
}

using Outstanding = VirtualBoardOutstanding;
inline Outstanding outstanding() { return VirtualBoard_outstanding(); }

inline const char* errorText(int code) { return VirtualBoard_errorText(code); }

/// Empty functions restore the steady clock and real sleep.
inline void setClock(std::function<std::chrono::nanoseconds()> now,
                     std::function<void(std::chrono::nanoseconds)> sleep) {
  using internal::Clock;
  const VirtualBoardNow tell = [](void* clock) -> std::int64_t {
    return static_cast<Clock*>(clock)->now().count();
  };
  const VirtualBoardSleep pause = [](void* clock, std::int64_t time) {
    static_cast<Clock*>(clock)->sleep(std::chrono::nanoseconds(time));
  };
  const bool tells = now != nullptr, pauses = sleep != nullptr;
  internal::checkMemory(VirtualBoard_setClock(
      tells ? tell : nullptr, pauses ? pause : nullptr,
      internal::handOver(Clock{std::move(now), std::move(sleep)}), internal::release<Clock>));
}

inline std::string describe(const Access& access) {
  const auto view = viewOf(access);
  std::size_t size = 0;
  internal::checkMemory(VirtualBoard_describe(&view, nullptr, &size));
  std::string text(size, '\0');
  internal::checkMemory(VirtualBoard_describe(&view, text.data(), &size));
  text.pop_back();  // The zero.
  return text;
}

inline void startJournal() { VirtualBoard_startJournal(); }
inline void stopJournal() { VirtualBoard_stopJournal(); }
inline std::vector<Access> takeJournal() {
  std::vector<Access> journal;
  internal::checkMemory(VirtualBoard_takeJournal(
      [](void* accesses, const VirtualBoardAccess* access) {
        static_cast<std::vector<Access>*>(accesses)->push_back(internal::ownedBy(*access));
      },
      &journal));
  return journal;
}

/// An empty function stops it. What it throws leaves the access. It lacks what there is no memory
/// for: the access is done then, and its result must not get lost.
inline void observe(std::function<void(const Access&)> observer) {
  using internal::Observer;
  if (!observer) {
    VirtualBoard_observe(nullptr, nullptr, nullptr);
    return;
  }
  const VirtualBoardObserver pass = [](void* context, const VirtualBoardAccess* access) {
    std::optional<Access> owned;
    try {
      owned = internal::ownedBy(*access);
    } catch (const std::bad_alloc&) {
      return;
    }
    (*static_cast<Observer*>(context))(*owned);
  };
  internal::checkMemory(VirtualBoard_observe(pass, internal::handOver(std::move(observer)),
                                             internal::release<Observer>));
}

inline void failNamed(const std::string& name, int code, int times = 0) {
  internal::checkMemory(
      VirtualBoard_failNamed(name.c_str(), code, static_cast<std::uint32_t>(std::max(times, 0))));
}
/// A k of 0 is no access.
inline void failAt(unsigned k, int code) {
  internal::checkMemory(VirtualBoard_failAt(VELMORA_COUNT_VALUES, k, code));
}
inline void failAtWrite(unsigned k, int code) {
  internal::checkMemory(VirtualBoard_failAt(VELMORA_COUNT_WRITES, k, code));
}
inline void failAtCall(unsigned k, int code) {
  internal::checkMemory(VirtualBoard_failAt(VELMORA_COUNT_ALL, k, code));
}
inline void clearFaults() { VirtualBoard_clearFaults(); }

}  // namespace board
