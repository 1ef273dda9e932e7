#pragma once

namespace velmora {

/// Ends a set or get with a negative code. Every failure below the parameter functions is thrown
/// here, so that `catch (int)` catches them all. Always inlined: one frame less to unwind.
[[noreturn, gnu::always_inline]] inline void fail(int code) { throw code; }

}  // namespace velmora
