/// Command line of the tool `velmora`.
#pragma once

namespace velmora::tool {

/// Runs the command in the arguments of `main` and returns the exit status: 0, or 1 after an error,
/// which is reported on standard error.
int run(int argc, char** argv);

}  // namespace velmora::tool
