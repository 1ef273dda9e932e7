#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "velmora/handles.h"

namespace velmora {

/// The events that a design reports, under the SDK's names where there are any. An event's mask is
/// its position in the design's event list, so masks follow the design. Filled at start-up and only
/// read afterwards.
class DesignEvents {
 public:
  /// Reads the design's event list.
  /// @return the design events that the design lacks, one for each SDK event that needs one.
  std::vector<std::string> read(fpga_design* design);

  /// Mask of an event by SDK or design name; 0 when there is none.
  std::uint64_t maskOf(const char* name) const;
  /// Name of the event with exactly this mask; null when there is none.
  const char* nameOf(std::uint64_t mask) const;

 private:
  std::map<std::string, std::uint64_t, std::less<>> masks_;
  std::map<std::uint64_t, std::string> names_;
};

}  // namespace velmora
