#pragma once

#include <map>
#include <string>
#include <vector>

#include "parameters/direct_access.h"
#include "velmora/register_info.h"

namespace velmora {

class FgKtWrapper;
struct Limits;

/// Describes the parameters of one process in the wrapper's registry and files every value node
/// under its id.
class Catalogue {
 public:
  Catalogue(const FgKtWrapper& wrapper, int process) : wrapper_(wrapper), process_(process) {}

  /// The applet's own parameters.
  void describeParameters();
  /// The design's own parameters, mirrored from the runtime's description, under the SDK names and
  /// ids given. Nothing happens for an empty list.
  void describeDesignParameters(const std::map<std::string, int>& idsByName);
  /// The design's registers.
  void describeRegisters();

 private:
  RegisterInfo* addValue(RegisterInfo* parent, const char* display, int id, const char* name,
                         const Limits& limits, int accessMode, int qualifier, const char* unit);
  RegisterInfo* addMirrored(RegisterInfo* parent, const RegisterInfo& source, int id);
  RegisterInfo* file(RegisterInfo* node, int id);

  const FgKtWrapper& wrapper_;
  int process_;
};

}  // namespace velmora
