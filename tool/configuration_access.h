/// Saving and loading through the applet, with the reasons that its codes do not tell.
#pragma once

#include <string>
#include <vector>

#include "tool/load_check.h"
#include "tool/parameter_json.h"

namespace velmora::tool {

/// Writes the settings of all ports to a configuration file. Returns a failure for each value that
/// is left out, since it cannot be read; `Failure` when there is no file.
Failures writeConfiguration(Session& session, const std::string& file);

/// Applies a configuration file and returns what of it is not in force afterwards. A `Failure`
/// names the first key or section that is missing.
std::vector<LoadDifference> applyConfiguration(Session& session, const std::string& file);

/// {"file": ..., "ports": 4, "differences": [{"name", "port", "line", "text", "reason", "value"}]}
Json differencesJson(const std::string& file, const std::vector<LoadDifference>& differences);

}  // namespace velmora::tool
