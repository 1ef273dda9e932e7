/// How something is given back to an outside library.
#pragma once

#include <pthread.h>

namespace velmora {

/// Releases where neither an exception nor the cancellation of the thread may get out, as in
/// destructors: what the library throws is dropped, a cancellation waits.
template <class Release>
void releaseQuietly(const Release& release) noexcept {
  int state = PTHREAD_CANCEL_ENABLE;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
  try {
    release();
  } catch (...) {
    // There is nobody left to tell.
  }
  pthread_setcancelstate(state, nullptr);
}

}  // namespace velmora
