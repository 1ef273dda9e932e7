#pragma once

#include <initializer_list>
#include <string>
#include <utility>

namespace velmora {

/// A pattern with the first occurrence of each mark, such as "{n}", replaced by its text.
inline std::string expandMarks(std::string pattern,
                               std::initializer_list<std::pair<const char*, std::string>> marks) {
  for (const auto& [mark, text] : marks)
    if (const auto at = pattern.find(mark); at != std::string::npos)
      pattern.replace(at, std::char_traits<char>::length(mark), text);
  return pattern;
}

}  // namespace velmora
