/// Process-wide objects that are created on first use, from any thread, and destroyed when the
/// process ends or the library is unloaded.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>

#include "support/locks.h"

namespace korv::templates::patterns {

/// Keeps the list of all singletons, newest first, and destroys them in that order at exit.
class GuardedSingletonBase {
 public:
  GuardedSingletonBase(const GuardedSingletonBase&) = delete;
  GuardedSingletonBase& operator=(const GuardedSingletonBase&) = delete;
  virtual ~GuardedSingletonBase() = default;

 protected:
  GuardedSingletonBase() = default;

  /// Adds `singleton` to the list, to be destroyed at exit.
  static void record(GuardedSingletonBase* singleton);
  /// Arranges for the list to be destroyed at exit, once. Static objects are destroyed in reverse
  /// order, so whatever a singleton uses must be loaded before this call.
  static void destroyAtExit();
  /// True once the list is being destroyed. Code that still runs then, such as destructors of other
  /// libraries, gets fresh singletons that were not started.
  static bool isOver();

 private:
  class ExitHook;

  virtual void destroy() = 0;

  GuardedSingletonBase* next_ = nullptr;
};

/// Base of the singleton class `T`. `T` needs a default constructor that does not use the singleton
/// and a member `bool start()`, which may use it and returns whether it succeeded; both may be
/// private when this class is a friend.
template <class T>
class GuardedSingleton : public GuardedSingletonBase {
 public:
  /// The one instance, in static memory. It is created and started on the first call, while other
  /// threads wait; calls that its start makes on the same thread get the instance as it is. So do
  /// callers when the start fails; the next call tries again.
  static T& instance() {
    T* ready = ready_.load(std::memory_order_acquire);
    return ready ? *ready : create();
  }

 protected:
  GuardedSingleton() = default;

 private:
  static T& create() {
    alignas(T) static std::byte memory[sizeof(T)];
    const platform::SpinLockVariableGuard guard(flag_, &owner_);
    if (!slot_) record(slot_ = new (memory) T);
    // A guard that does not hold the flag means a call from within the start.
    if (guard.held() && !ready_.load(std::memory_order_relaxed) && (isOver() || slot_->start())) {
      destroyAtExit();
      ready_.store(slot_, std::memory_order_release);
    }
    return *slot_;
  }

  void destroy() override {
    const platform::SpinLockVariableGuard guard(flag_, &owner_);
    slot_->~T();
    ready_.store(nullptr, std::memory_order_release);
    slot_ = nullptr;
  }

  // Constant-initialised, so that an instance is available at any time in the process.
  inline static std::atomic<std::uint32_t> flag_{0};
  inline static std::atomic<pthread_t> owner_{0};
  inline static T* slot_ = nullptr;
  inline static std::atomic<T*> ready_{nullptr};
};

}  // namespace korv::templates::patterns
