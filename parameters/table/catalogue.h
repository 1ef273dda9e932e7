#pragma once

#include <span>

#include "paraminfo/catalogue_builder.h"

namespace velmora {

/// The applet's own parameters as tools see them: groups and the parameters in them. How one of
/// them is shown is in its row.
std::span<const CatalogueLine> catalogue();

}  // namespace velmora
