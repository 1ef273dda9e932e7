/// Configuration files as a user sees them: what stands where.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velmora::tool {

/// A line KEY=VALUE.
struct ConfigurationEntry {
  unsigned line;                 ///< From 1.
  std::optional<unsigned> port;  ///< Of its section; none in the header.
  std::string key;
  std::string text;  ///< The value without quotes, blanks and semicolon.
  bool usual;        ///< Written as a save writes it, with the key at the line's start.
};

/// The entries of a file, in order; none of one that cannot be read.
std::vector<ConfigurationEntry> readConfiguration(const std::string& file);

/// Number of the first line with a carriage return before its line feed; 0 when there is none.
unsigned firstWindowsLine(const std::string& file);

/// Why a file cannot be read, or written, as a configuration; empty when nothing speaks against it.
std::string whyUnreadable(const std::string& file);
std::string whyUnwritable(const std::string& file);

}  // namespace velmora::tool
