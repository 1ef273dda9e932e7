#include "board/model/scalar.h"

#include <fmt/format.h>

#include <bit>
#include <cstring>
#include <limits>
#include <type_traits>

#include "board/model/board_error.h"
#include "board/parse_number.h"

namespace board {
namespace {

enum ValueType { kUint32 = 1, kInt32 = 2, kInt64 = 3, kUint64 = 4, kDouble = 5 };

/// Calls `function` with a number of the C type that holds values of the kind.
template <class Function>
auto dispatch(RegisterInfoKind kind, Function function) {
  switch (kind) {
    case REGISTER_INFO_DOUBLE:
    case REGISTER_INFO_DOUBLE_FIELD:
      return function(double{});
    case REGISTER_INFO_UINT64:
      return function(std::uint64_t{});
    case REGISTER_INFO_INT64:
      return function(std::int64_t{});
    case REGISTER_INFO_INT:
    case REGISTER_INFO_ENUM:
    case REGISTER_INFO_INT_FIELD:
      return function(std::int32_t{});
    default:
      return function(std::uint32_t{});
  }
}

template <class Number>
std::uint64_t encode(Number number) {
  if constexpr (std::is_same_v<Number, double>) {
    return std::bit_cast<std::uint64_t>(number);
  } else if constexpr (std::is_signed_v<Number>) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(number));
  } else {
    return number;
  }
}

int naturalType(RegisterInfoKind kind) {
  return dispatch(kind, [](auto number) -> int {
    using Number = decltype(number);
    if constexpr (std::is_same_v<Number, double>) return kDouble;
    if constexpr (sizeof(Number) == 4) return std::is_signed_v<Number> ? kInt32 : kUint32;
    return std::is_signed_v<Number> ? kInt64 : kUint64;
  });
}

/// The type to use for a request; 0 when the kind has no such type.
int resolveType(RegisterInfoKind kind, int requested) {
  const int natural = naturalType(kind);
  if (requested == kNaturalType) return natural;
  const bool integer = requested >= kUint32 && requested <= kUint64;
  const bool matches = natural == kDouble ? requested == kDouble : integer;
  return isScalar(kind) && matches ? requested : 0;
}

bool isWide(int type) { return type >= kInt64; }

template <class Number>
Number readAs(const void* value) {
  Number number;
  std::memcpy(&number, value, sizeof(number));
  return number;
}

/// Whether `bits`, a 64-bit integer, fits in 32 bits, signed or not.
bool fits32(std::uint64_t bits) {
  const auto number = static_cast<std::int64_t>(bits);
  return number >= std::numeric_limits<std::int32_t>::min() &&
         number <= std::numeric_limits<std::uint32_t>::max();
}

}  // namespace

bool isScalar(RegisterInfoKind kind) {
  switch (kind) {
    case REGISTER_INFO_UINT:
    case REGISTER_INFO_INT:
    case REGISTER_INFO_ENUM:
    case REGISTER_INFO_UINT64:
    case REGISTER_INFO_INT64:
    case REGISTER_INFO_DOUBLE:
      return true;
    default:
      return false;
  }
}

std::optional<std::uint64_t> parseScalar(RegisterInfoKind kind, std::string_view text) {
  return dispatch(kind, [text](auto number) -> std::optional<std::uint64_t> {
    const auto parsed = parseNumber<decltype(number)>(text);
    if (!parsed) return std::nullopt;
    return encode(*parsed);
  });
}

std::string scalarText(RegisterInfoKind kind, std::uint64_t bits) {
  return dispatch(
      kind, [bits](auto number) { return fmt::format("{}", fromBits<decltype(number)>(bits)); });
}

double scalarToDouble(RegisterInfoKind kind, std::uint64_t bits) {
  return dispatch(
      kind, [bits](auto number) { return static_cast<double>(fromBits<decltype(number)>(bits)); });
}

std::uint64_t scalarFromDouble(RegisterInfoKind kind, double value) {
  return dispatch(kind, [value](auto number) {
    using Number = decltype(number);
    using Limits = std::numeric_limits<Number>;
    if (value >= static_cast<double>(Limits::max())) return encode(Limits::max());
    if (value <= static_cast<double>(Limits::lowest())) return encode(Limits::lowest());
    return encode(static_cast<Number>(value == value ? value : 0.0));
  });
}

int loadScalar(RegisterInfoKind kind, int type, const void* value, std::uint64_t& bits) {
  const int resolved = resolveType(kind, type);
  if (resolved == 0) return kWrongType;
  const bool wideKind = isWide(naturalType(kind));
  if (isWide(resolved)) {
    const auto wide = readAs<std::uint64_t>(value);
    if (!wideKind && !fits32(wide)) return kDoesNotFit;
    bits = wide;
  } else {
    const auto narrow = readAs<std::uint32_t>(value);
    bits = wideKind && resolved == kInt32 ? encode(static_cast<std::int32_t>(narrow)) : narrow;
  }
  if (!wideKind) {  // Leaves the bits of the kind's own width.
    bits = dispatch(kind, [&](auto number) { return encode(fromBits<decltype(number)>(bits)); });
  }
  return kOk;
}

int storeScalar(RegisterInfoKind kind, int type, std::uint64_t bits, void* value) {
  const int resolved = resolveType(kind, type);
  if (resolved == 0) return kWrongType;
  if (isWide(resolved)) {
    std::memcpy(value, &bits, sizeof(bits));
    return kOk;
  }
  if (!fits32(bits)) return kDoesNotFit;
  const auto narrow = static_cast<std::uint32_t>(bits);
  std::memcpy(value, &narrow, sizeof(narrow));
  return kOk;
}

}  // namespace board
