/// Parameters of ports as the command line names them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tool/code_text.h"
#include "tool/parameter_description.h"
#include "tool/session.h"

namespace velmora::tool {

/// The ports of "0,2" or "all", each once; none for another text.
std::optional<std::vector<unsigned>> parsePorts(const std::string& text);

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

/// What a node that is no group describes.
Parameter parameterOf(const DescribedNode& described, unsigned port);
/// `Failure` when the applet knows no such name.
Parameter findParameter(Session& session, const std::string& name, unsigned port);

/// The parameter on its own port, or on each of `ports` if it names none.
std::vector<Parameter> findParameters(Session& session, const ParameterName& name,
                                      const std::vector<unsigned>& ports);

/// The current value; `Failure` with the applet's code.
Value readParameter(Session& session, const Parameter& parameter);
struct ReadValue {
  Parameter parameter;
  Value value;
};
/// The values of parameters, NAME or NAME@PORT, on `ports` where a name has none. Those that cannot
/// be read are left out and told in `failures`.
std::vector<ReadValue> readParameters(Session& session, const std::vector<std::string>& names,
                                      const std::vector<unsigned>& ports, Failures& failures);
/// A line for each, such as "FG_WIDTH@0 = 1024".
void printValues(const std::vector<ReadValue>& values);
/// Sets a value given as text; `Failure` with the applet's code, or when the text is no value.
void writeParameter(Session& session, const Parameter& parameter, const std::string& value);
/// Sets parameters, NAME=VALUE or NAME@PORT=VALUE, in order until one is refused, which `failures`
/// is told; on `ports` where an assignment names none. Returns the labels of those that were set.
std::vector<std::string> writeParameters(Session& session,
                                         const std::vector<std::string>& assignments,
                                         const std::vector<unsigned>& ports, Failures& failures);

/// The applet's text about a parameter, in UTF-8; empty when it has none.
std::string parameterText(Session& session, const Parameter& parameter);

}  // namespace velmora::tool
