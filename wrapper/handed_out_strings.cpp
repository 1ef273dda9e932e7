#include "wrapper/handed_out_strings.h"

#include <utility>

namespace velmora {

char* HandedOutStrings::handOut(std::string_view text) {
  auto copy = std::make_unique<char[]>(text.size() + 1);
  text.copy(copy.get(), text.size());
  char* const handed = copy.get();
  const std::lock_guard guard(mutex_);
  strings_.emplace(handed, std::move(copy));
  return handed;
}

bool HandedOutStrings::takeBack(const void* handed) {
  const std::lock_guard guard(mutex_);
  return strings_.erase(handed) != 0;
}

}  // namespace velmora
