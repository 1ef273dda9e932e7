/// What setters and getters are made of.
#pragma once

#include <cstdint>
#include <cstring>

#include "parameters/design/failure.h"
#include "parameters/port/parameter_row.h"
#include "parameters/port/port.h"
#include "parameters/port/transaction.h"
#include "velmora/errors.h"

namespace velmora {

/// Stores a result through the caller's pointer, which need not be aligned.
template <class T>
void store(void* value, T result) {
  std::memcpy(value, &result, sizeof result);
}

/// Fails unless the row's limits accept the value.
template <class T>
void requireAccepted(const Port& port, const ParameterRow& row, T value) {
  if (!row.limits.accepts(value, port.index)) fail(VELMORA_OUT_OF_RANGE);
}

/// What most setters do: checks the value against the row's limits, stores it, and commits it once
/// `write` has written it to the design.
template <class T, class Write>
void setThrough(Port& port, const ParameterRow& row, T value, const Write& write) {
  requireAccepted(port, row, value);
  Transaction<T> change(row.field.of(port.settings, value), value);
  write();
  change.commit();
}

}  // namespace velmora
