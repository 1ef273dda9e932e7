/// The folder parameters/design/ is the applet's view of the FPGA design: ids, values, events, and
/// direct access.
#pragma once

#include <cstdint>

#include "parameters/design/design_ids.h"

namespace velmora {

class FgKtWrapper;

/// A port's access to the design and the runtime. Every failure is thrown as the integer code that
/// the access returned; ids are not checked, so that a missing name yields the design's error.
class DesignAccess {
 public:
  DesignAccess(const FgKtWrapper& wrapper, const DesignIds& ids, unsigned port)
      : wrapper_(wrapper), ids_(ids), port_(port) {}

  /// Writes a design parameter of this port.
  void write(DesignId id, std::uint32_t value) const { writeOfPort(port_, id, value); }
  void write(DesignId id, double value) const;
  /// Lets a design parameter of this port act once: it clears, resets or pulses something.
  void trigger(DesignId id) const { write(id, kOneShot); }
  /// Writes a design parameter of any port, on this port's DMA channel.
  void writeOfPort(unsigned port, DesignId id, std::uint32_t value) const;
  /// Reads a design parameter of this port.
  std::uint32_t read(DesignId id) const;

  /// Writes a register of this port's camera simulator.
  void writeRegister(DesignId id, std::uint64_t value) const;

  /// Sets and gets the runtime's own parameters on this port's DMA channel.
  void setRuntime(int id, std::uint32_t value) const;
  std::uint32_t getRuntime(int id) const;
  void getRuntime(int id, void* value, int type) const;

 private:
  static constexpr std::uint32_t kOneShot = 2;

  const FgKtWrapper& wrapper_;
  const DesignIds& ids_;
  unsigned port_;
};

}  // namespace velmora
