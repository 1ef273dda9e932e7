/// Info commands: each module has a table of them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <variant>

#include "gentl/failure.h"

namespace gentl {

using Value = std::variant<std::uint64_t, double, std::string>;

template <class Integer>
Value number(Integer value) {
  return static_cast<std::uint64_t>(value);
}
inline Value pointer(const void* value) { return number(reinterpret_cast<std::uintptr_t>(value)); }

/// The bytes of a value in one of the standard's types; texts with their zero.
std::string encoded(INFO_DATATYPE type, const Value& value);

std::string hexadecimal(std::uint64_t value);

/// Copies an answer out as the standard wants it: without a buffer only the size, and nothing into
/// one that is too small.
void store(const std::string& bytes, void* buffer, std::size_t* size);
inline void storeText(const std::string& text, char* buffer, std::size_t* size) {
  store(encoded(INFO_DATATYPE_STRING, text), buffer, size);
}

template <class M>
struct InfoRow {
  std::int32_t command;
  INFO_DATATYPE type;
  Value (*get)(M&);               ///< Null for what this producer has no use for.
  const char* feature = nullptr;  ///< Name in the module's document.
};

template <class M, std::size_t N>
void answer(const InfoRow<M> (&table)[N], M& module, std::int32_t command, INFO_DATATYPE* type,
            void* buffer, std::size_t* size) {
  const auto* row = std::ranges::find(table, command, &InfoRow<M>::command);
  require(row != std::end(table), GC_ERR_NOT_IMPLEMENTED, "unknown info command");
  require(row->get, GC_ERR_NOT_AVAILABLE, "this producer has no such information");
  store(encoded(row->type, row->get(module)), buffer, size);
  if (type) *type = row->type;
}

}  // namespace gentl
