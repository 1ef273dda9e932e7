#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "parameters/table/parameter_row.h"

namespace velmora {

/// The listed parameters in index order.
std::span<const ParameterRow> listedParameters();

/// Index of a listed parameter; at least their number for any other id. A few nanoseconds.
std::size_t parameterIndex(int id);

/// The row of a served parameter, listed or not; null for any other id. A few nanoseconds.
const ParameterRow* findParameter(int id);

/// The row of a listed parameter by exact name; null when there is none.
const ParameterRow* findParameter(std::string_view name);

/// Calls the row's setter with a value of the setter's type.
inline void set(Port& port, const ParameterRow& row, std::uint32_t value) {
  row.setInteger(port, row, value);
}
inline void set(Port& port, const ParameterRow& row, double value) {
  row.setReal(port, row, value);
}

/// A setter's failure has no effect on what comes next: what start-up and a configuration load
/// need.
template <class T>
void setQuietly(Port& port, const ParameterRow& row, T value) {
  try {
    set(port, row, value);
  } catch (int) {
  }
}

}  // namespace velmora
