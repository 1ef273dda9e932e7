#include "support/logging.h"

#include <dlfcn.h>

#include "external/release.h"

namespace korv::tools::logging {

using templates::platform::ReadWriteLockGuard;
using templates::platform::RecursiveMutexGuard;

bool Logger::isEnabled(int level) {
  if (level < threshold_.load(std::memory_order_relaxed)) return false;
  const RecursiveMutexGuard guard(mutex_);
  return !mutedThreads_.contains(pthread_self());
}

void Logger::log(int level, const char* text, int argument, std::uint64_t data) {
  Logging::instance().send(handle_, level, text, argument, data);
}

bool Logger::setThreadEnabled(bool enabled) {
  const RecursiveMutexGuard guard(mutex_);
  const pthread_t self = pthread_self();
  return enabled ? mutedThreads_.erase(self) == 0 : mutedThreads_.insert(self).second;
}

Logger* Logging::getLogger(const char* name) { return instance().find(name); }

bool Logging::start() {
  const bool attached = attempt([this] { attach(); });
  if (!attached) descriptor_ = nullptr;  // Half attached is not attached.
  return attached;
}

void Logging::attach() {
  library_ = openDispatcherLibrary();
  if (!library_) return;
  const auto* descriptor = static_cast<const LoggingDispatcherDescriptor*>(
      dlsym(library_->handle, "logging_dispatcher_descriptor"));
  // Without the register function there is nothing to call.
  if (!descriptor || !descriptor->registerLogging) {
    library_.reset();
    return;
  }
  // Set before the call, so that a dispatcher that detaches from within it stays detached.
  descriptor_ = descriptor;
  descriptor->registerLogging(this, &Logging::detach, &Logging::setLevel, &getLogger_, &log_);
}

Logging::~Logging() {
  {
    const ReadWriteLockGuard guard(loggersLock_, ReadWriteLockGuard::Access::kWrite);
    loggers_.clear();
  }
  const LoggingDispatcherDescriptor* descriptor = descriptor_.exchange(nullptr);
  if (descriptor && descriptor->unregisterLogging)
    velmora::releaseQuietly([&] { descriptor->unregisterLogging(this); });
}

Logger* Logging::find(const char* name) {
  if (!descriptor_.load() || !getLogger_) return &defaultLogger_;
  Logger* found = &defaultLogger_;
  attempt([&] {
    std::uint64_t handle = 0;
    std::int32_t level = kDefaultThreshold;
    getLogger_(name, &handle, &level);
    const ReadWriteLockGuard guard(loggersLock_, ReadWriteLockGuard::Access::kWrite);
    found = &loggers_.try_emplace(handle, handle, level).first->second;
  });
  return found;
}

void Logging::send(std::uint64_t handle, int level, const char* text, int argument,
                   std::uint64_t data) {
  if (descriptor_.load() && log_) attempt([&] { log_(handle, level, text, argument, data); });
}

void* Logging::detach() {
  Logging& logging = instance();
  logging.descriptor_ = nullptr;
  return &logging;
}

void Logging::setLevel(std::uint64_t handle, std::int32_t level) {
  Logging& logging = instance();
  const ReadWriteLockGuard guard(logging.loggersLock_, ReadWriteLockGuard::Access::kRead);
  if (const auto found = logging.loggers_.find(handle); found != logging.loggers_.end()) {
    found->second.setLevel(level);
  }
}

std::string messagePrefix() {
  return "thread-id=" + std::to_string(static_cast<unsigned long>(pthread_self())) + '|';
}

}  // namespace korv::tools::logging
