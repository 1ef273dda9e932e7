#include "support/locks.h"

#include <sched.h>

#include <stdexcept>

namespace korv::templates::patterns {

GenericLock::~GenericLock() noexcept(false) {  // NOLINT(bugprone-exception-escape)
  if (markedLocked_) throw std::logic_error("GenericLock object destroyed with lock still held");
}

GenericLockGuard::GenericLockGuard(GenericLock& lock) : Guard(&lock, false) {
  const bool taken = lock_->enter();
  if (lock_->isMarkedLocked()) {
    // The outer holder on this thread still needs the lock; release only what this call took.
    if (taken) lock_->leave();
    throw std::logic_error("GenericLock object got lock but is already marked as locked");
  }
  lock_->setMarkedLocked(true);
  held_ = true;
}

GenericLockGuard::GenericLockGuard(std::unique_ptr<GenericLock> lock)
    : GenericLockGuard(*lock.release()) {
  owned_ = true;
}

GenericLockGuard::~GenericLockGuard() noexcept(false) {  // NOLINT(bugprone-exception-escape)
  const bool unmarked = held_ && !lock_->isMarkedLocked();
  if (held_ && !unmarked) {
    lock_->setMarkedLocked(false);
    lock_->leave();
  }
  if (owned_) delete lock_;
  if (unmarked) throw std::logic_error("GenericLock::leave() called with lock not held");
}

}  // namespace korv::templates::patterns

namespace korv::templates::platform {

RecursiveMutex::RecursiveMutex() {
  pthread_mutexattr_init(&attributes_);
  pthread_mutexattr_settype(&attributes_, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(&mutex_, &attributes_);
}

RecursiveMutex::~RecursiveMutex() {
  pthread_mutex_destroy(&mutex_);
  pthread_mutexattr_destroy(&attributes_);
}

void RecursiveMutex::lock() {
  pthread_mutex_lock(&mutex_);
  ++holds_;
}

void RecursiveMutex::unlock() {
  --holds_;
  pthread_mutex_unlock(&mutex_);
}

CriticalSection::CriticalSection() {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
  pthread_mutex_init(&own_, &attributes);
  pthread_mutexattr_destroy(&attributes);
}

CriticalSection::~CriticalSection() noexcept(false) {
  if (!foreign_) pthread_mutex_destroy(&own_);
}

bool CriticalSection::enter() { return pthread_mutex_lock(mutex_) == 0; }

bool CriticalSection::tryEnter() { return pthread_mutex_trylock(mutex_) == 0; }

void CriticalSection::leave() { pthread_mutex_unlock(mutex_); }

ReadWriteLock::ReadWriteLock() {
  pthread_rwlockattr_t attributes;
  pthread_rwlockattr_init(&attributes);
  pthread_rwlockattr_setpshared(&attributes, PTHREAD_PROCESS_PRIVATE);
  pthread_rwlock_init(&lock_, &attributes);
  pthread_rwlockattr_destroy(&attributes);
}

ReadWriteLock::~ReadWriteLock() { pthread_rwlock_destroy(&lock_); }

void ReadWriteLock::lockRead() { pthread_rwlock_rdlock(&lock_); }

void ReadWriteLock::lockWrite() { pthread_rwlock_wrlock(&lock_); }

void ReadWriteLock::unlock() { pthread_rwlock_unlock(&lock_); }

ReadWriteLockGuard::ReadWriteLockGuard(ReadWriteLock& lock, Access access) : Guard(&lock, true) {
  if (access == Access::kWrite) {
    lock.lockWrite();
  } else {
    lock.lockRead();
  }
}

SpinLockVariableGuard::SpinLockVariableGuard(std::atomic<std::uint32_t>& flag,
                                             std::atomic<pthread_t>* owner)
    : flag_(&flag), owner_(owner) {
  const pthread_t self = pthread_self();
  if (owner_ && owner_->load(std::memory_order_relaxed) == self) return;
  while (flag_->exchange(1, std::memory_order_acquire) != 0) sched_yield();
  if (owner_) owner_->store(self, std::memory_order_relaxed);
  held_ = true;
}

SpinLockVariableGuard::~SpinLockVariableGuard() {
  if (!held_) return;
  if (owner_) owner_->store(0, std::memory_order_relaxed);
  flag_->store(0, std::memory_order_release);
}

}  // namespace korv::templates::platform
