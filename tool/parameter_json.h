/// What the tool tells about parameters, in JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "tool/parameter_access.h"
#include "tool/parameter_description.h"

namespace velmora::tool {

/// Keeps the order of its keys.
using Json = nlohmann::ordered_json;

/// {"name": "FG_WIDTH", "port": 0, "value": 1024, "unit": "pixel"}, for an enumeration with
/// "entry", the value's name.
Json valueJson(const ReadValue& read);
Json valuesJson(const std::vector<ReadValue>& values);

/// All about a parameter: its value as above, null when it cannot be read, then "id", "kind",
/// "access", "title", "min", "max", "step", "entries" as far as there are any.
Json parameterJson(Session& session, const Parameter& parameter);

/// The tree of a port: {"title": "port 0", "children": [...]}, where a child is a group of the same
/// form or a parameter.
Json treeJson(Session& session, unsigned port);

/// A document as text, on one line unless its parts are indented.
std::string jsonText(const Json& document, int indent = -1);
/// Writes a document to standard output.
void printJson(const Json& document);

}  // namespace velmora::tool
