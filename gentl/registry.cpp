#include "gentl/registry.h"

#include <bit>

namespace gentl {

Registry& Registry::instance() {
  static Registry registry;
  return registry;
}

void* Registry::add(const std::shared_ptr<Object>& object) {
  const std::lock_guard guard(mutex_);
  live_.emplace(last_ += 16, object);
  return object->handle = std::bit_cast<void*>(last_);
}

void Registry::remove(const Object& object) {
  std::shared_ptr<Object> gone;  // Let go after the lock.
  const std::lock_guard guard(mutex_);
  const auto found = live_.find(reinterpret_cast<std::uintptr_t>(object.handle));
  if (found == live_.end()) return;
  gone = std::move(found->second);
  live_.erase(found);
}

void Registry::setOpen(bool open) {
  const std::lock_guard guard(mutex_);
  require(!open || !open_, GC_ERR_RESOURCE_IN_USE, "the library is initialised");
  require(open || open_, GC_ERR_NOT_INITIALIZED, "the library is not initialised");
  open_ = open;
}

void Registry::requireOpen() {
  const std::lock_guard guard(mutex_);
  require(open_, GC_ERR_NOT_INITIALIZED, "the library is not initialised");
}

std::shared_ptr<Object> Registry::object(const void* handle) {
  const std::lock_guard guard(mutex_);
  const auto found = live_.find(reinterpret_cast<std::uintptr_t>(handle));
  return found == live_.end() ? nullptr : found->second;
}

}  // namespace gentl
