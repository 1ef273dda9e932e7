/// What the families share. A family is what setters and getters of related parameters do: plain
/// functions on a port, which rows of the table name.
#pragma once

#include <cstdint>

namespace velmora {
struct Port;
class ParameterRow;
}  // namespace velmora
