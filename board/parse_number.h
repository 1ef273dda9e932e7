/// Numbers written as text, independent of the locale.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace board {

/// Nothing unless all of `text` is a number that `Number` can hold.
template <class Number>
std::optional<Number> parseNumber(std::string_view text) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || rest != end) return std::nullopt;
  return number;
}

}  // namespace board
