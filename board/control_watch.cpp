/// The control side in C: what replaces the clock, and what accesses pass through.
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "board/guarded.h"
#include "board/model/board_error.h"
#include "board/model/clock.h"
#include "board/model/watch.h"
#include "velmora/virtual_board.h"

namespace board {
namespace {

/// Releases the context with its last copy, and if there is no memory to keep it.
std::shared_ptr<void> owned(void* context, VirtualBoardRelease release) {
  if (release) return {context, release};
  return {std::shared_ptr<void>(), context};
}

/// Stores the size of a text and, unless `place` is null, the text.
int store(const std::string& text, char* place, std::size_t* size) {
  const std::size_t needed = text.size() + 1;
  if (!size || (place && *size < needed)) return VELMORA_BUFFER_TOO_SMALL;
  if (place) std::memcpy(place, text.c_str(), needed);
  *size = needed;
  return kOk;
}

}  // namespace
}  // namespace board

using namespace board;

int VirtualBoard_setClock(VirtualBoardNow now, VirtualBoardSleep sleep, void* context,
                          VirtualBoardRelease release) {
  return guarded([&] {
    setClock({now, sleep, owned(context, release)});
    return int{kOk};
  });
}

int VirtualBoard_describe(const VirtualBoardAccess* access, char* text, std::size_t* size) {
  if (!access || !access->name || !access->value) return kNullValue;
  return guarded([&] {
    const auto line = describe(*access);
    return line.empty() ? int{kBadArgument} : store(line, text, size);
  });
}

void VirtualBoard_startJournal() { startJournal(); }

void VirtualBoard_stopJournal() { stopJournal(); }

int VirtualBoard_takeJournal(VirtualBoardObserver each, void* context) {
  if (!each) return kNullValue;
  return guarded([&] {
    std::vector<Access> taken;
    withJournal([&](auto& journal) { taken.swap(journal); });
    for (const auto& access : taken) {
      const auto view = viewOf(access);
      each(context, &view);
    }
    return int{kOk};
  });
}

int VirtualBoard_takeJournalText(char* text, std::size_t* size) {
  return guarded([&] {
    int code = kOk;
    withJournal([&](auto& journal) {
      std::string lines;
      for (const auto& access : journal) lines += describe(viewOf(access)) + "\n";
      code = store(lines, text, size);
      if (code == kOk && text) journal.clear();
    });
    return code;
  });
}

int VirtualBoard_observe(VirtualBoardObserver observer, void* context,
                         VirtualBoardRelease release) {
  return guarded([&] {
    observe({observer, owned(context, release)});
    return int{kOk};
  });
}

int VirtualBoard_failAt(int counted, std::uint32_t k, int code) {
  if (k == 0 || counted < VELMORA_COUNT_WRITES || counted > VELMORA_COUNT_ALL) return kBadArgument;
  return guarded([&] {
    failAt(static_cast<VirtualBoardCounted>(counted), k, code);
    return int{kOk};
  });
}

int VirtualBoard_failNamed(const char* name, int code, std::uint32_t times) {
  if (!name) return kNullValue;
  return guarded([&] {
    failNamed(name, code, times);
    return int{kOk};
  });
}

void VirtualBoard_clearFaults() { clearFaults(); }
