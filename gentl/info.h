/// Info commands: each module has a table of them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <variant>

#include "gentl/failure.h"

namespace gentl {

inline constexpr char kVendor[] = "Brightfold";
inline constexpr char kModel[] = "Velmora";
inline constexpr char kTechnology[] = "Custom";
inline constexpr char kVersion[] = VELMORA_VERSION;

using Value = std::variant<std::uint64_t, double, std::string>;

template <class T>
Value toValue(const T& from) {
  if constexpr (std::is_constructible_v<std::string, T>)
    return std::string(from);
  else if constexpr (std::is_pointer_v<T>)
    return std::uint64_t{reinterpret_cast<std::uintptr_t>(from)};
  else if constexpr (std::is_floating_point_v<T>)
    return from;
  else
    return static_cast<std::uint64_t>(from);
}

/// What a number is in memory, which is little-endian.
template <class T>
std::string bytesOf(const T& number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}
/// The bytes of a value in one of the standard's types; texts with their zero.
std::string encoded(INFO_DATATYPE type, const Value& value);

std::string hexadecimal(std::uint64_t value);

/// Where a consumer wants an answer, and what type it has.
struct Answer {
  INFO_DATATYPE* type;
  void* buffer;
  std::size_t* size;
};

/// Copies an answer out as the standard wants it: without a buffer only the size, and nothing into
/// one that is too small.
void store(const std::string& bytes, void* buffer, std::size_t* size);
inline void storeText(const std::string& text, char* buffer, std::size_t* size) {
  store(encoded(INFO_DATATYPE_STRING, text), buffer, size);
}
template <class T, class From>
void put(T* out, From value) {
  requirePointer(out);
  *out = static_cast<T>(value);
}

template <class M>
struct InfoRow {
  std::int32_t command;
  INFO_DATATYPE type;
  Value (*get)(M&);               ///< Null for what this producer has no use for.
  const char* feature = nullptr;  ///< Name in the module's document.
};

/// What most rows do: tell a constant, or what a member of the module holds or returns.
template <auto what, class M>
Value tell([[maybe_unused]] M& module) {
  if constexpr (std::is_member_pointer_v<decltype(what)>)
    return toValue(std::invoke(what, module));
  else
    return toValue(what);
}

template <class M, std::size_t N>
void answer(const InfoRow<M> (&table)[N], M& module, std::int32_t command, Answer to) {
  const auto* row = std::ranges::find(table, command, &InfoRow<M>::command);
  require(row != std::end(table), GC_ERR_NOT_IMPLEMENTED, "unknown info command");
  require(row->get, GC_ERR_NOT_AVAILABLE, "this producer has no such information");
  store(encoded(row->type, row->get(module)), to.buffer, to.size);
  if (to.type) *to.type = row->type;
}

}  // namespace gentl
