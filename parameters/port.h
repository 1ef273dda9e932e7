#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "parameters/design_access.h"
#include "parameters/handed_out_strings.h"
#include "parameters/process_settings.h"
#include "velmora/register_info.h"

namespace velmora {

/// Parameters that applications can list, each at its index.
inline constexpr std::size_t kListedParameters = 85;

/// The last value written to each camera-simulator register of a port. The initial values stand for
/// a design that nobody has written to.
class SimulatorRegisterCache {
 public:
  std::uint64_t& operator[](DesignId id) {
    return values_[static_cast<std::size_t>(id) - static_cast<std::size_t>(kFirstRegister)];
  }

 private:
  std::array<std::uint64_t, kSimulatorRegisters> values_{0, 1, 2048, 2080, 1024, 3, 29, 1};
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
  std::array<RegisterInfo*, kListedParameters> nodes{};  ///< By parameter index; may be null.

  /// @name Moves what the description of a listed parameter shows
  /// Nothing happens for a parameter without a node.
  /// @{
  void describeMinimum(int parameterId, std::uint32_t minimum);
  void describeMinimum(int parameterId, double minimum);
  void describeMaximum(int parameterId, std::uint32_t maximum);
  void describeAccess(int parameterId, std::uint32_t accessMode);
  /// @}

 private:
  RegisterInfo* nodeOf(int parameterId) const;
};

}  // namespace velmora
