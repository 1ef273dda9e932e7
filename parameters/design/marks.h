#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace velmora {

/// A pattern with each mark, a letter in braces, replaced by its text.
inline std::string expandMarks(std::string_view pattern,
                               std::initializer_list<std::pair<char, std::string_view>> marks) {
  constexpr std::string_view kMark = "{n}";
  constexpr std::size_t kUsualRoom = 120;
  std::string expanded;
  expanded.reserve(kUsualRoom);
  for (;;) {
    const auto brace = pattern.find(kMark.front());
    expanded += pattern.substr(0, brace);
    if (brace == std::string_view::npos) return expanded;
    for (const auto& [letter, text] : marks)
      if (letter == pattern[brace + 1]) expanded += text;
    pattern.remove_prefix(brace + kMark.size());
  }
}

}  // namespace velmora
