/// list, get, set
#include <fmt/format.h>

#include <map>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/parameter_description.h"
#include "tool/parameter_values.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

/// The nodes of a port by id: a list asks for all of them.
std::map<int, const RegisterInfo*> nodesById(Session& session, unsigned port) {
  std::map<int, const RegisterInfo*> nodes;
  for (const DescribedNode& described : describedNodes(session, port))
    if (!isGroup(*described.node)) nodes.emplace(described.node->id, described.node);
  return nodes;
}

std::string valueOrDash(Session& session, const Parameter& parameter, Failures& failures) {
  try {
    return readParameter(session, parameter);
  } catch (const Failure& failure) {
    failures.add(failure);
    return "-";
  }
}

std::vector<Parameter> resolve(Session& session, const Assignment& assignment,
                               const std::vector<unsigned>& ports) {
  std::vector<Parameter> parameters;
  const auto& target = assignment.target;
  for (const unsigned port : target.port ? std::vector{*target.port} : ports)
    parameters.push_back(findParameter(session, target.name, port));
  return parameters;
}

/// Calls `done` for every parameter that was set.
template <class Done>
void assign(Session& session, const std::vector<std::string>& assignments,
            const std::vector<unsigned>& ports, const Done& done) {
  for (const std::string& text : assignments) {
    const Assignment assignment = parseAssignment(text);
    for (const Parameter& parameter : resolve(session, assignment, ports)) {
      writeParameter(session, parameter, assignment.value);
      done(parameter);
    }
  }
}

}  // namespace

void listParameters(Session& session, std::optional<unsigned> port) {
  const AppletLibrary& library = session.library();
  const unsigned first = port.value_or(0);
  const unsigned last = port.value_or(kPorts - 1);
  Table table;
  std::vector<std::string> head{"#", "name", "id", "kind", "access"};
  std::map<unsigned, std::map<int, const RegisterInfo*>> nodes;
  for (unsigned p = first; p <= last; ++p) {
    head.push_back(fmt::format("port {}", p));
    nodes.emplace(p, nodesById(session, p));
  }
  table.add(head);
  Failures failures;
  for (int i = 0; i < library.parameterCount(session.grabber()); ++i) {
    const std::string name = library.parameterName(session.grabber(), i);
    const int id = library.parameterId(session.grabber(), i);
    const auto nodeOn = [&](unsigned p) {
      const auto found = nodes[p].find(id);
      return found != nodes[p].end() ? found->second : nullptr;
    };
    const RegisterInfo* const node = nodeOn(first);
    std::vector<std::string> row{fmt::format("{}", i), name, fmt::format("{}", id),
                                 valueKind(node, id).word, node ? accessText(*node) : "read"};
    for (unsigned p = first; p <= last; ++p)
      row.push_back(valueOrDash(session, {name, id, p, nodeOn(p)}, failures));
    table.add(row);
  }
  table.print();
  failures.throwIfAny();
}

void getParameters(Session& session, const std::vector<std::string>& names) {
  Failures failures;
  for (const std::string& text : names) {
    try {
      const ParameterName name = parseParameterName(text);
      const Parameter parameter = findParameter(session, name.name, name.port.value_or(0));
      printLine(fmt::format("{} = {}", parameter.label(), readParameter(session, parameter)));
    } catch (const Failure& failure) {
      failures.add(failure);
    }
  }
  failures.throwIfAny();
}

void assignParameters(Session& session, const std::vector<std::string>& assignments,
                      const std::vector<unsigned>& ports) {
  assign(session, assignments, ports, [](const Parameter&) {});
}

void setParameters(Session& session, const std::vector<std::string>& assignments) {
  std::vector<Parameter> written;
  Failures failures;
  try {
    assign(session, assignments, {0},
           [&written](const Parameter& parameter) { written.push_back(parameter); });
  } catch (const Failure& failure) {
    failures.add(failure);
  }
  for (const Parameter& parameter : written) {
    const std::string value = valueOrDash(session, parameter, failures);
    printLine(fmt::format("{} = {}", parameter.label(), value));
  }
  failures.throwIfAny();
}

}  // namespace velmora::tool
