/// Process-wide objects that are created on first use, from any thread, and destroyed when the
/// process ends or the library is unloaded.
#pragma once

#include <atomic>
#include <cstdint>

#include "support/locks.h"

namespace korv::templates::patterns {

/// Keeps the list of all singletons, newest first, and destroys them in that order at the end.
class GuardedSingletonBase {
 public:
  GuardedSingletonBase(const GuardedSingletonBase&) = delete;
  GuardedSingletonBase& operator=(const GuardedSingletonBase&) = delete;
  virtual ~GuardedSingletonBase() = default;

 protected:
  GuardedSingletonBase() = default;

  /// Puts `singleton` into the list, which owns it from then on.
  static void record(GuardedSingletonBase* singleton);
  /// Arranges the destruction of the list, once. Destructors of the process run in the reverse of
  /// this order, so whatever a singleton uses is to be loaded before the call.
  static void destroyAtExit();
  /// True once the list is being destroyed. Code that still runs then, such as destructors of other
  /// libraries, gets fresh singletons that were not started.
  static bool isOver();

 private:
  class ExitHook;

  GuardedSingletonBase* next_ = nullptr;
};

/// Base of the singleton class `T`. `T` needs a default constructor that does not use the singleton
/// and a member `void start()`, which may; both may be private when this class is a friend.
template <class T>
class GuardedSingleton : public GuardedSingletonBase {
 public:
  /// The one instance. It is created and started on the first call, while other threads wait; calls
  /// that its start makes on the same thread get the instance as it is.
  static T& instance() {
    T* ready = ready_.load(std::memory_order_acquire);
    return ready ? *ready : create();
  }

  ~GuardedSingleton() override {
    const platform::SpinLockVariableGuard guard(flag_, &owner_);
    ready_.store(nullptr, std::memory_order_release);
    slot_ = nullptr;
  }

 protected:
  GuardedSingleton() = default;

 private:
  static T& create() {
    const platform::SpinLockVariableGuard guard(flag_, &owner_);
    if (!slot_) {
      slot_ = new T;
      record(slot_);
      if (!isOver()) {
        slot_->start();
        destroyAtExit();
      }
      ready_.store(slot_, std::memory_order_release);
    }
    return *slot_;
  }

  // Constant-initialised, so that an instance can be asked for at any time of the process.
  inline static std::atomic<std::uint32_t> flag_{0};
  inline static std::atomic<pthread_t> owner_{0};
  inline static T* slot_ = nullptr;
  inline static std::atomic<T*> ready_{nullptr};
};

}  // namespace korv::templates::patterns
