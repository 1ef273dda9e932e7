#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "parameters/design_ids.h"
#include "parameters/limits.h"
#include "parameters/port.h"
#include "parameters/process_settings.h"
#include "velmora/parameters.h"

namespace velmora {

struct ParameterRow;

/// Sets a parameter of a port: checks the value, stores it, writes the design. Throws the code of
/// the failure as an integer; the setting is then as it was. A 32-bit parameter has `word`, a
/// double has `real`, a read-only parameter has neither.
struct Setter {
  void (*word)(Port&, const ParameterRow&, std::uint32_t) = nullptr;
  void (*real)(Port&, const ParameterRow&, double) = nullptr;
};

/// Stores a parameter of a port at `value`, in the parameter's own width. Only text and forwarded
/// parameters look at the caller's type. Throws the code of a failure as an integer.
using Getter = void (*)(Port&, const ParameterRow&, void* value, int type);

/// What happens to a setting besides sets and gets.
enum class Upkeep {
  kNone,
  kApplied,  ///< The default is written at start-up.
  kSaved,    ///< Kept in configuration files, not read back.
  kKept,     ///< Written at start-up, kept in files and read back.
  kStepped,  ///< As `kKept`, but only ever changed by its setter, from what is to what shall be.
};

/// Everything there is to say about one SDK parameter.
struct ParameterRow {
  const char* name;
  int id;
  Limits limits{};  ///< As described to tools; plain setters accept exactly this.
  Field field{};
  DesignId design = DesignId::kNone;
  Setter set{};
  Getter get = nullptr;
  Upkeep upkeep = Upkeep::kNone;
  bool runtimeOwnsStrings = false;  ///< Strings of this id go back to the runtime.
  const char* description = "";

  constexpr bool writable() const { return set.word || set.real; }
  constexpr bool applied() const { return upkeep == Upkeep::kApplied || loaded(); }
  constexpr bool saved() const { return upkeep == Upkeep::kSaved || loaded(); }
  constexpr bool loaded() const { return upkeep == Upkeep::kKept || upkeep == Upkeep::kStepped; }
  /// Whether a load stores the value before any setter checks it or its partners.
  constexpr bool loadedBeforehand() const { return upkeep == Upkeep::kKept; }
};

/// The listed parameters in index order.
std::span<const ParameterRow, kListedParameters> listedParameters();

/// Index of a listed parameter; at least `kListedParameters` for any other id. A few nanoseconds.
std::size_t parameterIndex(int id);

/// The row of a served parameter, listed or not; null for any other id. A few nanoseconds.
const ParameterRow* findParameter(int id);

/// The row of a listed parameter by exact name; null when there is none.
const ParameterRow* findParameter(std::string_view name);

/// Calls the row's setter with a value of the setter's type.
inline void set(Port& port, const ParameterRow& row, std::uint32_t value) {
  row.set.word(port, row, value);
}
inline void set(Port& port, const ParameterRow& row, double value) {
  row.set.real(port, row, value);
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
