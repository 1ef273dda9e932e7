/// How calls of the libraries' functions appear in the journal.
#pragma once

#include <fmt/format.h>

#include "board/access.h"

namespace board {

/// Describes a call of `name` with its arguments as text. The result is a function, since only
/// watched accesses need the description.
template <class... Arguments>
auto call(const char* name, fmt::format_string<const Arguments&...> text,
          const Arguments&... arguments) {
  return [=] { return Access{AccessKind::kCall, name, -1, fmt::format(text, arguments...)}; };
}

/// The same for a call on a DMA channel.
template <class... Arguments>
auto callOn(unsigned dma, const char* name, fmt::format_string<const Arguments&...> text,
            const Arguments&... arguments) {
  return [=] {
    return Access{AccessKind::kCall, name, static_cast<int>(dma), fmt::format(text, arguments...)};
  };
}

inline const char* orNull(const char* text) { return text ? text : "null"; }

}  // namespace board
