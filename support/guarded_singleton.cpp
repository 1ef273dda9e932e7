#include "support/guarded_singleton.h"

#include <utility>

namespace korv::templates::patterns {

namespace {

std::atomic<std::uint32_t> listFlag{0};
std::atomic<pthread_t> listOwner{0};
GuardedSingletonBase* newest = nullptr;
std::atomic<bool> over{false};

}  // namespace

class GuardedSingletonBase::ExitHook {
 public:
  ~ExitHook() {
    over = true;
    while (GuardedSingletonBase* singleton = takeNewest()) singleton->destroy();
  }

 private:
  static GuardedSingletonBase* takeNewest() {
    const platform::SpinLockVariableGuard guard(listFlag, &listOwner);
    return newest ? std::exchange(newest, newest->next_) : nullptr;
  }
};

void GuardedSingletonBase::record(GuardedSingletonBase* singleton) {
  const platform::SpinLockVariableGuard guard(listFlag, &listOwner);
  singleton->next_ = std::exchange(newest, singleton);
}

void GuardedSingletonBase::destroyAtExit() { static const ExitHook hook; }

bool GuardedSingletonBase::isOver() { return over; }

}  // namespace korv::templates::patterns
