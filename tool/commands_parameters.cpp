/// list, get, set
#include <fmt/format.h>

#include <map>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/parameter_json.h"
#include "tool/parameter_values.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

/// All parameters of the applet on a port, in its own order.
std::vector<Parameter> allParameters(Session& session, unsigned port) {
  std::map<int, const RegisterInfo*> nodes;
  for (const DescribedNode& described : describedNodes(session, port))
    if (!isGroup(*described.node)) nodes.emplace(described.node->id, described.node);
  const AppletLibrary& library = session.library();
  std::vector<Parameter> parameters;
  for (int i = 0; i < library.parameterCount(session.grabber()); ++i) {
    const int id = library.parameterId(session.grabber(), i);
    const auto node = nodes.find(id);
    parameters.push_back({utf8(library.parameterName(session.grabber(), i)), id, port,
                          node != nodes.end() ? node->second : nullptr});
  }
  return parameters;
}

std::string valueOrDash(Session& session, const Parameter& parameter, Failures& failures) {
  try {
    return showValue(parameter.node, readParameter(session, parameter));
  } catch (const Failure& failure) {
    failures.add(failure);
    return "-";
  }
}

/// Every port in a column of one table.
void listFlat(Session& session, const std::vector<unsigned>& ports, Failures& failures) {
  Table table;
  std::vector<std::string> head{"#", "name", "id", "kind", "access"};
  std::vector<std::vector<Parameter>> columns;
  for (const unsigned port : ports) {
    head.push_back(fmt::format("port {}", port));
    columns.push_back(allParameters(session, port));
  }
  table.add(head);
  for (std::size_t i = 0; i < columns.front().size(); ++i) {
    const Parameter& first = columns.front()[i];
    std::vector<std::string> row{fmt::format("{}", i), first.name, fmt::format("{}", first.id),
                                 valueKind(first.node, first.id).word,
                                 first.node ? accessText(*first.node) : "read"};
    for (const auto& column : columns) row.push_back(valueOrDash(session, column[i], failures));
    table.add(row);
  }
  table.print();
}

void listTree(Session& session, unsigned port, Failures& failures) {
  printLine(fmt::format("port {}", port));
  for (const DescribedNode& described : describedNodes(session, port)) {
    const RegisterInfo& node = *described.node;
    const std::size_t indent = 2 * (std::size_t{described.level} + 1);
    if (isGroup(node)) {
      printFitting(indent, {utf8(node.name)});
      continue;
    }
    const Parameter parameter = parameterOf(described, port);
    std::string range = rangeText(node);
    if (limits(node)) range = fmt::format("({})", range);
    printFitting(indent, {parameter.name + " =", valueOrDash(session, parameter, failures), range});
  }
}

Json allJson(Session& session, const std::vector<unsigned>& ports) {
  Json list = Json::array();
  for (const unsigned port : ports)
    for (const Parameter& parameter : allParameters(session, port))
      list.push_back(parameterJson(session, parameter));
  return list;
}

void show(const std::vector<ReadValue>& values, bool json) {
  if (json)
    printJson(valuesJson(values));
  else
    printValues(values);
}

}  // namespace

void listParameters(Session& session, const std::vector<unsigned>& ports, ListForm form) {
  if (form == ListForm::kJson) return printJson(allJson(session, ports));
  Failures failures;
  if (form == ListForm::kFlat)
    listFlat(session, ports, failures);
  else
    for (const unsigned port : ports) listTree(session, port, failures);
  failures.throwIfAny();
}

void getParameters(Session& session, const std::vector<std::string>& names,
                   const std::vector<unsigned>& ports, bool json) {
  Failures failures;
  show(readParameters(session, names, ports, failures), json);
  failures.throwIfAny();
}

void assignParameters(Session& session, const std::vector<std::string>& assignments,
                      const std::vector<unsigned>& ports) {
  Failures failures;
  writeParameters(session, assignments, ports, failures);
  failures.throwIfAny();
}

void setParameters(Session& session, const std::vector<std::string>& assignments,
                   const std::vector<unsigned>& ports, bool json) {
  Failures failures;
  const auto written = writeParameters(session, assignments, ports, failures);
  show(readParameters(session, written, ports, failures), json);
  failures.throwIfAny();
}

}  // namespace velmora::tool
