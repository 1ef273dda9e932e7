#include "paraminfo/parameter_info_generator_xml.h"

#include <array>
#include <charconv>
#include <concepts>

namespace velmora {
namespace {

constexpr int kIntegerLength = 4;
constexpr int kWideLength = 8;
constexpr int kStringLength = 4096;
constexpr int kRealDigits = 6;
/// The one integer parameter whose register is wider than its description says.
constexpr std::string_view kWideInteger = "FG_TRANSFER_LEN";

constexpr std::string_view kRegisterSuffix = "_Reg";
constexpr std::string_view kEndianness = "Endianess";  // As the GenApi schema spells it.

/// Indexed by the readable and writable bits.
constexpr std::string_view kAccessModes[] = {"", "RO", "WO", "RW"};

const char* entity(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    default:
      return nullptr;
  }
}

// The classification of <cctype> depends on the process's locale, which the host sets.
constexpr bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
constexpr bool isDigitOrUnderscore(char c) { return (c >= '0' && c <= '9') || c == '_'; }

/// A text to be appended with its reserved characters replaced.
struct Escaped {
  explicit Escaped(std::string_view characters) : text(characters) {}
  explicit Escaped(const char* nullable) : text(nullable ? nullable : std::string_view()) {}
  std::string_view text;
};

void append(std::string& out, std::string_view text) { out += text; }

template <std::size_t Size>
void append(std::string& out, const char (&literal)[Size]) {
  out.append(literal, Size - 1);
}

void append(std::string& out, Escaped escaped) {
  std::size_t begin = 0;  // Of what is not yet appended.
  for (std::size_t i = 0; i < escaped.text.size(); ++i)
    if (const char* replacement = entity(escaped.text[i])) {
      out += escaped.text.substr(begin, i - begin);
      out += replacement;
      begin = i + 1;
    }
  out += escaped.text.substr(begin);
}

template <class... NumberAndFormat>
void appendNumber(std::string& out, NumberAndFormat... numberAndFormat) {
  std::array<char, 24> digits;
  out.append(digits.begin(), std::to_chars(digits.begin(), digits.end(), numberAndFormat...).ptr);
}

void append(std::string& out, std::integral auto number) { appendNumber(out, number); }

void append(std::string& out, double number) {
  appendNumber(out, number, std::chars_format::general, kRealDigits);
}

}  // namespace

std::string xmlStringFilter(std::string_view text) {
  std::string result;
  append(result, Escaped(text));
  return result;
}

std::string xmlNameFilter(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isLetter(text[i]) || (i > 0 && isDigitOrUnderscore(text[i]))) result += text[i];
  }
  return result;
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& node, int length) {
  if (node.id != 0) element("Address", node.id);
  element("Length", length);
  element("AccessMode",
          kAccessModes[node.accessMode & (REGISTER_INFO_READABLE | REGISTER_INFO_WRITABLE)]);
  element("pPort", "DevicePort");
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& node, std::uint64_t /*value*/,
                                             std::uint64_t min, std::uint64_t max,
                                             std::uint64_t inc) {
  const auto number = [&](std::string_view tag, std::uint64_t value) {
    if (node.kind == REGISTER_INFO_INT)
      element(tag, static_cast<std::int64_t>(value));
    else
      element(tag, value);
  };

  startRegister("IntReg", node, kRegisterSuffix);
  const bool wide = node.paramName && node.paramName == kWideInteger;
  infoGenerate(node, wide ? kWideLength : kIntegerLength);
  element("Sign", "Signed");
  element(kEndianness, "LittleEndian");
  write("</IntReg>\n");

  write("<Integer Name='", Escaped(node.paramName), "'>\n");
  description(node);
  registerReference(node);
  number("Min", min);
  number("Max", max);
  if (inc != 0) number("Inc", inc);
  write("</Integer>");
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& node, double /*value*/, double min,
                                             double max, double /*inc*/) {
  startRegister("FloatReg", node, kRegisterSuffix);
  infoGenerate(node, kWideLength);
  element(kEndianness, "LittleEndian");
  write("</FloatReg>\n");

  write("<Float Name=\"", Escaped(node.paramName), "\">\n");
  description(node);
  registerReference(node);
  element("Min", min);
  element("Max", max);
  write("</Float>");
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& node) {
  startRegister("StringReg", node, "");
  description(node);
  infoGenerate(node, kStringLength);
  write("</StringReg>");
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& node, int /*value*/,
                                             const std::map<int, std::string_view>& entries) {
  write("<Enumeration Name='", Escaped(node.paramName), "'>\n");
  description(node);
  for (const auto& [value, identifier] : entries) {
    write("<EnumEntry Name=\"", Escaped(identifier), "\">\n");
    element("Value", value);
    write("</EnumEntry>\n");
  }
  registerReference(node);
  write("</Enumeration>\n\n");

  startRegister("IntReg", node, kRegisterSuffix);
  infoGenerate(node, kIntegerLength);
  element("Sign", "Unsigned");
  element(kEndianness, "LittleEndian");
  write("</IntReg>");
}

/// The start tag stays open for a node without a parameter name.
void ParameterInfoGeneratorXML::startRegister(std::string_view type, const RegisterInfo& node,
                                              std::string_view suffix) {
  write("<", type);
  if (node.paramName) write(" Name=\"", Escaped(node.paramName), suffix, "\">\n");
}

void ParameterInfoGeneratorXML::description(const RegisterInfo& node) {
  if (node.name && *node.name != '\0') element("Description", Escaped(node.name));
}

void ParameterInfoGeneratorXML::registerReference(const RegisterInfo& node) {
  write("<pValue>", Escaped(node.paramName), kRegisterSuffix, "</pValue>\n");
}

template <class Value>
void ParameterInfoGeneratorXML::element(std::string_view tag, const Value& value) {
  write("<", tag, ">", value, "</", tag, ">\n");
}

template <class... Pieces>
void ParameterInfoGeneratorXML::write(const Pieces&... pieces) {
  (append(out_, pieces), ...);
}

}  // namespace velmora
