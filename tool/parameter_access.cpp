#include "tool/parameter_access.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "tool/text.h"
#include "velmora/errors.h"
#include "velmora/parameters.h"
#include "velmora/values.h"

namespace velmora::tool {
namespace {

using Form = ValueKind::Form;

Failure refusal(const Parameter& parameter, int code) {
  return Failure(fmt::format("{}: refused: {}", parameter.label(), codeText(code)));
}

/// The values that a parameter takes at the moment, after a refusal that is about them.
std::string accepted(const Parameter& parameter, int code) {
  if (!parameter.node || (code != VELMORA_OUT_OF_RANGE && code != VELMORA_STEP_VIOLATION))
    return {};
  const std::string entries = entryList(*parameter.node);
  const std::string values = entries.empty() ? rangeText(*parameter.node) : entries;
  return values.empty() ? values : fmt::format(": {}", values);
}

/// The name as the applet lists it: in any case, with or without its prefix.
std::optional<std::string> listedName(Session& session, const std::string& name) {
  const auto& library = session.library();
  for (int i = 0; i < library.parameterCount(session.grabber()); ++i) {
    const std::string listed = utf8(library.parameterName(session.grabber(), i));
    if (equalIgnoringCase(listed, name) || equalIgnoringCase(listed, "FG_" + name)) return listed;
  }
  return std::nullopt;
}

/// Names that are almost this one or contain it, such as "; did you mean FG_WIDTH?".
std::string similarNames(Session& session, const std::string& name) {
  constexpr std::size_t kMostNames = 3;
  const std::string part = name.substr(equalIgnoringCase(name.substr(0, 3), "FG_") ? 3 : 0);
  const auto& library = session.library();
  std::vector<std::pair<std::size_t, std::string>> near;
  for (int i = 0; i < library.parameterCount(session.grabber()); ++i) {
    const std::string listed = utf8(library.parameterName(session.grabber(), i));
    const std::size_t distance =
        containsIgnoringCase(listed, part)
            ? 0
            : std::min(editDistance(listed, name), editDistance(listed, "FG_" + name));
    if (distance <= 1 + name.size() / 5) near.emplace_back(distance, listed);
  }
  std::ranges::sort(near);
  near.resize(std::min(near.size(), kMostNames));
  std::string names;
  for (const auto& [distance, listed] : near) names += (names.empty() ? "" : ", ") + listed;
  return names.empty() ? names : fmt::format("; did you mean {}?", names);
}

/// The kind of a parameter with a single value.
const ValueKind& singleValueKind(const Parameter& parameter) {
  const ValueKind& kind = valueKind(parameter.node, parameter.id);
  if (kind.form == Form::kNone)
    throw Failure(fmt::format("{}: not a parameter with a single value", parameter.label()));
  return kind;
}

/// Copies and releases a string that a type-22 get handed out.
std::string takeString(Session& session, const Parameter& parameter, int id, char* text) {
  if (!text) return {};
  std::string copy = utf8(text);
  const int code = session.library().freeString(session.grabber(), id, text, parameter.port,
                                                FG_PARAM_TYPE_STRING);
  if (code < 0) throw refusal(parameter, code);
  return copy;
}

}  // namespace

std::optional<std::vector<unsigned>> parsePorts(const std::string& text) {
  std::vector<unsigned> ports;
  const auto add = [&ports](unsigned port) {
    if (std::ranges::find(ports, port) == ports.end()) ports.push_back(port);
  };
  std::istringstream parts(text + ',');
  for (std::string part; std::getline(parts, part, ',');) {
    const auto port = parseWhole<unsigned>(part);
    if (part == "all")
      for (unsigned each = 0; each < kPorts; ++each) add(each);
    else if (port && *port < kPorts)
      add(*port);
    else
      return std::nullopt;
  }
  return ports;
}

ParameterName parseParameterName(const std::string& text) {
  const auto at = text.find('@');
  ParameterName parsed{text.substr(0, at), std::nullopt};
  if (parsed.name.empty()) throw Failure(fmt::format("'{}' names no parameter", text));
  if (at == std::string::npos) return parsed;
  parsed.port = parseWhole<unsigned>(text.substr(at + 1));
  if (!parsed.port || *parsed.port >= kPorts)
    throw Failure(fmt::format("{}: no such port; ports are 0 to {}", text, kPorts - 1));
  return parsed;
}

Assignment parseAssignment(const std::string& text) {
  const auto equals = text.find('=');
  if (equals == std::string::npos || equals + 1 == text.size())
    throw Failure(fmt::format("'{}' is not of the form NAME[@PORT]=VALUE", text));
  return {parseParameterName(text.substr(0, equals)), text.substr(equals + 1)};
}

std::string Parameter::label() const { return fmt::format("{}@{}", name, port); }

Parameter parameterOf(const DescribedNode& described, unsigned port) {
  return {utf8(described.node->paramName), described.node->id, port, described.node};
}

Parameter findParameter(Session& session, const std::string& name, unsigned port) {
  const auto idOf = [&](const std::string& exact) {
    return session.library().parameterIdByName(session.grabber(), exact.c_str());
  };
  std::string listed = name;
  int id = idOf(name);
  if (id < 0) {
    listed = listedName(session, name).value_or(name);
    id = idOf(listed);
  }
  if (id < 0)
    throw Failure(fmt::format("{}: no such parameter{}", name, similarNames(session, name)));
  return {listed, id, port, findNode(session, port, id)};
}

std::vector<Parameter> findParameters(Session& session, const ParameterName& name,
                                      const std::vector<unsigned>& ports) {
  std::vector<Parameter> parameters;
  for (const unsigned port : name.port ? std::vector{*name.port} : ports)
    parameters.push_back(findParameter(session, name.name, port));
  return parameters;
}

Value readParameter(Session& session, const Parameter& parameter) {
  const ValueKind& kind = singleValueKind(parameter);
  std::uint64_t bits = 0;
  char* text = nullptr;
  const bool isText = kind.form == Form::kText;
  void* const place = isText ? static_cast<void*>(&text) : &bits;
  const int code = session.library().getParameter(session.grabber(), parameter.id, place,
                                                  parameter.port, kind.type);
  if (code != 0) throw refusal(parameter, code);
  if (isText) return takeString(session, parameter, parameter.id, text);
  return valueOf(kind, bits);
}

std::vector<ReadValue> readParameters(Session& session, const std::vector<std::string>& names,
                                      const std::vector<unsigned>& ports, Failures& failures) {
  std::vector<ReadValue> values;
  for (const std::string& text : names) {
    try {
      for (const Parameter& parameter : findParameters(session, parseParameterName(text), ports))
        values.push_back({parameter, readParameter(session, parameter)});
    } catch (const Failure& failure) {
      failures.add(failure);
    }
  }
  return values;
}

void printValues(const std::vector<ReadValue>& values) {
  for (const auto& [parameter, value] : values)
    printLine(fmt::format("{} = {}", parameter.label(), showValue(parameter.node, value)));
}

void writeParameter(Session& session, const Parameter& parameter, const std::string& value) {
  const ValueKind& kind = singleValueKind(parameter);
  std::uint64_t bits = 0;
  const void* place = value.c_str();
  if (kind.form != Form::kText) {
    try {
      bits = parseValue(parameter.node, kind, value);
    } catch (const Failure& failure) {
      throw Failure(fmt::format("{}: {}", parameter.label(), failure.what()));
    }
    place = &bits;
  }
  const int code = session.library().setParameter(session.grabber(), parameter.id, place,
                                                  parameter.port, kind.type);
  if (code != 0)
    throw Failure(fmt::format("{}: refused: {}{}", parameter.label(), codeText(code),
                              accepted(parameter, code)));
}

std::vector<std::string> writeParameters(Session& session,
                                         const std::vector<std::string>& assignments,
                                         const std::vector<unsigned>& ports, Failures& failures) {
  std::vector<std::string> written;
  try {
    for (const std::string& text : assignments) {
      const Assignment assignment = parseAssignment(text);
      for (const Parameter& parameter : findParameters(session, assignment.target, ports)) {
        writeParameter(session, parameter, assignment.value);
        written.push_back(parameter.label());
      }
    }
  } catch (const Failure& failure) {
    failures.add(failure);
  }
  return written;
}

std::string parameterText(Session& session, const Parameter& parameter) {
  // The name goes in and the string comes out in the same place.
  const std::size_t size = std::max(parameter.name.size() + 1, sizeof(char*));
  std::vector<char> place(size, '\0');
  parameter.name.copy(place.data(), parameter.name.size());
  const int code = session.library().getParameter(session.grabber(), FG_PARAM_DESCR, place.data(),
                                                  parameter.port, FG_PARAM_TYPE_STRING);
  if (code != 0) throw refusal(parameter, code);
  char* text = nullptr;
  std::memcpy(&text, place.data(), sizeof(text));
  return takeString(session, parameter, FG_PARAM_DESCR, text);
}

}  // namespace velmora::tool
