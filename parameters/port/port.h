#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "parameters/design/design_access.h"
#include "parameters/port/process_settings.h"
#include "velmora/register_info.h"
#include "wrapper/handed_out_strings.h"

namespace velmora {

/// The last value written to each camera-simulator register of a port. The initial values are
/// those of a design that has not been written to.
class SimulatorRegisterCache {
 public:
  SimulatorRegisterCache();
  std::uint64_t& operator[](DesignId id) { return values_[index(id)]; }
  std::uint64_t operator[](DesignId id) const { return values_[index(id)]; }

 private:
  static constexpr std::size_t index(DesignId id) {
    return static_cast<std::size_t>(id) - static_cast<std::size_t>(kFirstRegister);
  }

  std::array<std::uint64_t, kSimulatorRegisters> values_{};
};

/// One camera port: its settings, its access to the design and the description nodes that its
/// setters update. The parameter families work on a port; nothing else distinguishes ports.
struct Port {
  Port(const FgKtWrapper& wrapper, const DesignIds& ids, HandedOutStrings& handedOut,
       unsigned portIndex)
      : index(portIndex), design(wrapper, ids, portIndex), strings(handedOut) {}

  const unsigned index;
  ProcessSettings settings;
  SimulatorRegisterCache simulatorRegisters;
  const DesignAccess design;
  HandedOutStrings& strings;
  std::vector<RegisterInfo*> nodes;  ///< By parameter index; may be null.

  /// Writes a register of the camera simulator and caches the value.
  void writeRegister(DesignId id, std::uint64_t value);

  /// @name Updates the description of a listed parameter
  /// A parameter without a node is ignored.
  /// @{
  void describeMinimum(int parameterId, std::uint32_t minimum);
  void describeMinimum(int parameterId, double minimum);
  void describeMaximum(int parameterId, std::uint32_t maximum);
  void describeAccess(int parameterId, int accessMode);
  /// Makes those parameters writable again that a complete trigger transition reopens.
  void describeReopened();
  /// @}

 private:
  RegisterInfo* nodeOf(int parameterId) const;
};

}  // namespace velmora
