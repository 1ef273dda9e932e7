#include "tool/parameter_json.h"

#include <fmt/format.h>

#include <cstdio>

#include "tool/code_text.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

Json number(const Value& value) {
  return std::visit([](const auto& content) { return Json(content); }, value);
}

Json entriesJson(const RegisterInfo& node) {
  Json list = Json::array();
  const auto& entries = node.value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    list.push_back({{"value", entries.values[i]},
                    {"name", entryName(node, i)},
                    {"title", entryTitle(node, i)}});
  return list;
}

void addDescription(Json& json, const RegisterInfo& node) {
  json["access"] = accessText(node);
  json["title"] = utf8(node.name);
  if (const auto range = limits(node)) {
    json["min"] = number(range->min);
    json["max"] = number(range->max);
    if (range->step) json["step"] = number(*range->step);
  }
  if (node.kind == REGISTER_INFO_ENUM) json["entries"] = entriesJson(node);
}

}  // namespace

Json valueJson(const ReadValue& read) {
  const auto& [parameter, value] = read;
  Json json{{"name", parameter.name}, {"port", parameter.port}, {"value", number(value)}};
  if (const std::string entry = entryName(parameter.node, value); !entry.empty())
    json["entry"] = entry;
  if (parameter.node && !unit(*parameter.node).empty()) json["unit"] = unit(*parameter.node);
  return json;
}

Json valuesJson(const std::vector<ReadValue>& values) {
  Json list = Json::array();
  for (const ReadValue& read : values) list.push_back(valueJson(read));
  return list;
}

Json parameterJson(Session& session, const Parameter& parameter) {
  Json json;
  try {
    json = valueJson({parameter, readParameter(session, parameter)});
  } catch (const Failure&) {
    json = {{"name", parameter.name}, {"port", parameter.port}, {"value", nullptr}};
  }
  json["id"] = parameter.id;
  json["kind"] = valueKind(parameter.node, parameter.id).word;
  if (parameter.node)
    addDescription(json, *parameter.node);
  else
    json["access"] = "read";
  return json;
}

Json treeJson(Session& session, unsigned port) {
  Json tree{{"title", fmt::format("port {}", port)}, {"children", Json::array()}};
  for (const DescribedNode& described : describedNodes(session, port)) {
    Json* parent = &tree;
    for (unsigned level = 0; level < described.level; ++level)
      parent = &(*parent)["children"].back();
    const RegisterInfo& node = *described.node;
    (*parent)["children"].push_back(
        isGroup(node) ? Json{{"title", utf8(node.name)}, {"children", Json::array()}}
                      : parameterJson(session, parameterOf(described, port)));
  }
  return tree;
}

std::string jsonText(const Json& document, int indent) {
  // Texts of others need not be UTF-8.
  return document.dump(indent, ' ', false, Json::error_handler_t::replace);
}

void printJson(const Json& document) {
  const std::string text = jsonText(document, 2);
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
}

}  // namespace velmora::tool
