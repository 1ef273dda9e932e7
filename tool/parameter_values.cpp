#include "tool/parameter_values.h"

#include <fmt/format.h>

#include <bit>
#include <iterator>
#include <optional>

#include "tool/code_text.h"
#include "tool/text.h"
#include "velmora/parameters.h"
#include "velmora/values.h"

namespace velmora::tool {
namespace {

using Form = ValueKind::Form;

constexpr ValueKind kKinds[] = {
    {REGISTER_INFO_UINT, "uint", Form::kUnsigned, 32, FG_PARAM_TYPE_INT32},
    {REGISTER_INFO_ENUM, "enum", Form::kSigned, 32, FG_PARAM_TYPE_INT32},
    {REGISTER_INFO_STRING, "string", Form::kText, 0, FG_PARAM_TYPE_STRING},
    {REGISTER_INFO_DOUBLE, "double", Form::kReal, 64, FG_PARAM_TYPE_DOUBLE},
    {REGISTER_INFO_UINT64, "uint64", Form::kUnsigned, 64, FG_PARAM_TYPE_UINT64},
    {REGISTER_INFO_INT, "int", Form::kSigned, 32, FG_PARAM_TYPE_INT32},
    {REGISTER_INFO_INT64, "int64", Form::kSigned, 64, FG_PARAM_TYPE_INT64},
};
constexpr ValueKind kOtherKind{REGISTER_INFO_GROUP, "other", Form::kNone, 0, 0};

/// Without a description a value may be of any integer type; 64 bits hold all of them.
constexpr ValueKind kForwarded{REGISTER_INFO_UINT64, "forwarded", Form::kUnsigned, 64,
                               FG_PARAM_TYPE_UINT64};

std::uint64_t lowBits(std::uint64_t value, unsigned bits) {
  return bits < 64 ? value & ((std::uint64_t{1} << bits) - 1) : value;
}

struct Integer {
  std::uint64_t magnitude;
  bool negative;
};

std::optional<Integer> parseInteger(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  const auto magnitude = parseWhole<std::uint64_t>(text, hexadecimal ? 16 : 10);
  if (!magnitude) return std::nullopt;
  return Integer{*magnitude, negative};
}

/// The value of an entry of the parameter's own, in upper or lower case.
std::optional<int> namedValue(const RegisterInfo* node, const std::string& name) {
  if (!node || node->kind != REGISTER_INFO_ENUM) return std::nullopt;
  const auto& entries = node->value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    if (equalIgnoringCase(entryName(*node, i), name)) return entries.values[i];
  return std::nullopt;
}

/// Empty for one that is missing.
std::string textAt(char* const* texts, std::uint32_t index) {
  return utf8(texts ? texts[index] : nullptr);
}

std::uint64_t realBits(double value) { return std::bit_cast<std::uint64_t>(value); }

/// An integer in two's complement, if it fits.
std::uint64_t integerBits(const Integer& integer, unsigned bits, const std::string& text) {
  const std::uint64_t signBit = std::uint64_t{1} << (bits - 1);
  const bool fits = integer.negative ? integer.magnitude <= signBit
                                     : lowBits(integer.magnitude, bits) == integer.magnitude;
  if (!fits) throw Failure(fmt::format("{} does not fit into {} bits", text, bits));
  return lowBits(integer.negative ? -integer.magnitude : integer.magnitude, bits);
}

}  // namespace

const ValueKind& valueKind(const RegisterInfo* node, int id) {
  if (!node) return id == FG_NR_OF_PROCESSES ? kKinds[0] : kForwarded;
  for (const ValueKind& known : kKinds)
    if (known.kind == node->kind) return known;
  return kOtherKind;
}

std::uint64_t parseValue(const RegisterInfo* node, const ValueKind& kind, const std::string& text) {
  const bool real = kind.form == Form::kReal;
  if (real)
    if (const auto number = parseWhole<double>(text)) return realBits(*number);
  if (const auto value = namedValue(node, text)) return static_cast<std::uint32_t>(*value);
  const auto integer = parseInteger(text);
  if (!integer && kind.kind == REGISTER_INFO_ENUM)
    throw Failure(fmt::format("'{}' is none of {}", text, entryList(*node)));
  if (!integer) throw Failure(fmt::format("'{}' is no {}number", text, real ? "" : "whole "));
  if (!real) return integerBits(*integer, kind.bits, text);
  const auto magnitude = static_cast<double>(integer->magnitude);
  return realBits(integer->negative ? -magnitude : magnitude);
}

Value valueOf(const ValueKind& kind, std::uint64_t bits) {
  if (kind.form == Form::kReal) return std::bit_cast<double>(bits);
  if (kind.form == Form::kUnsigned) return lowBits(bits, kind.bits);
  return kind.bits == 32 ? static_cast<std::int32_t>(bits) : static_cast<std::int64_t>(bits);
}

std::string showValue(const RegisterInfo* node, const Value& value) {
  const std::string name = entryName(node, value);
  const std::string shown =
      std::visit([](const auto& content) { return fmt::format("{}", content); }, value);
  return name.empty() ? shown : fmt::format("{} ({})", shown, name);
}

std::string entryTitle(const RegisterInfo& enumeration, std::uint32_t entry) {
  return textAt(enumeration.value.enumeration.names, entry);
}

std::string entryName(const RegisterInfo& enumeration, std::uint32_t entry) {
  const std::string name = textAt(enumeration.value.enumeration.identifiers, entry);
  return name.empty() ? entryTitle(enumeration, entry) : name;
}

std::string entryName(const RegisterInfo* node, const Value& value) {
  if (!node || node->kind != REGISTER_INFO_ENUM) return {};
  const auto& entries = node->value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    if (value == Value(std::int64_t{entries.values[i]})) return entryName(*node, i);
  return {};
}

std::vector<std::string> entryTexts(const RegisterInfo& node) {
  std::vector<std::string> texts;
  if (node.kind != REGISTER_INFO_ENUM) return texts;
  const auto& entries = node.value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    texts.push_back(fmt::format("{} {}", entries.values[i], entryName(node, i)));
  return texts;
}

std::string entryList(const RegisterInfo& node) {
  return fmt::format("{}", fmt::join(entryTexts(node), ", "));
}

}  // namespace velmora::tool
