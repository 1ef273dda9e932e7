/// The live handles. A handle is a number that is used once, so that a stale one is never taken for
/// another object.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "gentl/failure.h"

namespace gentl {

/// What a handle can stand for.
class Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  void* handle = nullptr;  ///< Null before it has one.
};

class Registry {
 public:
  static Registry& instance();

  void* add(const std::shared_ptr<Object>& object);
  void remove(const Object& object);
  /// The object of this handle, which lives as long as the caller holds it.
  template <class Kind>
  std::shared_ptr<Kind> find(const void* handle) {
    auto found = std::dynamic_pointer_cast<Kind>(object(handle));
    require(found != nullptr, GC_ERR_INVALID_HANDLE, "no such handle, or one of another kind");
    return found;
  }

  /// Between `GCInitLib` and `GCCloseLib`.
  void setOpen(bool open);
  void requireOpen();

  /// Held by whatever opens or closes modules.
  std::mutex structure;

 private:
  std::shared_ptr<Object> object(const void* handle);

  std::mutex mutex_;
  bool open_ = false;
  std::uintptr_t last_ = 0x1000;
  std::unordered_map<const void*, std::shared_ptr<Object>> live_;
};

}  // namespace gentl
