/// describe, xml, events
#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <sstream>
#include <utility>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/parameter_description.h"
#include "tool/parameter_values.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

std::string joined(const std::vector<std::string>& texts) {
  std::string line;
  for (const std::string& text : texts)
    if (!text.empty()) line += (line.empty() ? "" : "; ") + text;
  return line;
}

/// What a parameter takes, in one line.
std::string summary(const RegisterInfo& node) {
  return joined({rangeText(node), entryList(node), accessText(node)});
}

void printEntries(const RegisterInfo& node) {
  Table table;
  const auto& entries = node.value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    table.add({fmt::format("{}", entries.values[i]), entryName(node, i), utf8(entries.names[i])});
  printLine("  values");
  table.print(4);
}

/// For a terminal, which must not obey what a design's texts hold.
void showDocument(std::string document) {
  std::erase(document, '\r');
  std::istringstream lines(std::move(document));
  for (std::string line; std::getline(lines, line);) printLine(utf8(line));
}

}  // namespace

void describePort(Session& session, unsigned port) {
  printLine(fmt::format("port {}", port));
  for (const DescribedNode& described : describedNodes(session, port)) {
    const RegisterInfo& node = *described.node;
    const std::string title = utf8(node.name);
    const std::string indent(2 * (std::size_t{described.level} + 1), ' ');
    printLine(indent + (isGroup(node)
                            ? title
                            : fmt::format("{} \"{}\": {}", node.paramName, title, summary(node))));
  }
}

void describeParameter(Session& session, const std::string& name, std::optional<unsigned> port) {
  const ParameterName parsed = parseParameterName(name);
  const Parameter parameter =
      findParameter(session, parsed.name, parsed.port.value_or(port.value_or(0)));
  Table table;
  table.add({"id", fmt::format("{}", parameter.id)});
  table.add({"kind", valueKind(parameter.node, parameter.id).word});
  table.add({"value", readParameter(session, parameter)});
  std::string heading = parameter.label();
  if (const RegisterInfo* node = parameter.node) {
    heading += fmt::format("  \"{}\"", utf8(node->name));
    table.add({"access", accessText(*node)});
    if (const std::string range = rangeText(*node); !range.empty()) table.add({"range", range});
    for (const DescribedNode& described : describedNodes(session, parameter.port))
      if (described.node == node) table.add({"group", described.group});
  }
  printLine(heading);
  if (const std::string text = parameterText(session, parameter); !text.empty())
    printLine("  " + text);
  table.print(2);
  if (parameter.node && parameter.node->kind == REGISTER_INFO_ENUM) printEntries(*parameter.node);
}

void writeXml(Session& session, unsigned port, const std::string& file) {
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

void listEvents(Session& session) {
  constexpr unsigned kMaskBits = 64;
  Table table;
  table.add({"mask", "name"});
  for (unsigned bit = 0; bit < kMaskBits; ++bit) {
    const std::uint64_t mask = std::uint64_t{1} << bit;
    if (const char* name = session.library().eventName(session.grabber(), mask))
      table.add({fmt::format("{:#018x}", mask), name});
  }
  table.print();
}

}  // namespace velmora::tool
