#include "tests/fakes/allocation_hook.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstdlib>
#include <new>
#include <utility>

namespace fakes {
namespace {

thread_local const std::function<void()>* hook = nullptr;

void beforeAllocation() {
  if (const auto* step = std::exchange(hook, nullptr)) (*step)();
}

}  // namespace

AllocationHook::AllocationHook(std::function<void()> step) : step_(std::move(step)) { again(); }
AllocationHook::~AllocationHook() { hook = nullptr; }
void AllocationHook::again() { hook = &step_; }

FailingAllocation::FailingAllocation(unsigned others)
    : AllocationHook([this] {
        met_ = others_-- == 0;
        if (met_) throw std::bad_alloc();
        again();
      }),
      others_(others) {}

}  // namespace fakes

void* operator new(std::size_t size) {
  fakes::beforeAllocation();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept try {
  return operator new(size);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

extern "C" void* dlopen(const char* file, int mode) noexcept try {
  fakes::beforeAllocation();
  return reinterpret_cast<decltype(&dlopen)>(dlsym(RTLD_NEXT, "dlopen"))(file, mode);
} catch (const std::bad_alloc&) {
  errno = ENOMEM;
  return nullptr;
}
