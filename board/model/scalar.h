/// Single numbers of the board: how the 64 bits of a stored value stand for a number of a kind, and
/// how they pass through the typed pointers of the parameter functions.
///
/// Unsigned kinds are stored zero-extended, signed kinds and enumerations sign-extended, doubles as
/// their bit pattern.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "velmora/register_info.h"

#pragma GCC visibility push(default)

namespace board {

/// Type number of the untyped parameter functions: the value has the parameter's own type.
inline constexpr int kNaturalType = 0;

/// Whether parameters of the kind hold one number.
bool isScalar(RegisterInfoKind kind);

/// The bits for a number written in `text`; nothing when it is no number of the kind.
std::optional<std::uint64_t> parseScalar(RegisterInfoKind kind, std::string_view text);
/// The number in decimal, doubles in their shortest form.
std::string scalarText(RegisterInfoKind kind, std::uint64_t bits);

double scalarToDouble(RegisterInfoKind kind, std::uint64_t bits);
/// The bits for the number of the kind next to `value`, towards zero.
std::uint64_t scalarFromDouble(RegisterInfoKind kind, double value);

/// Reads a caller's value of `type` (1 unsigned 32-bit, 2 signed 32-bit, 3 signed 64-bit, 4
/// unsigned 64-bit, 5 double). 32-bit kinds take the pattern of a 32-bit value, whatever its sign.
/// @return 0, `kWrongType` or `kDoesNotFit`.
int loadScalar(RegisterInfoKind kind, int type, const void* value, std::uint64_t& bits);
/// Writes a value for a caller that asked for `type`; results as for `loadScalar`.
int storeScalar(RegisterInfoKind kind, int type, std::uint64_t bits, void* value);

}  // namespace board

#pragma GCC visibility pop
