/// Acquisition runtime for the document fuzzer: describes and names what it is told to.
#pragma once

#include <map>
#include <string>

#include "velmora/register_info.h"

struct HostileRuntime {
  RegisterInfo* forest = nullptr;
  std::map<std::string, int> ids;  ///< Of the design parameters; 0 for other names.
  int result = 0;                  ///< Of sets and gets.
};

/// The state of the loaded library; to be looked up in it by name.
extern "C" HostileRuntime hostileRuntime;
