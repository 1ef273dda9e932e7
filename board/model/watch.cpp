#include "board/model/watch.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <string_view>

namespace board {

std::atomic<bool> watching{false};
std::atomic<int> errorWithoutHandle{0};

namespace {

constexpr std::string_view kErrorQuery = "Fg_getLastErrorNumber";  ///< Returns codes, never fails.

struct NamedFault {
  std::string name;
  int code;
  int timesLeft;  ///< 0: no limit.
};

/// What a counted fault counts.
enum class Counted { kWrites, kValues, kAll };

struct CountedFault {
  unsigned accessesLeft;
  int code;
  Counted counted;
};

using Observer = std::function<void(const Access&)>;

struct Watcher {
  std::mutex mutex;
  bool journaling = false;
  std::vector<Access> journal;
  std::shared_ptr<const Observer> observer;
  std::vector<NamedFault> named;
  std::vector<CountedFault> counted;

  /// To be called after every change, with the mutex held.
  void updateWatching() const {
    watching = journaling || observer || !named.empty() || !counted.empty();
  }
};

/// Never destroyed: accesses may come while the process exits.
Watcher& watcher() {
  static Watcher& instance = *new Watcher;
  return instance;
}

template <class Change>
void change(Change apply) {
  auto& watch = watcher();
  const std::lock_guard guard(watch.mutex);
  apply(watch);
  watch.updateWatching();
}

bool counts(Counted counted, AccessKind kind) {
  if (counted == Counted::kAll) return true;
  if (counted == Counted::kValues) return kind != AccessKind::kCall;
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

void failCounted(unsigned k, int code, Counted counted) {
  if (k == 0) return;
  change([&](Watcher& watch) { watch.counted.push_back({k, code, counted}); });
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
  std::shared_ptr<const Observer> observer;
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
  if (observer) (*observer)(access);
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

std::vector<Access> takeJournal() {
  const std::lock_guard guard(watcher().mutex);
  return std::exchange(watcher().journal, {});
}

void observe(Observer observer) {
  change([&](Watcher& watch) {
    watch.observer = observer ? std::make_shared<const Observer>(std::move(observer)) : nullptr;
  });
}

void failNamed(const std::string& name, int code, int times) {
  change([&](Watcher& watch) {
    std::erase_if(watch.named, [&](const NamedFault& fault) { return fault.name == name; });
    watch.named.push_back({name, code, std::max(times, 0)});
  });
}

void failAt(unsigned k, int code) { failCounted(k, code, Counted::kValues); }

void failAtWrite(unsigned k, int code) { failCounted(k, code, Counted::kWrites); }

void failAtCall(unsigned k, int code) { failCounted(k, code, Counted::kAll); }

void clearFaults() {
  change([](Watcher& watch) {
    watch.named.clear();
    watch.counted.clear();
  });
}

std::string describe(const Access& access) {
  const std::string channel = access.dma >= 0 ? fmt::format("[{}]", access.dma) : std::string();
  std::string text;
  switch (access.kind) {
    case AccessKind::kSet:
      text = fmt::format("set {}{} = {}", access.name, channel, access.value);
      break;
    case AccessKind::kRegisterWrite:
      text = fmt::format("write {} = {}", access.name, access.value);
      break;
    case AccessKind::kGet:
      text = fmt::format("get {}{}", access.name, channel);
      if (!access.failed) text += " -> " + access.value;
      break;
    case AccessKind::kRegisterRead:
      text = "read " + access.name;
      if (!access.failed) text += " -> " + access.value;
      break;
    case AccessKind::kCall:
      text = fmt::format("call {}({})", access.name, access.value);
      if (access.result == -1) return text + " -> null";
      if ((access.result > 0 && !access.failed) || access.name == kErrorQuery) {
        return text + fmt::format(" -> {}", access.result);
      }
      break;
  }
  return access.failed ? text + fmt::format(" failed: {}", access.result) : text;
}

}  // namespace board
