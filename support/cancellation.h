#pragma once

#include <exception>

namespace velmora {

/// To be called first in a `catch (...)`: goes on with the cancellation of the thread, which no
/// handler may end. It comes as an unwinding without a C++ exception.
inline void rethrowCancellation() {
  if (!std::current_exception()) throw;
}

}  // namespace velmora
