#pragma once

namespace velmora {

/// Ends a set or get with a negative code. Every failure below the parameter functions is thrown
/// here and only here, so that `catch (int)` meets all of them. Inline, for a frame less to unwind.
[[noreturn, gnu::always_inline]] inline void fail(int code) { throw code; }

}  // namespace velmora
