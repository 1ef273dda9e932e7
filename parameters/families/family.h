/// The folder parameters/families/ is what setters and getters of related parameters do: plain
/// functions on a port, which the rows of the table refer to. This header is what they share.
#pragma once

#include <cstdint>

namespace velmora {
struct Port;
class ParameterRow;
}  // namespace velmora
