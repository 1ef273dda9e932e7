/// The description forest of a design's parameters.
#pragma once

#include <vector>

#include "board/model/manifest.h"
#include "paraminfo/parameter_info.h"

namespace board {

/// Describes `parameters`, whose ids count up from `firstId`, in process 0 of `registry`.
void describeParameters(const std::vector<ParameterRecord>& parameters, int firstId,
                        velmora::Fg_ParameterInfo& registry);

}  // namespace board
