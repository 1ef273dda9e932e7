/// How each call of the board's libraries passes through the journal, the observer and the faults
/// of the control side.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "board/access.h"

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

// For the control side, and so not visible to the other libraries.
namespace board {

void startJournal();
void stopJournal();
/// Lets `use` read and change the journal, under a lock.
void withJournal(const std::function<void(std::vector<Access>&)>& use);

struct Observer {
  VirtualBoardObserver call = nullptr;  ///< Null for none.
  std::shared_ptr<void> context;
};
void observe(Observer observer);

/// What the functions of the control side do, with valid arguments.
void failNamed(const std::string& name, int code, unsigned times);
void failAt(VirtualBoardCounted counted, unsigned k, int code);
void clearFaults();

/// The line of an access; empty for one of an unknown kind.
std::string describe(const VirtualBoardAccess& access);

}  // namespace board
