/// Locks over POSIX threads and the guards that hold them for a scope. Locks and guards cannot be
/// copied or moved; a guard must not outlive its lock and is destroyed on the thread that made it.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace korv::templates::patterns {

template <class LockPointer>
class Guard;

/// What all guards share: the lock, and whether to release it at the end of the scope. The
/// destructor may throw because guards of a `GenericLock` report misuse.
template <class Lock>
class Guard<Lock*> {
 public:
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;
  virtual ~Guard() noexcept(false) = default;

 protected:
  Guard(Lock* lock, bool held) : lock_(lock), held_(held) {}

  Lock* lock_;
  bool held_;
};

/// A lock together with a mark that guards set while they hold it. The mark turns misuse (leaving a
/// lock that is not held, destroying a held one, entering one again) into `std::logic_error`
/// instead of a deadlock or silent damage.
class GenericLock {
 public:
  GenericLock() = default;
  GenericLock(const GenericLock&) = delete;
  GenericLock& operator=(const GenericLock&) = delete;
  /// Throws `std::logic_error` when the lock is still marked as locked.
  virtual ~GenericLock() noexcept(false);  // NOLINT(bugprone-exception-escape)

  /// Waits for the lock. True when this call took it; false when the lock refused, as a
  /// `CriticalSection` does when the calling thread already holds it.
  virtual bool enter() = 0;
  /// Takes the lock if it is free; never waits. True when this call took it.
  virtual bool tryEnter() = 0;
  /// Releases the lock; to be called by the thread that took it.
  virtual void leave() = 0;

  /// The mark, for guards. Only the thread that holds the lock may look at it or change it.
  bool isMarkedLocked() const { return markedLocked_; }
  void setMarkedLocked(bool marked) { markedLocked_ = marked; }

 private:
  bool markedLocked_ = false;
};

/// Holds a `GenericLock` and its mark for a scope.
class GenericLockGuard : public Guard<GenericLock*> {
 public:
  /// Enters the lock and marks it; throws `std::logic_error` when it is already marked, that is
  /// when another guard of the calling thread holds it. The lock is then as it was before. A hold
  /// that the thread took with `enter` itself passes to the guard.
  explicit GenericLockGuard(GenericLock& lock);
  /// The same with a lock that the guard finally deletes. A lock that is already marked is not
  /// deleted: the guard that holds it still refers to it.
  explicit GenericLockGuard(std::unique_ptr<GenericLock> lock);
  /// Leaves the lock; throws `std::logic_error` when the mark was cleared.
  ~GenericLockGuard() noexcept(false) override;  // NOLINT(bugprone-exception-escape)

 private:
  bool owned_ = false;
};

}  // namespace korv::templates::patterns

namespace korv::templates::platform {

/// Mutex that its holder may lock again.
class RecursiveMutex {
 public:
  RecursiveMutex();
  RecursiveMutex(const RecursiveMutex&) = delete;
  RecursiveMutex& operator=(const RecursiveMutex&) = delete;
  virtual ~RecursiveMutex();

  void lock();
  /// To be called by the holder, once per `lock`.
  void unlock();
  /// How many times the holder has locked the mutex; 0 when it is free. For the holder only.
  std::uint32_t holds() const { return holds_; }

 private:
  pthread_mutex_t mutex_;
  pthread_mutexattr_t attributes_;
  std::uint32_t holds_ = 0;
};

/// Holds a `RecursiveMutex` for a scope.
class RecursiveMutexGuard : public patterns::Guard<RecursiveMutex*> {
 public:
  explicit RecursiveMutexGuard(RecursiveMutex& mutex) : Guard(&mutex, true) { mutex.lock(); }
  ~RecursiveMutexGuard() noexcept override { lock_->unlock(); }
};

/// Lock for one thread at a time that detects re-entry by its holder: `enter` then returns false
/// instead of blocking for ever.
class CriticalSection : public patterns::GenericLock {
 public:
  CriticalSection();
  /// Uses a caller-owned mutex, which must be initialised and outlive this object. Re-entry is
  /// detected only if it is of the error-checking type.
  explicit CriticalSection(pthread_mutex_t& mutex) : foreign_(true), mutex_(&mutex) {}
  ~CriticalSection() noexcept(false) override;

  bool enter() override;
  bool tryEnter() override;
  void leave() override;

 private:
  bool foreign_ = false;
  pthread_mutex_t* mutex_ = &own_;
  pthread_mutex_t own_;
};

/// Holds a `CriticalSection` for a scope; entry and exit as for a `GenericLockGuard`.
class CriticalSectionGuard : public patterns::GenericLockGuard {
 public:
  explicit CriticalSectionGuard(CriticalSection& lock) : GenericLockGuard(lock) {}
};

/// Lock that many readers or one writer of this process may hold.
class ReadWriteLock {
 public:
  ReadWriteLock();
  ReadWriteLock(const ReadWriteLock&) = delete;
  ReadWriteLock& operator=(const ReadWriteLock&) = delete;
  virtual ~ReadWriteLock();

  void lockRead();
  void lockWrite();
  /// Releases what the calling thread took last.
  void unlock();

 private:
  pthread_rwlock_t lock_;
};

/// Holds a `ReadWriteLock` for a scope.
class ReadWriteLockGuard : public patterns::Guard<ReadWriteLock*> {
 public:
  enum class Access { kRead, kWrite };

  ReadWriteLockGuard(ReadWriteLock& lock, Access access);
  ~ReadWriteLockGuard() noexcept override { lock_->unlock(); }
};

/// Holds a spin flag (0 free, 1 taken) for a scope. Flags are plain atomics, so a lock can exist
/// before any constructor of the process has run.
class SpinLockVariableGuard {
 public:
  /// Waits until the flag is free, yielding the processor between tries. With an `owner` (0 when
  /// there is none), a thread that already holds the flag passes without taking it again.
  explicit SpinLockVariableGuard(std::atomic<std::uint32_t>& flag,
                                 std::atomic<pthread_t>* owner = nullptr);
  SpinLockVariableGuard(const SpinLockVariableGuard&) = delete;
  SpinLockVariableGuard& operator=(const SpinLockVariableGuard&) = delete;
  virtual ~SpinLockVariableGuard();

  /// False when the thread already held the flag.
  bool held() const { return held_; }

 private:
  std::atomic<std::uint32_t>* flag_;
  std::atomic<pthread_t>* owner_;
  bool held_ = false;
};

}  // namespace korv::templates::platform
