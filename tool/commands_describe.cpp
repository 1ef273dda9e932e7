/// describe, xml, events
#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <sstream>
#include <utility>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/parameter_json.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

void printEntries(const RegisterInfo& node) {
  Table table;
  const auto& entries = node.value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    table.add({fmt::format("{}", entries.values[i]), entryName(node, i), entryTitle(node, i)});
  printLine("  values");
  table.print(4);
}

/// For a terminal, which must not obey what a design's texts hold.
void showDocument(std::string document) {
  std::erase(document, '\r');
  std::istringstream lines(std::move(document));
  for (std::string line; std::getline(lines, line);) printLine(utf8(line.c_str()));
}

/// A parameter with the values that it takes.
void printLeaf(const RegisterInfo& node, std::size_t indent) {
  std::vector<std::string> pieces = entryTexts(node);
  if (const std::string range = rangeText(node); !range.empty()) pieces.push_back(range);
  for (std::string& piece : pieces) piece += &piece == &pieces.back() ? ';' : ',';
  pieces.insert(pieces.begin(), {utf8(node.paramName), fmt::format("\"{}\":", utf8(node.name))});
  pieces.emplace_back(accessText(node));
  printFitting(indent, pieces);
}

void printTree(Session& session, unsigned port) {
  printLine(fmt::format("port {}", port));
  for (const DescribedNode& described : describedNodes(session, port)) {
    const std::size_t indent = 2 * (std::size_t{described.level} + 1);
    if (isGroup(*described.node))
      printFitting(indent, {utf8(described.node->name)});
    else
      printLeaf(*described.node, indent);
  }
}

/// Empty when it is in no group.
std::string groupOf(Session& session, const Parameter& parameter) {
  for (const DescribedNode& described : describedNodes(session, parameter.port))
    if (described.node == parameter.node) return described.group;
  return {};
}

void printParameter(Session& session, const Parameter& parameter) {
  const Value value = readParameter(session, parameter);
  Table table;
  table.add({"id", fmt::format("{}", parameter.id)});
  table.add({"kind", valueKind(parameter.node, parameter.id).word});
  table.add({"value", showValue(parameter.node, value)});
  std::string heading = parameter.label();
  if (const RegisterInfo* node = parameter.node) {
    heading += fmt::format("  \"{}\"", utf8(node->name));
    table.add({"access", accessText(*node)});
    if (const std::string range = rangeText(*node); !range.empty()) table.add({"range", range});
    if (const std::string group = groupOf(session, parameter); !group.empty())
      table.add({"group", group});
  }
  printLine(heading);
  if (const std::string text = parameterText(session, parameter); !text.empty())
    printLine("  " + text);
  table.print(2);
  if (parameter.node && parameter.node->kind == REGISTER_INFO_ENUM) printEntries(*parameter.node);
}

}  // namespace

void describePorts(Session& session, const std::vector<unsigned>& ports, bool json) {
  Json trees = Json::array();
  for (const unsigned port : ports) {
    if (json)
      trees.push_back(treeJson(session, port));
    else
      printTree(session, port);
  }
  if (json) printJson(trees);
}

void describeParameter(Session& session, const std::string& name,
                       const std::vector<unsigned>& ports, bool json) {
  Json list = Json::array();
  for (const Parameter& parameter : findParameters(session, parseParameterName(name), ports)) {
    if (json) {
      list.push_back(parameterJson(session, parameter));
      list.back()["group"] = groupOf(session, parameter);
      list.back()["text"] = parameterText(session, parameter);
    } else {
      printParameter(session, parameter);
    }
  }
  if (json) printJson(list);
}

void writeXml(Session& session, const std::vector<unsigned>& ports, const std::string& file) {
  if (ports.size() > 1) throw Failure("a document is about one port");
  const unsigned port = ports.front();
  const auto render = [&](char* buffer, std::size_t& size) {
    const int code =
        session.library().descriptionXml(session.grabber(), static_cast<int>(port), buffer, &size);
    if (code != 0) throw Failure(fmt::format("XML document of port {}: {}", port, codeText(code)));
  };
  std::size_t size = 0;
  render(nullptr, size);
  std::string document(size, '\0');
  render(document.data(), size);
  document.resize(size - 1);  // Without the terminating zero.
  if (!file.empty())
    writeFile(file, document);
  else if (isatty(STDOUT_FILENO) != 0)
    showDocument(document);
  else
    std::fwrite(document.data(), 1, document.size(), stdout);
}

void listEvents(Session& session, bool json) {
  constexpr unsigned kMaskBits = 64;
  Table table;
  table.add({"mask", "name"});
  Json list = Json::array();
  for (unsigned bit = 0; bit < kMaskBits; ++bit) {
    const std::uint64_t mask = std::uint64_t{1} << bit;
    const char* const name = session.library().eventName(session.grabber(), mask);
    if (!name) continue;
    const std::string shown = fmt::format("{:#018x}", mask);
    table.add({shown, utf8(name)});
    list.push_back({{"mask", shown}, {"name", utf8(name)}});
  }
  if (json)
    printJson(list);
  else
    table.print();
}

}  // namespace velmora::tool
