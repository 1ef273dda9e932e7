/// Lets a test step in when its thread takes memory. Replaces `operator new` and `dlopen` of the
/// test program, since the loader takes memory as well.
#pragma once

#include <functional>

namespace fakes {

/// Calls `step` once, before the next allocation of this thread. The allocation fails with the
/// `std::bad_alloc` that `step` throws.
class AllocationHook {
 public:
  explicit AllocationHook(std::function<void()> step);
  ~AllocationHook();
  /// Prepares another call; `step` may use it.
  void again();

 private:
  std::function<void()> step_;
};

/// Lets the allocation of this thread fail that follows so many others.
class FailingAllocation : public AllocationHook {
 public:
  explicit FailingAllocation(unsigned others);
  /// Whether one failed.
  bool met() const { return met_; }

 private:
  unsigned others_;
  bool met_ = false;
};

}  // namespace fakes
