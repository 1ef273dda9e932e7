/// Whether a load did what its file says.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tool/session.h"

namespace velmora::tool {

/// A line of a file that is not in force after a load.
struct LoadDifference {
  unsigned line;
  std::string name;
  std::optional<unsigned> port;  ///< None before the first section of a port.
  std::string text;              ///< What the file says.
  std::string reason;
  std::string value;  ///< What the setting is instead; empty where that cannot be read.

  /// "FG_WIDTH@2=657 (line 134): refused: ...; the setting is 657"
  std::string message() const;
};

/// The registers and parameters of the design that are written while it lives.
class DesignWrites {
 public:
  DesignWrites();
  /// Those of them that another one has not.
  std::vector<std::string> missingIn(const DesignWrites& other) const;

 private:
  void note(const board::Access& access);

  std::set<std::pair<std::string, int>> written_;  ///< Names and DMA indices.
  Observation observation_;
};

/// Compares a file that was loaded with the settings and with what the load wrote to the design.
/// What should be there is tried out on a board of its own, where the file is loaded as well and
/// then each of its values set: the codes tell which are refused, the accesses where a value goes.
std::vector<LoadDifference> differencesAfterLoad(Session& session, const std::string& file,
                                                 const DesignWrites& written);

/// The keys of a port's section in the order of a file.
std::vector<std::string> loadedKeys(Session& session);

}  // namespace velmora::tool
