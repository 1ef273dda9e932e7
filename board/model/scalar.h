/// The board's scalar values: how 64 stored bits represent a number of some kind, and how they pass
/// through the typed pointers of the parameter functions.
///
/// Unsigned kinds are stored zero-extended, signed kinds and enumerations sign-extended, doubles as
/// their bit pattern.
#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "velmora/register_info.h"

#pragma GCC visibility push(default)

namespace board {

/// Type in calls that give none: the value has the parameter's own.
inline constexpr int kNaturalType = 0;

/// The number that the bits stand for; `Number` is the C type of the kind.
template <class Number>
Number fromBits(std::uint64_t bits) {
  if constexpr (std::is_same_v<Number, double>) {
    return std::bit_cast<double>(bits);
  } else {
    return static_cast<Number>(bits);
  }
}

/// Whether parameters of the kind hold a single number.
bool isScalar(RegisterInfoKind kind);

/// The bits of the number written in `text`; `nullopt` when it is not a number of the kind.
std::optional<std::uint64_t> parseScalar(RegisterInfoKind kind, std::string_view text);
/// The number in decimal, doubles in their shortest form.
std::string scalarText(RegisterInfoKind kind, std::uint64_t bits);

double scalarToDouble(RegisterInfoKind kind, std::uint64_t bits);
/// The bits of `value` rounded towards zero and limited to the range of the kind; NaN becomes 0.
std::uint64_t scalarFromDouble(RegisterInfoKind kind, double value);

/// Reads a caller's value of `type` (1 unsigned 32-bit, 2 signed 32-bit, 3 signed 64-bit, 4
/// unsigned 64-bit, 5 double). 32-bit kinds take the bits of any 32-bit value, signed or not.
/// @return 0, `kWrongType` or `kDoesNotFit`.
int loadScalar(RegisterInfoKind kind, int type, const void* value, std::uint64_t& bits);
/// Writes a value for a caller that asked for `type`; results as for `loadScalar`.
int storeScalar(RegisterInfoKind kind, int type, std::uint64_t bits, void* value);

}  // namespace board

#pragma GCC visibility pop
