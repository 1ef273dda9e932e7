/// The folder parameters/table/ describes each SDK parameter in one row of a table. This header
/// finds and uses the rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "parameters/port/parameter_row.h"

namespace velmora {

/// The listed parameters in index order.
std::span<const ParameterRow> listedParameters();

/// Index of a listed parameter; a number past the last index for any other id.
std::size_t parameterIndex(int id);

/// The row of a served parameter, listed or not; null for any other id.
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

/// Drops a setter's failure, as start-up and a configuration load do.
template <class T>
void setQuietly(Port& port, const ParameterRow& row, T value) {
  try {
    set(port, row, value);
  } catch (int) {
  }
}

}  // namespace velmora
