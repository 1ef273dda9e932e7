#include "board/model/ledger.h"

#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <set>

#include "board/model/immortal.h"

namespace board {
namespace {

struct Ledger {
  std::mutex mutex;
  std::array<std::set<const void*>, static_cast<std::size_t>(HandedOut::kCount)> objects;
  std::map<const char*, std::unique_ptr<char[]>> strings;
};

Ledger& ledger() { return immortal<Ledger>(); }

std::set<const void*>& objectsOf(HandedOut kind) {
  return ledger().objects[static_cast<std::size_t>(kind)];
}

}  // namespace

void handOut(HandedOut kind, const void* object) {
  const std::lock_guard guard(ledger().mutex);
  objectsOf(kind).insert(object);
}

bool giveBack(HandedOut kind, const void* object) {
  const std::lock_guard guard(ledger().mutex);
  return objectsOf(kind).erase(object) != 0;
}

bool isHandedOut(HandedOut kind, const void* object) {
  const std::lock_guard guard(ledger().mutex);
  return objectsOf(kind).contains(object);
}

char* handOutString(std::string_view text) {
  auto copy = std::make_unique<char[]>(text.size() + 1);
  text.copy(copy.get(), text.size());
  char* result = copy.get();
  const std::lock_guard guard(ledger().mutex);
  ledger().strings.emplace(result, std::move(copy));
  return result;
}

bool giveBackString(const char* text) {
  const std::lock_guard guard(ledger().mutex);
  return ledger().strings.erase(text) != 0;
}

VirtualBoardOutstanding outstanding() {
  const std::lock_guard guard(ledger().mutex);
  return {static_cast<int>(objectsOf(HandedOut::kHandle).size()),
          static_cast<int>(objectsOf(HandedOut::kDesign).size()),
          static_cast<int>(ledger().strings.size()),
          static_cast<int>(objectsOf(HandedOut::kMemory).size())};
}

}  // namespace board
