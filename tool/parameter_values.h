/// Values of parameters: their kinds, and how they are written and shown.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tool/applet_library.h"

namespace velmora::tool {

/// How values of a kind travel through the parameter functions.
struct ValueKind {
  enum class Form { kNone /* several values */, kUnsigned, kSigned, kReal, kText };

  std::uint32_t kind;  ///< `RegisterInfoKind`.
  const char* word;
  Form form;
  unsigned bits;  ///< Width; 0 for texts.
  int type;       ///< `FgParamTypes`.
};

/// The kind of the parameter `id` that a node describes. A parameter without a node is answered by
/// the runtime, except for the number of processes, which is the applet's own 32-bit answer.
const ValueKind& valueKind(const RegisterInfo* node, int id);

/// The bits of a value as the user wrote it: a decimal or hexadecimal (0x) number, or an entry of
/// the parameter's own, in upper or lower case. `Failure` when it is neither or too wide; the
/// applet checks ranges.
std::uint64_t parseValue(const RegisterInfo* node, const ValueKind& kind, const std::string& text);

/// A value as its kind has it.
using Value = std::variant<std::uint64_t, std::int64_t, double, std::string>;
/// What bits mean that came from the parameter functions; not for texts.
Value valueOf(const ValueKind& kind, std::uint64_t bits);
/// The value, followed by its name where the parameter is an enumeration: "1 (FG_ON)".
std::string showValue(const RegisterInfo* node, const Value& value);

/// The display text of an entry of an enumeration; may be empty.
std::string entryTitle(const RegisterInfo& enumeration, std::uint32_t entry);
/// What an entry is called: its symbolic name, else its display text.
std::string entryName(const RegisterInfo& enumeration, std::uint32_t entry);
/// The name of the entry that the parameter stands at; empty when there is none.
std::string entryName(const RegisterInfo* node, const Value& value);
/// All of them, such as "1 FG_ON"; none for another kind.
std::vector<std::string> entryTexts(const RegisterInfo& node);
/// The same in one text: "1 FG_ON, 0 FG_OFF".
std::string entryList(const RegisterInfo& node);

}  // namespace velmora::tool
