#include "board/model/watch.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <string_view>

#include "board/model/immortal.h"

namespace board {

std::atomic<bool> watching{false};
std::atomic<int> errorWithoutHandle{0};

namespace {

constexpr std::string_view kErrorQuery = "Fg_getLastErrorNumber";  ///< Returns codes, never fails.

struct NamedFault {
  std::string name;
  int code;
  unsigned timesLeft;  ///< 0: no limit.
};

struct CountedFault {
  unsigned accessesLeft;
  int code;
  VirtualBoardCounted counted;
};

struct Watcher {
  std::mutex mutex;
  bool journaling = false;
  std::vector<Access> journal;
  Observer observer;
  std::vector<NamedFault> named;
  std::vector<CountedFault> counted;

  /// To be called after every change, with the mutex held.
  void updateWatching() const {
    watching = journaling || observer.call || !named.empty() || !counted.empty();
  }
};

Watcher& watcher() { return immortal<Watcher>(); }

template <class Change>
void change(Change apply) {
  auto& watch = watcher();
  const std::lock_guard guard(watch.mutex);
  apply(watch);
  watch.updateWatching();
}

bool counts(VirtualBoardCounted counted, AccessKind kind) {
  if (counted == VELMORA_COUNT_ALL) return true;
  if (counted == VELMORA_COUNT_VALUES) return kind != AccessKind::kCall;
  return kind == AccessKind::kSet || kind == AccessKind::kRegisterWrite;
}

std::optional<int> takeNamed(Watcher& watch, const std::string& name) {
  const auto fault = std::find_if(watch.named.begin(), watch.named.end(),
                                  [&](const NamedFault& f) { return f.name == name; });
  if (fault == watch.named.end()) return std::nullopt;
  const int code = fault->code;
  if (fault->timesLeft > 0 && --fault->timesLeft == 0) watch.named.erase(fault);
  return code;
}

std::optional<int> takeCounted(Watcher& watch, AccessKind kind) {
  std::optional<int> code;
  std::erase_if(watch.counted, [&](CountedFault& fault) {
    if (!counts(fault.counted, kind)) return false;
    if (--fault.accessesLeft > 0) return false;
    code = fault.code;
    return true;
  });
  return code;
}

}  // namespace

std::optional<int> takeFault(const Access& access) {
  std::optional<int> code;
  change([&](Watcher& watch) {
    code = takeCounted(watch, access.kind);
    if (const auto named = takeNamed(watch, access.name)) code = named;
  });
  return code;
}

void report(const Access& access) {
  Observer observer;
  {
    auto& watch = watcher();
    const std::lock_guard guard(watch.mutex);
    observer = watch.observer;
    try {
      if (watch.journaling) watch.journal.push_back(access);
    } catch (const std::bad_alloc&) {
      // The caller must get what the access returned.
    }
  }
  if (!observer.call) return;
  const auto view = viewOf(access);
  observer.call(observer.context.get(), &view);
}

void startJournal() {
  change([](Watcher& watch) {
    watch.journal.clear();
    watch.journaling = true;
  });
}

void stopJournal() {
  change([](Watcher& watch) { watch.journaling = false; });
}

void withJournal(const std::function<void(std::vector<Access>&)>& use) {
  const std::lock_guard guard(watcher().mutex);
  use(watcher().journal);
}

void observe(Observer observer) {
  if (!observer.call) observer.context.reset();
  // The old context is released without the lock.
  change([&](Watcher& watch) { std::swap(watch.observer, observer); });
}

void failNamed(const std::string& name, int code, unsigned times) {
  NamedFault added{name, code, times};
  change([&](Watcher& watch) {
    watch.named.reserve(watch.named.size() + 1);  // A failure changes nothing.
    std::erase_if(watch.named, [&](const NamedFault& fault) { return fault.name == name; });
    watch.named.push_back(std::move(added));
  });
}

void failAt(VirtualBoardCounted counted, unsigned k, int code) {
  change([&](Watcher& watch) { watch.counted.push_back({k, code, counted}); });
}

void clearFaults() {
  change([](Watcher& watch) {
    watch.named.clear();
    watch.counted.clear();
  });
}

std::string describe(const VirtualBoardAccess& access) {
  const std::string channel = access.dma >= 0 ? fmt::format("[{}]", access.dma) : std::string();
  std::string text;
  switch (access.kind) {
    case VELMORA_ACCESS_SET:
      text = fmt::format("set {}{} = {}", access.name, channel, access.value);
      break;
    case VELMORA_ACCESS_REGISTER_WRITE:
      text = fmt::format("write {} = {}", access.name, access.value);
      break;
    case VELMORA_ACCESS_GET:
      text = fmt::format("get {}{}", access.name, channel);
      if (!access.failed) text += fmt::format(" -> {}", access.value);
      break;
    case VELMORA_ACCESS_REGISTER_READ:
      text = fmt::format("read {}", access.name);
      if (!access.failed) text += fmt::format(" -> {}", access.value);
      break;
    case VELMORA_ACCESS_CALL:
      text = fmt::format("call {}({})", access.name, access.value);
      if (access.result == -1) return text + " -> null";
      if ((access.result > 0 && !access.failed) || access.name == kErrorQuery) {
        return text + fmt::format(" -> {}", access.result);
      }
      break;
    default:
      return text;
  }
  return access.failed ? text + fmt::format(" failed: {}", access.result) : text;
}

}  // namespace board
