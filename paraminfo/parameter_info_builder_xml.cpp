#include "paraminfo/parameter_info_builder_xml.h"

#include <map>
#include <string_view>

#include "paraminfo/category.h"
#include "paraminfo/parameter_info.h"
#include "paraminfo/parameter_info_generator_xml.h"

namespace velmora {

struct ParameterInfoBuilderXMLPrivate {
  Fg_ParameterInfo& registry;
  const char* modelName;
  int process;
  Category root;
};

namespace {

constexpr const char* kRootCategory = "Root";
constexpr std::string_view kUndescribedGroup = "Direct Register Access";

std::string_view textOf(const char* text) { return text ? text : std::string_view(); }

void writeHeader(std::string& out, const char* modelName) {
  out += R"(<?xml version="1.0" encoding="utf-8"?>

<RegisterDescription
ModelName=")";
  out += xmlStringFilter(textOf(modelName));
  out += R"("
VendorName="Brightfold"
StandardNameSpace="None"
SchemaMajorVersion="1"
SchemaMinorVersion="0"
SchemaSubMinorVersion="1"
MajorVersion="1"
MinorVersion="0"
SubMinorVersion="0"
ProductGuid="0"
VersionGuid="0"
xmlns="http://www.genicam.org/GenApi/Version_1_0"
xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
xsi:schemaLocation="http://www.genicam.org/GenApi/Version_1_0 GenApiSchema_Version_1_0.xsd">
)";
}

/// Identifiers by value; of several entries with the same value the last one counts.
std::map<int, std::string_view> namedEntries(const RegisterInfo& node) {
  const auto& enumeration = node.value.enumeration;
  std::map<int, std::string_view> entries;
  for (std::uint32_t i = 0; i < enumeration.entryCount; ++i) {
    if (const char* identifier = enumeration.identifiers[i])
      entries[enumeration.values[i]] = identifier;
  }
  return entries;
}

/// Sign-extends signed numbers: the generator takes all integers as 64-bit patterns.
template <class Range>
void writeInteger(ParameterInfoGeneratorXML& generator, const RegisterInfo& node,
                  const Range& range) {
  const auto wide = [](auto number) { return static_cast<std::uint64_t>(number); };
  generator.infoGenerate(node, std::uint64_t{0}, wide(range.min), wide(range.max), wide(range.inc));
}

/// Writes the node's element; false when its kind has none.
bool writeParameter(std::string& out, const RegisterInfo& node) {
  ParameterInfoGeneratorXML generator(out);
  switch (node.kind) {
    case REGISTER_INFO_UINT:
      writeInteger(generator, node, node.value.uint32);
      return true;
    case REGISTER_INFO_INT:
      writeInteger(generator, node, node.value.int32);
      return true;
    case REGISTER_INFO_DOUBLE: {
      const auto& range = node.value.real;
      generator.infoGenerate(node, 0.0, range.min, range.max, range.inc);
      return true;
    }
    case REGISTER_INFO_STRING:
      generator.infoGenerate(node);
      return true;
    case REGISTER_INFO_ENUM:
      generator.infoGenerate(node, 0, namedEntries(node));
      return true;
    default:
      return false;
  }
}

void writeFeature(std::string& out, std::string_view name) {
  out += "<pFeature>";
  out += name;
  out += "</pFeature>\n";
}

}  // namespace

ParameterInfoBuilderXML::ParameterInfoBuilderXML(Fg_ParameterInfo& registry, const char* modelName,
                                                 int process)
    : private_(new ParameterInfoBuilderXMLPrivate{registry, modelName, process,
                                                  Category(kRootCategory)}) {}

ParameterInfoBuilderXML::~ParameterInfoBuilderXML() = default;

std::string ParameterInfoBuilderXML::build() {
  constexpr std::size_t kUsualSize = 1 << 16;
  std::string out;
  out.reserve(kUsualSize);
  writeHeader(out, private_->modelName);
  processRegisterInfo(out, private_->registry.getRegisterInfo(private_->process), nullptr);
  writeCategory(out, private_->root);
  out +=
      "<Port Name=\"DevicePort\"></Port>\n"
      "</RegisterDescription>\n";
  return out;
}

void ParameterInfoBuilderXML::processRegisterInfo(std::string& out, const RegisterInfo* node,
                                                  const RegisterInfo* parent) {
  for (; node; node = node->next) {
    if (node->kind != REGISTER_INFO_GROUP) {
      buildParamDescr(out, *node, parent);
      continue;
    }
    for (std::uint32_t i = 0; i < node->value.group.childCount; ++i)
      processRegisterInfo(out, node->value.group.children[i], node);
  }
}

void ParameterInfoBuilderXML::buildParamDescr(std::string& out, const RegisterInfo& node,
                                              const RegisterInfo* parent) {
  const std::string_view group = textOf(parent ? parent->name : nullptr);
  if (node.visible == 0 || group == kUndescribedGroup) return;
  if (!writeParameter(out, node)) return;
  categoryOf(group).addFeature(xmlNameFilter(textOf(node.paramName)));
  out += "\n\r";
}

void ParameterInfoBuilderXML::writeCategory(std::string& out, const Category& category) {
  out += "<Category Name='" + category.getName() + "' ";
  if (category.getName() == kRootCategory) out += "NameSpace='Standard'";
  out += " >\n";
  for (std::size_t i = 0; i < category.getChildCount(); ++i)
    writeFeature(out, category.getChild(i)->getName());
  for (std::size_t i = 0; i < category.getFeatureCount(); ++i)
    writeFeature(out, category.getFeature(i));
  out += "</Category>\n";
  for (std::size_t i = 0; i < category.getChildCount(); ++i)
    writeCategory(out, *category.getChild(i));
}

/// Categories are one level deep; groups whose titles filter to the same name share one.
Category& ParameterInfoBuilderXML::categoryOf(std::string_view group) {
  Category& root = private_->root;
  if (group.empty()) return root;
  const std::string name = xmlNameFilter(group);
  Category* category = root.getChild(name);
  return category ? *category : root.addChild(name);
}

}  // namespace velmora
