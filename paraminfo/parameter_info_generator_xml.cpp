#include "paraminfo/parameter_info_generator_xml.h"

namespace velmora {
namespace {

constexpr int kIntegerLength = 4;
constexpr int kWideLength = 8;
constexpr int kStringLength = 4096;
/// The one integer parameter whose register is wider than its description says.
constexpr std::string_view kWideInteger = "FG_TRANSFER_LEN";

constexpr const char* kRegisterSuffix = "_Reg";
constexpr const char* kEndianness = "Endianess";  // As the GenApi schema spells it.

/// Indexed by the readable and writable bits.
constexpr const char* kAccessModes[] = {"", "RO", "WO", "RW"};

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

std::string escaped(const char* text) { return text ? xmlStringFilter(text) : std::string(); }

}  // namespace

std::string xmlStringFilter(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char character : text) {
    if (const char* replacement = entity(character))
      result += replacement;
    else
      result += character;
  }
  return result;
}

std::string xmlNameFilter(std::string_view text) {
  std::string result;
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
  const auto number = [&](const char* tag, std::uint64_t value) {
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
  out_ << "</IntReg>\n";

  out_ << "<Integer Name='" << escaped(node.paramName) << "'>\n";
  description(node);
  registerReference(node);
  number("Min", min);
  number("Max", max);
  if (inc != 0) number("Inc", inc);
  out_ << "</Integer>";
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& node, double /*value*/, double min,
                                             double max, double /*inc*/) {
  startRegister("FloatReg", node, kRegisterSuffix);
  infoGenerate(node, kWideLength);
  element(kEndianness, "LittleEndian");
  out_ << "</FloatReg>\n";

  out_ << "<Float Name=\"" << escaped(node.paramName) << "\">\n";
  description(node);
  registerReference(node);
  element("Min", min);
  element("Max", max);
  out_ << "</Float>";
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& node) {
  startRegister("StringReg", node, "");
  description(node);
  infoGenerate(node, kStringLength);
  out_ << "</StringReg>";
}

void ParameterInfoGeneratorXML::infoGenerate(const RegisterInfo& node, int /*value*/,
                                             const std::map<int, std::string>& entries) {
  out_ << "<Enumeration Name='" << escaped(node.paramName) << "'>\n";
  description(node);
  for (const auto& [value, identifier] : entries) {
    out_ << "<EnumEntry Name=\"" << xmlStringFilter(identifier) << "\">\n";
    element("Value", value);
    out_ << "</EnumEntry>\n";
  }
  registerReference(node);
  out_ << "</Enumeration>\n\n";

  startRegister("IntReg", node, kRegisterSuffix);
  infoGenerate(node, kIntegerLength);
  element("Sign", "Unsigned");
  element(kEndianness, "LittleEndian");
  out_ << "</IntReg>";
}

/// The start tag stays open for a node without a parameter name.
void ParameterInfoGeneratorXML::startRegister(const char* type, const RegisterInfo& node,
                                              const char* suffix) {
  out_ << '<' << type;
  if (node.paramName) out_ << " Name=\"" << xmlStringFilter(node.paramName) << suffix << "\">\n";
}

void ParameterInfoGeneratorXML::description(const RegisterInfo& node) {
  if (node.name && *node.name != '\0') element("Description", escaped(node.name));
}

void ParameterInfoGeneratorXML::registerReference(const RegisterInfo& node) {
  element("pValue", escaped(node.paramName) + kRegisterSuffix);
}

template <class Value>
void ParameterInfoGeneratorXML::element(const char* tag, const Value& value) {
  out_ << '<' << tag << '>' << value << "</" << tag << ">\n";
}

}  // namespace velmora
