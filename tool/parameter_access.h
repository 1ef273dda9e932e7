/// Parameters of ports as the command line names them.
#pragma once

#include <optional>
#include <string>

#include "tool/session.h"

namespace velmora::tool {

/// NAME or NAME@PORT.
struct ParameterName {
  std::string name;
  std::optional<unsigned> port;
};

/// NAME=VALUE or NAME@PORT=VALUE.
struct Assignment {
  ParameterName target;
  std::string value;
};

/// `Failure` when the text is malformed or the port does not exist.
ParameterName parseParameterName(const std::string& text);
Assignment parseAssignment(const std::string& text);

/// A parameter on a port.
struct Parameter {
  std::string name;
  int id;
  unsigned port;
  const RegisterInfo* node;  ///< Description; null when the applet leaves the parameter to the
                             ///< runtime.

  /// "FG_WIDTH@1".
  std::string label() const;
};

/// `Failure` when the applet knows no such name.
Parameter findParameter(Session& session, const std::string& name, unsigned port);

/// The current value as text; `Failure` with the applet's code.
std::string readParameter(Session& session, const Parameter& parameter);
/// Sets a value given as text; `Failure` with the applet's code, or when the text is no value.
void writeParameter(Session& session, const Parameter& parameter, const std::string& value);

/// The applet's text about a parameter, in UTF-8; empty when it has none.
std::string parameterText(Session& session, const Parameter& parameter);

}  // namespace velmora::tool
