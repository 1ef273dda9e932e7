#include "tool/parameter_access.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "tool/code_text.h"
#include "tool/parameter_description.h"
#include "tool/parameter_values.h"
#include "tool/text.h"
#include "velmora/parameters.h"
#include "velmora/values.h"

namespace velmora::tool {
namespace {

using Form = ValueKind::Form;

Failure refusal(const Parameter& parameter, int code) {
  return Failure(fmt::format("{}: refused: {}", parameter.label(), codeText(code)));
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

Parameter findParameter(Session& session, const std::string& name, unsigned port) {
  const int id = session.library().parameterIdByName(session.grabber(), name.c_str());
  if (id < 0) throw Failure(fmt::format("{}: {}", name, codeText(id)));
  return {name, id, port, findNode(session, port, id)};
}

std::string readParameter(Session& session, const Parameter& parameter) {
  const ValueKind& kind = singleValueKind(parameter);
  std::uint64_t bits = 0;
  char* text = nullptr;
  const bool isText = kind.form == Form::kText;
  void* const place = isText ? static_cast<void*>(&text) : &bits;
  const int code = session.library().getParameter(session.grabber(), parameter.id, place,
                                                  parameter.port, kind.type);
  if (code != 0) throw refusal(parameter, code);
  return isText ? takeString(session, parameter, parameter.id, text)
                : showValue(parameter.node, kind, bits);
}

void writeParameter(Session& session, const Parameter& parameter, const std::string& value) {
  const ValueKind& kind = singleValueKind(parameter);
  std::uint64_t bits = 0;
  const void* place = value.c_str();
  if (kind.form != Form::kText) {
    try {
      bits = parseValue(session.library(), parameter.node, kind, value);
    } catch (const Failure& failure) {
      throw Failure(fmt::format("{}: {}", parameter.label(), failure.what()));
    }
    place = &bits;
  }
  const int code = session.library().setParameter(session.grabber(), parameter.id, place,
                                                  parameter.port, kind.type);
  if (code != 0) throw refusal(parameter, code);
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
