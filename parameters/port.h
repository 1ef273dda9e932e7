#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "parameters/design/design_access.h"
#include "parameters/handed_out_strings.h"
#include "parameters/process_settings.h"
#include "velmora/register_info.h"

namespace velmora {

/// The last value written to each camera-simulator register of a port. The initial values stand for
/// a design that nobody has written to.
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

/// One camera port: its settings, its way to the design and the description nodes that its setters
/// move. The parameter families work on a port; there is nothing else that tells ports apart.
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

  /// Writes a register of the camera simulator and keeps the value.
  void writeRegister(DesignId id, std::uint64_t value);

  /// @name Moves what the description of a listed parameter shows
  /// Nothing happens for a parameter without a node.
  /// @{
  void describeMinimum(int parameterId, std::uint32_t minimum);
  void describeMinimum(int parameterId, double minimum);
  void describeMaximum(int parameterId, std::uint32_t maximum);
  void describeAccess(int parameterId, int accessMode);
  /// Opens all parameters that can be set again once a trigger transition is complete.
  void describeReopened();
  /// @}

 private:
  RegisterInfo* nodeOf(int parameterId) const;
};

}  // namespace velmora
