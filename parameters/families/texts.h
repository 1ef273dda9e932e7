/// Text parameters: handed out as strings (type 22) or copied to the caller's buffer.
#pragma once

#include "parameters/families/family.h"

namespace velmora::texts {

/// The design's file name.
void getHapFile(Port& port, const ParameterRow& row, void* value, int type);

/// The description of the parameter that `value` names; "-" for an unknown name.
void getParameterDescription(Port& port, const ParameterRow& row, void* value, int type);

}  // namespace velmora::texts
