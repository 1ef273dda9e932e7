/// Text of designs and files on its way to a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace board {

/// Length of the UTF-8 character that a text, not empty, begins with; 0 when it begins with a
/// control character or with none.
inline std::size_t printableLength(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(0);
  if (first < 0x80) return first >= 0x20 && first != 0x7F ? 1 : 0;
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  // What begins lower is a control character, or a short one in a longer form.
  const unsigned least = first == 0xC2 || first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  return byte(1) >= least ? length : 0;
}

/// One line of text that a terminal shows and does not obey: every byte of a control character, and
/// every byte that is not part of a UTF-8 character, becomes "\x" and two hexadecimal digits.
inline std::string printable(std::string_view text) {
  constexpr const char* kDigits = "0123456789abcdef";
  std::string shown;
  while (!text.empty()) {
    const std::size_t length = printableLength(text);
    if (length > 0) {
      shown += text.substr(0, length);
    } else {
      const auto byte = static_cast<unsigned char>(text.front());
      shown += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
    text.remove_prefix(length > 0 ? length : 1);
  }
  return shown;
}

}  // namespace board
