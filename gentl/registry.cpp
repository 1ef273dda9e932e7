#include "gentl/registry.h"

#include <bit>

namespace gentl {

Registry& Registry::instance() {
  static Registry registry;
  return registry;
}

void* Registry::add(const std::shared_ptr<Object>& object) {
  const std::lock_guard guard(mutex_);
  object->handle = std::bit_cast<void*>(last_ += 16);
  live_.emplace(object->handle, object);
  return object->handle;
}

void Registry::remove(const Object& object) {
  std::shared_ptr<Object> gone;  // Let go after the lock.
  const std::lock_guard guard(mutex_);
  if (auto node = live_.extract(object.handle)) gone = std::move(node.mapped());
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
  require(open_, GC_ERR_NOT_INITIALIZED, "the library is not initialised");
  const auto found = live_.find(handle);
  return found == live_.end() ? nullptr : found->second;
}

}  // namespace gentl
