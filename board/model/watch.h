/// How each call of the board's libraries passes through the journal, the observer and the faults
/// of `control.h`.
#pragma once

#include <atomic>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>

#include "board/control.h"

#pragma GCC visibility push(default)

namespace board {

/// Set while there is a journal, an observer or a fault. An unwatched access costs only this check.
extern std::atomic<bool> watching;

/// The code of the fault that hits this access, if any. Uses the fault up.
std::optional<int> takeFault(const Access& access);
/// Hands a finished access to the journal and the observer. The journal lacks what there is no
/// memory for.
void report(const Access& access);
/// Last error of the functions that fail without a handle to record it in.
extern std::atomic<int> errorWithoutHandle;

/// Runs `action` unless a fault takes its place. `describe` describes the access beforehand;
/// `complete` adds what is known only after a success, such as the value read, if there is memory
/// for it: the access is done then, and its result must not get lost.
template <class Describe, class Action, class Complete>
auto watched(Describe describe, Action action, Complete complete) -> decltype(action()) {
  using Result = decltype(action());
  if (!watching.load(std::memory_order_relaxed)) return action();
  Access access = describe();
  const auto fault = takeFault(access);
  Result result{};
  if constexpr (std::is_pointer_v<Result>) {
    if (!fault) result = action();
    if (fault) errorWithoutHandle = *fault;
    access.result = result ? 0 : -1;
    access.failed = !result;
  } else {
    result = fault ? static_cast<Result>(*fault) : action();
    access.result = static_cast<std::int64_t>(result);
    access.failed = fault || result < 0;
  }
  try {
    if (!access.failed) complete(access);
  } catch (const std::bad_alloc&) {
    access.value.clear();
  }
  report(access);
  return result;
}

template <class Describe, class Action>
auto watched(Describe describe, Action action) {
  return watched(std::move(describe), std::move(action), [](Access&) {});
}

}  // namespace board

#pragma GCC visibility pop
