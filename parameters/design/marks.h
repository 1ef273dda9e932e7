#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace velmora {

/// A pattern with the first occurrence of each mark, such as "{n}", replaced by its text.
inline std::string expandMarks(
    std::string_view pattern,
    std::initializer_list<std::pair<std::string_view, std::string_view>> marks) {
  constexpr std::size_t kMostTexts = 120;  // Fit without moving.
  std::string expanded;
  expanded.reserve(kMostTexts);
  expanded = pattern;
  for (const auto& [mark, text] : marks)
    if (const auto at = expanded.find(mark); at != std::string::npos)
      expanded.replace(at, mark.size(), text);
  return expanded;
}

}  // namespace velmora
